#pragma once

#include "lumlog/ArgTraits.h"
#include "lumlog/NetzoArgs.h"
#include "netzo/IpGenAddr.h"
#include "pelo/Integers.h"
#include "pelo/String.h"
#include "qor/Words.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Lumlog {

/// The code letters of a format, one for each piece of a record, and how the piece is stored.
enum class ArgCode : char {
    words = 'w',   ///< nothing: the literal stands in the descriptor
    boolean = 'b', ///< 1 byte
    u8 = '1',
    u16 = '2',
    u32 = '4',
    u64 = '8',
    s64 = 'i',
    text = 's',    ///< U16 length and the bytes
    address = 'a', ///< `addressSize` bytes: the family, then the 16 bytes of the address
};

constexpr std::size_t addressSize = 17;

/// Text that varies, borrowed or owned.
template <class T>
concept TextArg = std::same_as<T, std::string_view> || std::same_as<T, std::string> ||
                  std::same_as<T, Pelo::String>;

template <class T>
concept CharArray = std::is_array_v<T> && std::same_as<std::remove_extent_t<T>, char>;

/// What may be given as a piece: no plain pointer to text and no text buffer, which would be taken
/// for a literal that never changes. Varying text is a `std::string_view`.
template <class T>
concept Piece = !std::is_pointer_v<std::remove_reference_t<T>> &&
                (!CharArray<std::remove_cvref_t<T>> || std::is_const_v<std::remove_reference_t<T>>);

/// What goes into a record without being printed first.
template <class T>
concept Recordable =
    std::integral<T> || TextArg<T> || CharArray<T> || std::same_as<T, Qor::Words> ||
    std::same_as<T, Netzo::IpGenAddr> || HasArgTraits<T>;

namespace Internal {

template <class T> consteval ArgCode codeOf() {
    if constexpr (std::same_as<T, Qor::Words>) {
        return ArgCode::words;
    } else if constexpr (std::same_as<T, bool>) {
        return ArgCode::boolean;
    } else if constexpr (std::same_as<T, std::int64_t>) {
        return ArgCode::s64;
    } else if constexpr (std::unsigned_integral<T>) {
        constexpr ArgCode bySize[] = {ArgCode::u8, ArgCode::u16, ArgCode::u32, ArgCode::u64};
        return bySize[sizeof(T) == 1 ? 0 : sizeof(T) == 2 ? 1 : sizeof(T) == 4 ? 2 : 3];
    } else if constexpr (std::same_as<T, Netzo::IpGenAddr>) {
        return ArgCode::address;
    } else {
        static_assert(TextArg<T>);
        return ArgCode::text;
    }
}

/// The format of a tuple of arguments, as a NUL-terminated text.
template <class Tuple> struct FormatOf;
template <class... Args> struct FormatOf<std::tuple<Args...>> {
    static constexpr char text[] = {static_cast<char>(codeOf<Args>())..., '\0'};
};

template <class T> std::string printed(T const& value) {
    std::ostringstream out;
    out.exceptions(std::ios::badbit); // or it swallows those of the printer and cuts the text
    out << value;
    return std::move(out).str();
}

/// Takes a piece apart into a tuple of arguments that `codeOf` knows. A text that was made for the
/// call is kept in the tuple; other text is referred to.
template <Piece P> auto flatten(P&& piece) {
    using T = std::remove_cvref_t<P>;
    if constexpr (CharArray<T>) {
        return std::tuple(Qor::Words::ofLiteral(piece));
    } else if constexpr (std::same_as<T, char>) {
        return std::tuple(std::string(1, piece));
    } else if constexpr (std::signed_integral<T>) {
        return std::tuple(static_cast<std::int64_t>(piece));
    } else if constexpr (TextArg<T> && std::is_lvalue_reference_v<P>) {
        return std::tuple(std::string_view(piece));
    } else if constexpr (HasArgTraits<T>) {
        return std::apply(
            [](auto&&... parts) {
                return std::tuple_cat(flatten(std::forward<decltype(parts)>(parts))...);
            },
            ArgTraits<T>::pieces(piece));
    } else if constexpr (Recordable<T>) {
        return std::tuple<T>(std::forward<P>(piece));
    } else {
        return std::tuple(printed(piece));
    }
}

} // namespace Internal
} // namespace Lumlog
