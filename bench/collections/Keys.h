#pragma once

#include "bridging/VlanId.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"
#include "vpstate/PortVlanKey.h"
#include "vpstate/RemoteVtepKey.h"

#include <cstddef>
#include <type_traits>
#include <vector>

namespace Bench {

/// A key of 32 bytes that is copied as bytes: what is measured with it is the collection.
struct WideKey {
    U64 hash() const noexcept { return Pelo::hashMix(Pelo::hashMix(a, b), Pelo::hashMix(c, d)); }
    bool operator==(WideKey const&) const = default;
    U64 a, b, c, d;
};

/// The hash of a key, for all who take one: the same for all, and good enough to be used as it is
/// (`is_avalanching` tells boost so).
struct KeyHash {
    using is_avalanching = void;
    template <class Key> std::size_t operator()(Key const& key) const noexcept {
        return key.hash();
    }
};

/// For VLANs each peer has the hash that it comes with for a number of 16 bits.
template <class HashOfNumber> struct VlanHash {
    std::size_t operator()(Bridging::VlanId vlan) const noexcept {
        return HashOfNumber{}(vlan.value());
    }
};

template <class Key, class HashOfNumber>
using HashFor =
    std::conditional_t<std::is_same_v<Key, Bridging::VlanId>, VlanHash<HashOfNumber>, KeyHash>;

/// The keys of a collection, made once and the same for all who are measured.
template <class Key> struct KeySet {
    std::vector<Key> members;  ///< in the order of insertion
    std::vector<Key> shuffled; ///< the same keys in the order in which they are asked for
    std::vector<Key> absent;   ///< as many others
};

KeySet<WideKey> const& wideKeys(U32 count);
KeySet<VornicCentral::RemoteVtepKey> const& remoteKeys(U32 count);
KeySet<VornicCentral::PortVlanKey> const& portVlanKeys(U32 count);

/// VLANs from 1 to 4094, spread evenly over these numbers; all of them for a count of 4094.
KeySet<Bridging::VlanId> const& vlanKeys(U32 count);

} // namespace Bench
