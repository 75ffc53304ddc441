#include "collections/Collections.h"

#include <functional>
#include <unordered_map>

namespace Bench {

namespace {

template <class Key>
using Peer = StdLike<std::unordered_map<Key, U32, HashFor<Key, std::hash<U16>>>>;

[[maybe_unused]] bool const added = [] {
    addCollection<Peer>("std::unordered_map");
    addWalkErase<Peer<WideKey>>("std::unordered_map");
    return true;
}();

} // namespace

} // namespace Bench
