#pragma once

#include "pelo/Integers.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace Fuzz {

/// The bytes of one input, which are taken from its front. Behind the end there are zeros.
class Input {
public:
    Input(U8 const* data, std::size_t size) : left_(reinterpret_cast<char const*>(data), size) {}

    bool empty() const noexcept { return left_.empty(); }

    U8 byte() noexcept { return static_cast<U8>(number(1)); }

    /// An unsigned number of so many bytes, the lowest first.
    U64 number(std::size_t bytes) noexcept {
        U64 value = 0;
        std::size_t shift = 0;
        for (char const each : text(bytes)) {
            value |= U64{static_cast<U8>(each)} << shift;
            shift += 8;
        }
        return value;
    }

    /// A number from 0 to `bound - 1`, which are at most 256.
    std::size_t below(std::size_t bound) noexcept { return byte() % bound; }

    /// The next bytes, as many as there are.
    std::string_view text(std::size_t size) noexcept {
        std::string_view const taken = left_.substr(0, size);
        left_.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest() noexcept { return text(left_.size()); }

private:
    std::string_view left_;
};

/// What must hold for every input. A failure ends the process, which keeps the input.
inline void expect(bool holds, std::string const& what) {
    if (!holds) {
        std::fprintf(stderr, "fuzz: %s\n", what.c_str());
        std::abort();
    }
}

} // namespace Fuzz

/// A target: does something with one input, which may be any bytes. It is found by this name by the
/// two programs that know how to make inputs: libFuzzer and `Standalone.cpp`.
// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's
extern "C" int LLVMFuzzerTestOneInput(U8 const* data, std::size_t size);
