// Our keyed collection, and for VLANs an array as the limit.

#include "collections/Collections.h"
#include "qor/HashMap2018.h"

namespace Bench {

namespace {

template <class Key> class Ours {
public:
    void insert(Key const& key, U32 value) { map_.newMember(key, value); }
    bool has(Key const& key) const { return map_.has(key); }
    bool erase(Key const& key) { return map_.deleteMember(key).has_value(); }
    U64 walk() const {
        U64 sum = 0;
        for (Iterator it(map_); it; it.advance()) {
            sum += it.value();
        }
        return sum;
    }
    U32 walkErase() {
        U32 erased = 0;
        bool second = false;
        for (Iterator it(map_); it; it.advance(), second = !second) {
            if (second) {
                map_.deleteMember(*it.currNodeMaybeStale());
                ++erased;
            }
        }
        return erased;
    }

private:
    using Map = Qor::HashMap2018<Key, U32>;
    using Iterator = typename Map::Iterator;

    Map map_;
};

/// An array by VLAN, each entry of which says whether the VLAN is there.
class VlanArray {
public:
    void insert(Bridging::VlanId vlan, U32 value) { values_.at(vlan.value()) = value; }
    bool has(Bridging::VlanId vlan) const { return values_[vlan.value()] != none; }

private:
    static constexpr U32 none = 0xFFFFFFFF;

    std::vector<U32> values_ = std::vector<U32>(4096, none);
};

[[maybe_unused]] bool const added = [] {
    addCollection<Ours>("ours");
    addWalkErase<Ours<WideKey>>("ours");
    addVlan<VlanArray>("array");
    return true;
}();

} // namespace

} // namespace Bench
