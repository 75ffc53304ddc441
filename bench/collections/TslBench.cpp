#include "collections/Collections.h"

#include <tsl/ordered_map.h>
#include <tsl/robin_map.h>

#include <functional>

namespace Bench {

namespace {

template <class Key> using Robin = StdLike<tsl::robin_map<Key, U32, HashFor<Key, std::hash<U16>>>>;

/// Its deletion that keeps the order takes a time in proportion to the members, so it is measured
/// with the one that moves the last member into the gap, and not in a walk.
template <class Key> class Ordered {
public:
    void insert(Key const& key, U32 value) { map_.emplace(key, value); }
    bool has(Key const& key) const { return map_.find(key) != map_.end(); }
    bool erase(Key const& key) { return map_.unordered_erase(key) != 0; }
    U64 walk() const {
        U64 sum = 0;
        for (auto const& member : map_) {
            sum += member.second;
        }
        return sum;
    }

private:
    tsl::ordered_map<Key, U32, HashFor<Key, std::hash<U16>>> map_;
};

[[maybe_unused]] bool const added = [] {
    addCollection<Robin>("tsl::robin_map");
    addWalkErase<Robin<WideKey>>("tsl::robin_map");
    addCollection<Ordered>("tsl::ordered_map");
    return true;
}();

} // namespace

} // namespace Bench
