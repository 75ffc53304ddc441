#pragma once

#include "lumlog/Args.h"
#include "lumlog/MsgDescriptor.h"
#include "lumlog/RingBuffer.h"
#include "netzo/IpGenAddr.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "qor/Words.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>

/// How the arguments of one record get into the ring; for `Lumlog::record` only.
namespace Lumlog::Internal {

template <class Arg> constexpr bool isText = TextArg<Arg>;
template <class Arg> constexpr bool isWords = std::same_as<Arg, Qor::Words>;

/// The room that an argument takes whatever its value.
template <class Arg> consteval std::size_t fixedSize() {
    if constexpr (isWords<Arg>) {
        return 0;
    } else if constexpr (isText<Arg>) {
        return sizeof(U16);
    } else if constexpr (std::same_as<Arg, Netzo::IpGenAddr>) {
        return addressSize;
    } else {
        return sizeof(Arg);
    }
}

/// The literals among the arguments.
template <class... Args> auto wordsOf(Args const&... args) noexcept {
    std::array<Qor::Words, (std::size_t{isWords<Args>} + ... + 0)> result;
    [[maybe_unused]] auto at = result.begin();
    [[maybe_unused]] auto const take = [&at](auto const& arg) {
        if constexpr (isWords<std::remove_cvref_t<decltype(arg)>>) {
            *at++ = arg;
        }
    };
    (take(args), ...);
    return result;
}

/// The texts among the arguments.
template <class... Args> auto textsOf(Args const&... args) noexcept {
    std::array<std::string_view, (std::size_t{isText<Args>} + ... + 0)> result;
    [[maybe_unused]] auto at = result.begin();
    [[maybe_unused]] auto const take = [&at](auto const& arg) {
        if constexpr (isText<std::remove_cvref_t<decltype(arg)>>) {
            *at++ = arg;
        }
    };
    (take(args), ...);
    return result;
}

/// What of an argument is handed from function to function, by value: the argument, or a view of a
/// text. What nobody has a reference to is never put together in memory.
template <class Arg> auto handed(Arg const& arg) noexcept {
    if constexpr (isText<Arg>) {
        return std::string_view(arg);
    } else {
        return arg;
    }
}

template <class Arg> std::size_t textSize(Arg const& arg) noexcept {
    if constexpr (isText<Arg>) {
        return arg.size();
    } else {
        return 0;
    }
}

template <class Arg> std::byte* appendArg(std::byte* at, Arg const& arg) noexcept {
    if constexpr (isWords<Arg>) {
        return at;
    } else if constexpr (isText<Arg>) {
        at = RingBuffer::append(at, static_cast<U16>(arg.size()));
        return RingBuffer::appendBytes(at, arg);
    } else if constexpr (std::same_as<Arg, Netzo::IpGenAddr>) {
        at = RingBuffer::append(at, static_cast<U8>(arg.family()));
        return RingBuffer::append(at, arg.bits().bytes());
    } else {
        return RingBuffer::append(at, arg);
    }
}

/// Gives the call site the descriptor of these words, and its description to the ring; null when
/// that message is disabled there.
VORNIC_RUNTIME_API MsgDescriptor const* described(RingBuffer& ring, MsgDescriptor& site,
                                                  char const* format,
                                                  std::span<Qor::Words const> words) noexcept;

/// The same by the arguments of a record.
template <class... Args>
[[gnu::noinline, gnu::cold]] MsgDescriptor const*
describedFor(RingBuffer& ring, MsgDescriptor& site, Args... args) noexcept {
    return described(ring, site, FormatOf<std::tuple<Args...>>::text, wordsOf(args...));
}

/// Shortens texts, the last first, until they take `excess` bytes less.
VORNIC_RUNTIME_API void cutTexts(std::span<std::string_view> texts, std::size_t excess) noexcept;

/// Writes a record that is too large: the texts are shortened until it fits.
template <class... Args>
[[gnu::noinline, gnu::cold]] void writeCut(RingBuffer& ring, MsgDescriptor const& message,
                                           std::size_t size, Args... args) noexcept {
    auto texts = textsOf(args...);
    cutTexts(texts, size - ring.maxPayload());
    std::string_view const* text = texts.data();
    std::byte* at = ring.startMsg(message, ring.maxPayload());
    auto const appendNext = [&](auto const& arg) {
        if constexpr (isText<std::remove_cvref_t<decltype(arg)>>) {
            at = appendArg(at, *text++);
        } else {
            at = appendArg(at, arg);
        }
    };
    (appendNext(args), ...);
    ring.endMsg();
}

template <class... Args>
void recordArgs(RingBuffer& ring, MsgDescriptor& site, Args... args) noexcept {
    MsgDescriptor const* message = &site;
    if (!ring.readyFor(site) || !site.hasSameWords(wordsOf(args...))) [[unlikely]] {
        message = describedFor(ring, site, args...);
        if (message == nullptr) {
            return;
        }
    }
    constexpr std::size_t fixed = (fixedSize<Args>() + ... + 0);
    static_assert(fixed <= RingBuffer::minMaxPayload / 2, "a record has too many pieces");
    std::size_t const size = fixed + (textSize(args) + ... + 0);
    if constexpr ((isText<Args> || ...)) {
        if (size > ring.maxPayload()) [[unlikely]] {
            writeCut(ring, *message, size, args...);
            return;
        }
    }
    [[maybe_unused]] std::byte* at = ring.startMsg(*message, size);
    ((at = appendArg(at, args)), ...);
    ring.endMsg();
}

} // namespace Lumlog::Internal
