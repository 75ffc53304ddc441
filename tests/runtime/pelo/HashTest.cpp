#include "pelo/Hash.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <set>
#include <string>
#include <vector>

namespace {

using Pelo::hashBytes;
using Pelo::hashMix;

U64 hashOf(std::string const& bytes) { return hashBytes(bytes.data(), bytes.size()); }

TEST(Hash, IsTheSameInEveryProcess) {
    EXPECT_EQ(hashMix(0, 0), 0xC9D874CA57D9E055u);
    EXPECT_EQ(hashMix(1, 2), 0xBD6066E6B2AEEA0Cu);
    EXPECT_EQ(hashOf(""), 0xBD43CF7AF47878C3u);
    EXPECT_EQ(hashOf("bgp"), 0x2D5DAECDB7051EEAu);
    EXPECT_EQ(hashOf("Port-Channel1000"), 0x761B14EBD352FF01u);
}

/// How many bits of the hash change, on average over many words, when one bit of the input does.
template <class HashOfWord> double changedBits(U32 inputBit, HashOfWord hash) {
    int changed = 0;
    constexpr int words = 400;
    for (U64 n = 1; n <= words; ++n) {
        U64 const word = n * 0x9E3779B97F4A7C15u;
        changed += std::popcount(hash(word) ^ hash(word ^ U64{1} << inputBit));
    }
    return double{1.0} * changed / words;
}

TEST(Hash, EveryBitOfEachWordChangesHalfOfTheResult) {
    for (U32 bit = 0; bit < 64; ++bit) {
        double const byFirst = changedBits(bit, [](U64 word) { return hashMix(word, 77); });
        double const bySecond = changedBits(bit, [](U64 word) { return hashMix(77, word); });
        EXPECT_NEAR(byFirst, 32, 4) << "bit " << bit;
        EXPECT_NEAR(bySecond, 32, 4) << "bit " << bit;
    }
}

TEST(Hash, SmallNumbersSpreadOverTheLowBits) {
    std::vector<int> bucket(1024);
    for (U64 n = 0; n < 65536; ++n) {
        ++bucket[hashMix(n, 0) % bucket.size()];
    }
    EXPECT_LT(*std::max_element(bucket.begin(), bucket.end()), 128); // 64 on average
    EXPECT_GT(*std::min_element(bucket.begin(), bucket.end()), 16);
}

TEST(Hash, EveryByteCounts) {
    for (std::size_t size = 1; size <= 40; ++size) {
        std::string const bytes(size, 'x');
        std::set<U64> hashes = {hashOf(bytes)};
        for (std::size_t at = 0; at < size; ++at) {
            std::string other = bytes;
            other[at] = 'y';
            hashes.insert(hashOf(other));
        }
        EXPECT_EQ(hashes.size(), size + 1) << size << " bytes";
    }
}

TEST(Hash, LengthCountsAlsoWhenAllBytesAreZero) {
    std::set<U64> hashes;
    for (std::size_t size = 0; size < 100; ++size) {
        hashes.insert(hashOf(std::string(size, '\0')));
    }
    EXPECT_EQ(hashes.size(), 100u);
}

TEST(Hash, NoBytesNeedNoStorage) { EXPECT_EQ(hashBytes(nullptr, 0), hashOf("")); }

TEST(Hash, BytesMayStandAnywhere) {
    std::string const text = "Ethernet1/1:4094 and more";
    for (std::size_t offset = 0; offset < 8; ++offset) {
        std::string const shifted = std::string(offset, ' ') + text;
        EXPECT_EQ(hashBytes(shifted.data() + offset, text.size()), hashOf(text));
    }
}

TEST(Hash, NamesOfInterfacesDoNotCollide) {
    std::set<U64> hashes;
    for (int slot = 1; slot <= 100; ++slot) {
        for (int port = 1; port <= 500; ++port) {
            hashes.insert(hashOf("Ethernet" + std::to_string(slot) + '/' + std::to_string(port)));
        }
    }
    EXPECT_EQ(hashes.size(), 50000u);
}

} // namespace
