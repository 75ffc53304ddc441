#include "collections/Collections.h"

#include <boost/container_hash/hash.hpp>
#include <boost/unordered/unordered_flat_map.hpp>

namespace Bench {

namespace {

template <class Key>
using Peer = StdLike<boost::unordered_flat_map<Key, U32, HashFor<Key, boost::hash<U16>>>>;

[[maybe_unused]] bool const added = [] {
    addCollection<Peer>("boost::unordered_flat_map");
    addWalkErase<Peer<WideKey>>("boost::unordered_flat_map");
    return true;
}();

} // namespace

} // namespace Bench
