#pragma once

#include "pelo/Integers.h"
#include "qor/Log.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>
#include <string_view>

namespace VornicCentral {

/// Both messages are built when the library is loaded; nothing is suppressed.
Qor::LogHandle& resourceNormalLog(); ///< a waiting virtual port has been given an index
Qor::LogHandle& resourceFullLog();   ///< a virtual port was requested and the table is full

/// How a log message names a virtual port: pieces of text and numbers in decimal, put together in a
/// buffer of 128 bytes that ends with a zero. What does not fit is cut off; of a piece that holds a
/// zero, what stands before it counts.
class VportText {
public:
    template <class... Pieces> explicit VportText(Pieces const&... pieces) noexcept {
        (append(pieces), ...);
    }
    std::string_view text() const noexcept { return {text_.data(), size_}; }

private:
    void append(std::string_view piece) noexcept {
        piece = piece.substr(0, std::min(piece.find('\0'), text_.size() - 1 - size_));
        piece.copy(text_.data() + size_, piece.size());
        size_ += piece.size();
    }
    void append(U16 number) noexcept {
        std::array<char, std::numeric_limits<U16>::digits10 + 1> digits;
        auto const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
        append({digits.data(), static_cast<std::size_t>(end - digits.data())});
    }

    std::array<char, 128> text_;
    std::size_t size_ = 0;
};

} // namespace VornicCentral
