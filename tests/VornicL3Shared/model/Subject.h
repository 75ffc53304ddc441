#pragma once

#include "VornicL3Shared/model/Journal.h"
#include "VornicL3Shared/model/LibraryKeys.h"
#include "VornicL3Shared/model/Operation.h"
#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/World.h"
#include "qor/Inspection.h"

#include <list>
#include <map>
#include <optional>

namespace ModelTest {

/// The library under the same operations as the model, and all that it reports in one list, in the
/// order in which it happened.
class Subject {
public:
    /// `watched`: the records' notifications are reported too. An unwatched record has no
    /// subscribers but the library's own.
    /// `generic`: what generic access offers is done through it, by number.
    Subject(bool watched, bool generic);
    ~Subject();
    Subject(Subject const&) = delete;
    Subject& operator=(Subject const&) = delete;

    /// Carries the operation out and returns its result as text; "refused ATTRIBUTE" when the
    /// library threw one of the runtime's exceptions.
    std::string apply(Operation const& operation);
    void verify();
    std::string state() const { return world_.state(); }
    /// Whether the whole state is the expected one: as comparing the texts, at a fraction of the
    /// cost.
    bool holds(State const& expected) const;

    /// What has been reported. While traces are muted the library does not write any.
    Journal& journal() { return journal_; }
    void mutedIs(bool muted);

private:
    template <class Record> void watch(Record const& record, std::string const& title);
    template <class Directory> void watchDirectory(Directory const& directory, char const* title);
    template <class Record>
    void report(Record const& record, std::string const& title, Test::Notification const& change);
    static Pelo::String nameOf(Operation const& operation) {
        return Pelo::String(operation.client);
    }
    Pelo::Ptr<VornicCentral::VpIndexConfig> newConfig(Pelo::String const& name);
    Pelo::Ptr<VornicCentral::VpIndexStatus> newStatus(Pelo::String const& name);
    VornicCentral::VpIndexConfig& ownConfig(Operation const& operation) {
        return *ownConfigs_.at(operation.client);
    }
    VornicCentral::VpIndexAllocator& allocator(Operation const& operation) const {
        return *world_.sm->vpIndexAllocator(nameOf(operation));
    }

    // The access to a record or a state machine, by the one way or the other.
    template <class K, class Record, class Value>
    void put(Record& record, typename K::Key const& key, Value const& value) const;
    template <class K, class Record>
    typename Record::Value take(Record& record, typename K::Key const& key) const;
    template <class K, class Record> void clear(Record& record) const;
    template <class K, class Record>
    std::string lookAt(Record const& record, typename K::Key const& key) const;

    void clientAdd(Operation const& operation);
    void clientRetire(Operation const& operation);
    void saveBoot();
    void start(Settings const& settings);
    bool directoryOperation(Operation const& operation);
    bool recordReplacement(Operation const& operation);
    bool recordOperation(Operation const& operation);
    bool statusOperation(Operation const& operation);
    template <class K> bool keyedRecordOperation(Operation const& operation);
    template <class K> bool keyedClientOperation(Operation const& operation);
    template <class K> std::string look(Operation const& operation);
    bool lifeOperation(Operation const& operation);
    std::string call(Operation const& operation);
    std::string poolCall(Operation const& operation);
    std::string callAllocatorIs(Operation const& operation);
    std::string callClient(Operation const& operation);
    std::string callRemoteHelper(Operation const& operation);
    /// The operations that generic access offers; nothing for any other.
    std::optional<std::string> genericCall(Operation const& operation);
    std::optional<std::string> genericClientCall(Operation const& operation);

    Test::World world_;
    bool watched_;
    bool generic_;
    Settings settings_;
    std::string result_; ///< of an operation on the records
    std::map<std::string, Pelo::Ptr<VornicCentral::VpIndexConfig>> ownConfigs_;
    LibraryKeys keys_;
    Journal journal_;
    std::list<Test::Listener> listeners_;
    Qor::TraceSink formerTraceSink_;
    Qor::LogSink formerLogSink_;
};

VornicCentral::VpReference libraryReference(Operation const& operation);
/// A reference in the form of `valueText`.
std::string referenceText(VornicCentral::VpReference const& reference);

} // namespace ModelTest
