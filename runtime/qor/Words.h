#pragma once

#include "pelo/Export.h"

#include <cstddef>
#include <string_view>

namespace Qor {

/// Text that is known when the program is compiled: a string literal, by reference.
///
///     static constexpr Qor::Words label{" vlan: "};
///
/// Only a literal (or another constant) can become `Words`, so the text lives as long as the
/// program, and a trace needs to keep nothing but its address.
class VORNIC_RUNTIME_API Words {
public:
    constexpr Words() noexcept = default;

    template <std::size_t N>
    consteval Words(char const (&literal)[N]) noexcept : text_(literal), size_(N - 1) {}

    /// For a template that has taken a literal by reference and therefore no longer sees that it is
    /// a constant.
    template <std::size_t N> static constexpr Words ofLiteral(char const (&literal)[N]) noexcept {
        Words words;
        words.text_ = literal;
        words.size_ = N - 1;
        return words;
    }

    constexpr char const* data() const noexcept { return text_; }
    constexpr std::size_t size() const noexcept { return size_; }
    constexpr std::string_view view() const noexcept { return {text_, size_}; }
    constexpr operator std::string_view() const noexcept { return view(); }

    friend constexpr bool operator==(Words const& a, Words const& b) noexcept {
        return a.view() == b.view();
    }

private:
    char const* text_ = "";
    std::size_t size_ = 0;
};

} // namespace Qor
