#include "collections/Keys.h"

#include <algorithm>
#include <map>
#include <random>
#include <string>

namespace Bench {

namespace {

/// The first half of the keys are members, the others are not.
template <class Key> KeySet<Key> split(std::vector<Key> const& keys) {
    auto const middle = keys.begin() + static_cast<std::ptrdiff_t>(keys.size() / 2);
    KeySet<Key> set{{keys.begin(), middle}, {keys.begin(), middle}, {middle, keys.end()}};
    std::mt19937_64 random(7);
    std::shuffle(set.shuffled.begin(), set.shuffled.end(), random);
    std::shuffle(set.absent.begin(), set.absent.end(), random);
    return set;
}

/// The set of `count` members whose keys, and as many others, are `make(0)`, `make(1)` and so on.
template <class Key, class Make> KeySet<Key> const& setOf(U32 count, Make make) {
    static std::map<U32, KeySet<Key>> sets;
    auto const [at, isNew] = sets.try_emplace(count);
    if (isNew) {
        std::vector<Key> keys;
        for (U32 number = 0; number < 2 * count; ++number) {
            keys.push_back(make(number));
        }
        at->second = split(keys);
    }
    return at->second;
}

} // namespace

KeySet<WideKey> const& wideKeys(U32 count) {
    std::mt19937_64 random(count);
    return setOf<WideKey>(count, [&random](U32) {
        return WideKey{random(), random(), random(), random()};
    });
}

KeySet<VornicCentral::RemoteVtepKey> const& remoteKeys(U32 count) {
    return setOf<VornicCentral::RemoteVtepKey>(count, [](U32 number) {
        auto const address = Netzo::IpGenAddr::parse("10." + std::to_string(number >> 16) + '.' +
                                                     std::to_string(number >> 8 & 255) + '.' +
                                                     std::to_string(number & 255));
        return VornicCentral::RemoteVtepKey(Vxlan::SwTunnelGroupId(number % 512), *address);
    });
}

KeySet<VornicCentral::PortVlanKey> const& portVlanKeys(U32 count) {
    return setOf<VornicCentral::PortVlanKey>(count, [](U32 number) {
        return VornicCentral::PortVlanKey(
            Netzo::IntfId("Ethernet" + std::to_string(number % 64 + 1)),
            Bridging::VlanId(static_cast<U16>(1 + number / 64)));
    });
}

KeySet<Bridging::VlanId> const& vlanKeys(U32 count) {
    return setOf<Bridging::VlanId>(count, [count](U32 number) {
        return Bridging::VlanId(static_cast<U16>(1 + number % count * (4094 / count)));
    });
}

} // namespace Bench
