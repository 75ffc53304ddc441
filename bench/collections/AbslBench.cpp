#include "collections/Collections.h"

#include <absl/container/flat_hash_map.h>
#include <absl/hash/hash.h>

namespace Bench {

namespace {

template <class Key>
using Peer = StdLike<absl::flat_hash_map<Key, U32, HashFor<Key, absl::Hash<U16>>>>;

[[maybe_unused]] bool const added = [] {
    addCollection<Peer>("absl::flat_hash_map");
    addWalkErase<Peer<WideKey>>("absl::flat_hash_map");
    return true;
}();

} // namespace

} // namespace Bench
