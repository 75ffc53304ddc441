#include "VornicL3Shared/model/Subject.h"

#include <algorithm>

/// The library's state beside the model's, member by member.
namespace ModelTest {
namespace {

bool same(bool seen, Flag expected) { return seen == expected.on; }
bool same(VornicCentral::VirtualPort seen, VPort expected) {
    return seen.vpIndex() == expected.index;
}
bool same(VornicCentral::VpReference const& seen, Reference const& expected) {
    auto const& names = seen.references();
    return same(seen.vPort(), expected.vPort) && names.size() == expected.names.size() &&
           std::equal(names.begin(), names.end(), expected.names.begin(),
                      [](Pelo::String const& a, std::string const& b) { return a.view() == b; });
}

template <class LibraryRecord, class V>
bool same(LibraryRecord const& seen, Record<V> const& expected, LibraryKeys const& keys) {
    bool all = true;
    VornicCentral::forEachKind([&](auto kind) {
        using K = decltype(kind);
        auto const& members = expected.kinds[VornicCentral::kindOrder<K>];
        auto const& collection = seen.template collection<K>();
        all = all && collection.memberCount() == members.size();
        typename LibraryRecord::template Collection<K>::Iterator it(collection);
        for (auto at = members.begin(); all && at != members.end(); ++at, it.advance()) {
            all = it && it.key() == keys.template get<K>(at->first) && same(it.value(), at->second);
        }
    });
    return all;
}

bool same(VornicCentral::VpIndexStatus const& seen, Status const& expected,
          LibraryKeys const& keys) {
    return seen.vpAllocRequests() == expected.requests &&
           seen.vpAllocFailures() == expected.failures && seen.vpFreeRequests() == expected.frees &&
           seen.vpTableSize() == expected.size && same(seen, expected.vports, keys);
}

bool same(VornicCentral::VpIndexConfig const& seen, Config const& expected,
          LibraryKeys const& keys) {
    return same(seen, expected.keys, keys);
}

template <class Entries, class R>
bool same(Entries const& seen, Members<std::string, RecordId> const& expected,
          std::vector<R> const& records, LibraryKeys const& keys) {
    if (seen.memberCount() != expected.size()) {
        return false;
    }
    typename Entries::Iterator it(seen);
    for (auto const& [name, id] : expected) {
        if (!it || it.key().view() != name || !same(*it.value(), records[id], keys)) {
            return false;
        }
        it.advance();
    }
    return true;
}

bool same(Bask::Bitmap const& seen, std::vector<bool> const& expected) {
    bool all = seen.size() == expected.size();
    for (U32 at = 0; all && at < seen.size(); ++at) {
        all = seen.isBitSet(at) == expected[at];
    }
    return all;
}

/// The allocators, each with the very records for which it was made.
bool same(VornicCentral::VpIndexAllocatorDirSm const& seen, State const& expected,
          LibraryKeys const& keys) {
    auto const& allocators = expected.machine->allocators;
    bool all = seen.initialized() == expected.machine->initialized &&
               seen.vpIndexAllocator().memberCount() == allocators.size();
    VornicCentral::VpIndexAllocatorDirSm::Allocators::Iterator it(seen.vpIndexAllocator());
    for (auto at = allocators.begin(); all && at != allocators.end(); ++at, it.advance()) {
        auto const& [name, allocator] = *at;
        all = it && it.key().view() == name && it.value()->name().view() == name &&
              it.value()->initialized() && it.value()->vfiForwarding() == allocator.vfiForwarding &&
              same(*it.value()->vpIndexConfig(), expected.configs[allocator.client.config], keys) &&
              same(*it.value()->vpIndexStatus(), expected.statuses[allocator.client.status], keys);
    }
    return all;
}

} // namespace

bool Subject::holds(State const& expected) const {
    bool const pool = expected.machine && expected.machine->pool;
    if (pool != (world_.sm && world_.sm->vpBitmap())) {
        return false;
    }
    if (expected.machine && !same(*world_.sm, expected, keys_)) {
        return false;
    }
    return (!pool || same(*world_.sm->vpBitmap(), expected.machine->pool->bits)) &&
           same(world_.configDir->vpIndexConfig(), expected.configDir, expected.configs, keys_) &&
           same(world_.statusDir->vpIndexStatus(), expected.statusDir, expected.statuses, keys_) &&
           same(*world_.references, expected.references, keys_) &&
           same(*world_.waiting, expected.waiting, keys_) &&
           same(*world_.boot, expected.boot, keys_);
}

} // namespace ModelTest
