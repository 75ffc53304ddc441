#pragma once

#include "VornicL3Shared/model/Journal.h"
#include "VornicL3Shared/model/LibraryKeys.h"
#include "VornicL3Shared/model/Operation.h"
#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/World.h"

#include <list>
#include <map>

namespace ModelTest {

/// The library under the same operations as the model, and all that it reports in one list, in the
/// order in which it happened.
class Subject {
public:
    /// `watched`: the records' notifications are reported too. An unwatched record has no
    /// subscribers but the library's own.
    explicit Subject(bool watched);
    ~Subject();
    Subject(Subject const&) = delete;
    Subject& operator=(Subject const&) = delete;

    /// Carries the operation out and returns its result as text; "refused ATTRIBUTE" when the
    /// library threw one of the runtime's exceptions.
    std::string apply(Operation const& operation);
    void verify() { world_.sm->verify(); }
    std::string state() const { return world_.state(); }
    /// Whether the whole state is the expected one: as comparing the texts, at a fraction of the
    /// cost.
    bool holds(State const& expected) const;

    /// What has been reported. While traces are muted the library does not write any.
    Journal& journal() { return journal_; }
    void mutedIs(bool muted);

private:
    template <class Record> void watch(Record const& record, std::string const& title);
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

    void clientAdd(Operation const& operation);
    void clientRetire(Operation const& operation);
    void saveBoot();
    void start(Settings const& settings);
    bool agentOperation(Operation const& operation);
    bool recordOperation(Operation const& operation);
    template <class K> bool keyedRecordOperation(Operation const& operation);
    bool lifeOperation(Operation const& operation);
    std::string call(Operation const& operation);
    std::string poolCall(Operation const& operation);
    std::string callClient(Operation const& operation);

    Test::World world_;
    bool watched_;
    std::map<std::string, Pelo::Ptr<VornicCentral::VpIndexConfig>> ownConfigs_;
    LibraryKeys keys_;
    Journal journal_;
    std::list<Test::Listener> listeners_;
    Qor::TraceSink formerTraceSink_;
    Qor::LogSink formerLogSink_;
};

/// A reference in the form of `valueText`.
std::string referenceText(VornicCentral::VpReference const& reference);

} // namespace ModelTest
