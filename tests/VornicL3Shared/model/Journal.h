#pragma once

#include "pelo/Integers.h"

#include <cstring>
#include <string_view>
#include <vector>

namespace ModelTest {

/// What was reported, one line after the other. It keeps its storage, since the time of a random
/// test goes into its texts.
class Journal {
public:
    /// Writes one line of these pieces; nothing while muted.
    template <class... Pieces> void line(Pieces const&... pieces) {
        if (!muted_) {
            (add(pieces), ...);
            add("\n");
        }
    }

    void mutedIs(bool muted) { muted_ = muted; }
    std::string_view text() const { return {buffer_.data(), size_}; }
    void clear() { size_ = 0; }

private:
    void add(std::string_view piece) {
        if (size_ + piece.size() > buffer_.size()) {
            buffer_.resize(2 * (size_ + piece.size()));
        }
        std::memcpy(buffer_.data() + size_, piece.data(), piece.size());
        size_ += piece.size();
    }
    void add(U32 number) {
        char digits[10];
        char* first = digits + sizeof digits;
        do {
            *--first = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number != 0);
        add(std::string_view(first, static_cast<std::size_t>(digits + sizeof digits - first)));
    }

    std::vector<char> buffer_ = std::vector<char>(4096);
    std::size_t size_ = 0;
    bool muted_ = false;
};

} // namespace ModelTest
