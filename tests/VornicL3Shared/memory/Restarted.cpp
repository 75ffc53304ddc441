#include "VornicL3Shared/memory/Restarted.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <vector>

namespace MemoryTest {
namespace {

using namespace VornicCentral;

/// Copies the members one by one; says so when they are not as many as the collection counts, or
/// one is not found by its key.
template <class Record> std::string copyMembers(Record const& from, Record& to) {
    std::string wrong;
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        auto const& members = from.template collection<Kind>();
        U32 walked = 0;
        for (typename Record::template Collection<Kind>::Iterator it(members); it; it.advance()) {
            ++walked;
            to.template is<Kind>(it.key(), it.value());
            if (members.lookupNode(it.key()) != it.currNodeMaybeStale()) {
                wrong += "a key of " + std::string(from.name()) + " is not found\n";
            }
        }
        if (walked != members.memberCount()) {
            wrong += std::string(from.name()) + " has another number of members than it counts\n";
        }
    });
    return wrong;
}

std::string copyRecords(Test::World const& from, Test::World& to) {
    std::string wrong = copyMembers(*from.references, *to.references) +
                        copyMembers(*from.waiting, *to.waiting) + copyMembers(*from.boot, *to.boot);
    for (VpIndexStatusDir::Entries::Iterator it(from.statusDir->vpIndexStatus()); it;
         it.advance()) {
        auto const copy = vpIndexStatusFactory(it.key());
        wrong += copyMembers(*it.value(), *copy);
        to.statusDir->vpIndexStatusIs(it.key(), copy);
    }
    for (VpIndexConfigDir::Entries::Iterator it(from.configDir->vpIndexConfig()); it;
         it.advance()) {
        auto const copy = vpIndexConfigFactory(it.key());
        wrong += copyMembers(*it.value(), *copy);
        to.configDir->vpIndexConfigIs(it.key(), copy);
    }
    return wrong;
}

/// Calls `visit(kind, key, reference)` for each reference, which it may delete.
template <class Visit> void forEachReference(Test::World const& world, Visit visit) {
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        for (typename VpReferenceList::Collection<Kind>::Iterator it(
                 world.references->collection<Kind>());
             it; it.advance()) {
            typename Kind::Key const key(it.key());
            VpReference const reference = it.value(); // NOLINT: see above
            visit(kind, key, reference);
        }
    });
}

/// What has to hold whether or not keys wait: an index for each reference, and no other in use.
std::string disagreements(Test::World const& world) {
    std::string wrong;
    std::map<U32, U32> users;
    forEachReference(world, [&](auto kind, auto const& key, VpReference const& reference) {
        VirtualPort const vPort = reference.vPort();
        users[vPort.vpIndex()] += 1;
        for (Pelo::String const& name : reference.references()) {
            auto const status = world.statusDir->vpIndexStatus(name);
            if (!status || !(status->get<decltype(kind)>(key) == vPort)) {
                wrong += "the status of " + std::string(name) + " has another index for " +
                         Test::textOf(key) + "\n";
            }
        }
    });
    for (U32 index = VpIndexAllocatorDirSm::maxSystemSourceVp_; index < world.settings.tableSize;
         ++index) {
        if (users[index] != (world.sm->vpBitmap()->isBitSet(index) ? 1u : 0u)) {
            wrong += "index " + std::to_string(index) + " has " + std::to_string(users[index]) +
                     " users\n";
        }
    }
    return wrong;
}

/// Deletes references that name nobody and whose index another reference holds.
bool deleteDoubles(Test::World& world) {
    std::map<U32, U32> holders;
    forEachReference(world, [&](auto kind, auto const&, VpReference const& reference) {
        static_cast<void>(kind);
        holders[reference.vPort().vpIndex()] += reference.vPort().valid() ? 1u : 0u;
    });
    bool any = false;
    forEachReference(world, [&](auto kind, auto const& key, VpReference const& reference) {
        if (holders[reference.vPort().vpIndex()] > 1 && !reference.references()) {
            world.references->del<decltype(kind)>(key);
            any = true;
        }
    });
    return any;
}

/// Deletes the waiting entries of keys that do not wait, which an earlier run may leave; they are
/// passed over when an index is handed to the first that waits.
void deleteLeftOvers(Test::World& world) {
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        auto const& waiting = world.waiting->collection<Kind>();
        for (typename VpInvalidReferenceList::Collection<Kind>::Iterator it(waiting); it;
             it.advance()) {
            VpReference const* const found = world.references->find<Kind>(it.key());
            if (found == nullptr || found->vPort().valid()) {
                world.waiting->del<Kind>(it.key());
            }
        }
    });
}

bool isCounter(std::string const& word) {
    return word.starts_with("requests=") || word.starts_with("failures=") ||
           word.starts_with("frees=") || word.starts_with("size=");
}

} // namespace

Restart restarted(Test::World const& world) {
    Restart restart;
    Test::World next(world.settings);
    std::string const wrong = copyRecords(world, next);
    restart.doubled = deleteDoubles(next);
    next.start();
    next.sm->clearStaleEntries();
    deleteLeftOvers(next);
    if (next.waiting->memberCount() == 0) {
        next.sm->verify();
    }
    restart.state = plain(next.state()) + wrong + disagreements(next);
    return restart;
}

std::string plain(std::string const& state) {
    std::string text;
    std::istringstream lines(state);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::vector<std::string> sorted;
        std::string kind;
        for (std::string word; words >> word;) {
            std::size_t const brace = word.find('{');
            if (brace != word.npos) {
                kind = word.substr(0, brace);
                word.erase(0, brace + 1);
            }
            if (!isCounter(word)) {
                sorted.push_back(kind + ' ' + word.substr(0, word.find('}')));
            }
        }
        std::sort(sorted.begin(), sorted.end());
        for (std::string const& word : sorted) {
            text += word + ' ';
        }
        text += '\n';
    }
    return text;
}

} // namespace MemoryTest
