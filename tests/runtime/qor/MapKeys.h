#pragma once

#include "pelo/Hash.h"
#include "pelo/String.h"
#include "qor/HashMap2018.h"

#include <gtest/gtest.h>

#include <concepts>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Support {

/// A key that is a number below 65536 and indexes an array.
struct SmallNumber {
    static constexpr U32 directBound = 65536;
    U32 directIndex() const noexcept { return number; }
    bool operator==(SmallNumber const&) const = default;
    U16 number = 0;
};

/// A key of 32 bytes.
struct WideKey {
    U64 hash() const noexcept { return Pelo::hashMix(number, 0); }
    bool operator==(WideKey const&) const = default;
    U64 number = 0;
    U64 more[3] = {1, 2, 3};
};

/// A key with the hash of every other key of its type.
struct SameHash {
    U64 hash() const noexcept { return 0; }
    bool operator==(SameHash const&) const = default;
    U32 number = 0;
};

/// A key of few hashes, whose groups stand at the end and at the beginning of every index.
struct FewHashes {
    U64 hash() const noexcept { return (number % 5 == 0 ? 0xFFFFFFFEu : 2u) | (number % 3) << 24; }
    bool operator==(FewHashes const&) const = default;
    U32 number = 0;
};

template <class K> K keyOf(U32 number) {
    if constexpr (std::is_same_v<K, Pelo::String>) {
        return Pelo::String("key " + std::to_string(number));
    } else if constexpr (std::is_same_v<K, SmallNumber>) {
        return SmallNumber{static_cast<U16>(number)};
    } else if constexpr (std::integral<K>) {
        return static_cast<K>(number);
    } else {
        return K{number};
    }
}

template <class K> U32 numberOf(K const& key) {
    if constexpr (std::is_same_v<K, Pelo::String>) {
        return static_cast<U32>(std::stoul(std::string(key.view().substr(4))));
    } else if constexpr (requires { key.number; }) {
        return static_cast<U32>(key.number);
    } else {
        return static_cast<U32>(key);
    }
}

/// Every sort of key: filed directly, by an integer, by a good hash and by bad ones.
using KeyTypes =
    testing::Types<U16, U32, U64, Pelo::String, WideKey, SmallNumber, SameHash, FewHashes>;

struct KeyNames {
    template <class K> static std::string GetName(int index) {
        static char const* const names[] = {"U16",     "U32",         "U64",      "String",
                                            "WideKey", "SmallNumber", "SameHash", "FewHashes"};
        return names[index];
    }
};

/// The numbers of the keys, and the values, in the order of a walk.
using Members = std::vector<std::pair<U32, int>>;

template <class K> Members membersOf(Qor::HashMap2018<K, int> const& map) {
    Members members;
    for (typename Qor::HashMap2018<K, int>::Iterator it(map); it; it.advance()) {
        members.emplace_back(numberOf(it.key()), it.value());
    }
    return members;
}

} // namespace Support
