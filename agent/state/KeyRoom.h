#pragma once

#include "Limits.h"

#include <cstddef>

namespace VpAgent {

/// How many more keys may be added before `Limits::keys` are there.
///
/// Counting all keys takes long where many records hold them, so it is done only when as many have
/// been added as there was room for.
class KeyRoom {
public:
    /// Takes room for `count` keys that are about to be added; false when there is none.
    /// `counted()` is how many there are.
    template <class Counted> bool take(std::size_t count, Counted counted) {
        if (left_ < count) {
            std::size_t const present = counted();
            left_ = present < Limits::keys ? Limits::keys - present : 0;
        }
        bool const enough = count <= left_;
        left_ -= enough ? count : 0;
        return enough;
    }

private:
    std::size_t left_ = 0;
};

} // namespace VpAgent
