#pragma once

#include "pelo/Integers.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
#include <string_view>

namespace Support {

/// Random numbers of a seed that a failing test prints: keep the object, and trace `note()`.
///
///     Support::Random random;
///     SCOPED_TRACE(random.note());
///
/// `VORNIC_SEED=SEED` in the environment repeats the numbers of an earlier run.
class Random {
public:
    /// Says its seed at once, too: a test that ends the process shows no traces.
    Random() : Random(chosenSeed()) { std::cout << note() << std::endl; }
    explicit Random(U32 seed) : seed_(seed), engine_(seed) {}

    std::string note() const { return "seed " + std::to_string(seed_); }

    /// A number from 0 to `bound - 1`.
    U32 below(U32 bound) { return std::uniform_int_distribution<U32>(0, bound - 1)(engine_); }
    bool oneIn(U32 bound) { return below(bound) == 0; }
    char of(std::string_view characters) {
        return characters[below(static_cast<U32>(characters.size()))];
    }
    U8 byte() { return static_cast<U8>(below(256)); }

private:
    static U32 chosenSeed() {
        char const* const value = std::getenv("VORNIC_SEED");
        return value != nullptr ? static_cast<U32>(std::stoul(value)) : std::random_device()();
    }

    U32 seed_;
    std::mt19937 engine_;
};

} // namespace Support
