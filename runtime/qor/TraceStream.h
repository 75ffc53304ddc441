#pragma once

#include "lumlog/ArgTraits.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "pelo/String.h"
#include "qor/Words.h"

#include <concepts>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace Qor {

class TraceStream;

namespace Internal {

template <class T>
concept OstreamPrintable = requires(std::ostream& out, T const& value) { out << value; };

/// Appends what `print` writes to a text stream.
VORNIC_RUNTIME_API void appendPrinted(std::string& text, void const* value,
                                      void (*print)(std::ostream&, void const*));

} // namespace Internal

/// The text of one trace line while it is put together.
///
/// Takes text, numbers (all in decimal, U8 included), `bool` (as "true" or "false") and every value
/// type that prints itself in one of three ways, the first of these that it has:
/// - an operator `TraceStream& operator<<(TraceStream&, T const&)` of its own;
/// - an operator `std::ostream& operator<<(std::ostream&, T const&)`;
/// - the pieces of its `Lumlog::ArgTraits`.
class TraceStream {
public:
    TraceStream() = default;
    TraceStream(TraceStream const&) = delete;
    TraceStream& operator=(TraceStream const&) = delete;

    std::string_view text() const noexcept { return text_; }

    TraceStream& operator<<(std::string_view text) {
        text_ += text;
        return *this;
    }
    TraceStream& operator<<(char const* text) { return *this << std::string_view(text); }
    TraceStream& operator<<(std::string const& text) { return *this << std::string_view(text); }
    TraceStream& operator<<(Pelo::String const& text) { return *this << text.view(); }
    TraceStream& operator<<(Words words) { return *this << words.view(); }
    TraceStream& operator<<(char character) { return *this << std::string_view(&character, 1); }

    template <std::integral T> TraceStream& operator<<(T value) {
        if constexpr (std::same_as<T, bool>) {
            text_ += value ? "true" : "false";
        } else {
            text_ += std::to_string(value);
        }
        return *this;
    }

    template <class T>
        requires(std::is_class_v<T> || std::is_enum_v<T> || std::is_floating_point_v<T>)
    TraceStream& operator<<(T const& value) {
        if constexpr (Internal::OstreamPrintable<T>) {
            Internal::appendPrinted(text_, &value, [](std::ostream& out, void const* printed) {
                out << *static_cast<T const*>(printed);
            });
        } else {
            static_assert(Lumlog::HasArgTraits<T>, "the type has no printer for traces");
            std::apply([this](auto const&... pieces) { (*this << ... << pieces); },
                       Lumlog::ArgTraits<T>::pieces(value));
        }
        return *this;
    }

private:
    std::string text_;
};

} // namespace Qor
