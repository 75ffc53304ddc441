#pragma once

#include "VornicL3Shared/model/Journal.h"
#include "VornicL3Shared/model/ModelState.h"

namespace ModelTest {

struct Operation;
enum class Variant;

/// The ways in which a call ends other than by returning.
struct Stop { ///< a failed assertion
    std::string text;
    std::string function;
};
struct Terminated {}; ///< an exception left a reactor
struct Refused {      ///< an exception of the runtime; what was done before it stays
    std::string attribute;
};

/// Facts on which the model relies, apart from the rest so that a test can give it a wrong one.
struct Beliefs {
    std::array<Kind, kindCount> recycleOrder = {Kind::vlan, Kind::remote, Kind::mlag, Kind::edge,
                                                Kind::efilter};
    std::vector<Kind> hinderBootRecovery = {Kind::remote, Kind::edge, Kind::vlan};
    U32 reservedIndices = 8;
    bool localKindsAskHigh = true;
    bool sharedIndicesCountAsRequests = false;
};

/// What the library should do, told a second time: slowly, on plain lists, with texts of its own.
///
/// It knows every record, the directories, the pool, the allocators and the reactors between them,
/// and predicts all that the library shows: the state, every trace line, every log message, every
/// notification of the records (when `watched`), and the assertion that ends the process.
class Model {
public:
    explicit Model(bool watched, Beliefs beliefs = {})
        : beliefs_(std::move(beliefs)), watched_(watched) {}

    /// Whether the operation has anything to work on.
    bool applies(Operation const& operation) const;
    /// Carries the operation out and returns its result as text. Throws a `Stop`, `Terminated` or
    /// `Refused`.
    std::string apply(Operation const& operation);
    /// The check of the whole table, as `apply`.
    void verify();

    State const& state() const { return state_; }
    void stateIs(State const& state) { state_ = state; }
    bool running() const { return state_.machine.has_value(); }
    /// What has been reported, in the order in which it happened.
    Journal& journal() { return journal_; }

private:
    // Reports.
    template <class... Pieces> void trace(U32 level, Pieces const&... pieces) {
        journal_.line("trace ", level, " ", pieces...);
    }
    void logFull(std::string const& vport);
    void logNormal(std::string const& vport);
    template <class Value>
    void changed(std::string const& record, Kind kind, Key key, Value const& value);
    void deleted(std::string const& record, Kind kind, Key key);
    static void check(bool condition, char const* text, char const* function) {
        if (!condition) {
            throw Stop{text, function};
        }
    }

    // The records: every change is told to whoever listens.
    void referenceIs(Kind kind, Key key, Reference const& value);
    void referenceDel(Kind kind, Key key);
    void waitingIs(Kind kind, Key key, Flag value);
    void waitingDel(Kind kind, Key key);
    void bootIs(Kind kind, Key key, VPort value);
    void bootDel(Kind kind, Key key);
    void statusIs(RecordId id, Kind kind, Key key, VPort value);
    void statusDel(RecordId id, Kind kind, Key key);
    void counterIs(RecordId id, U32 Status::*counter, U32 value);
    void configIs(RecordId id, Kind kind, Key key, Flag value);
    void configDel(RecordId id, Kind kind, Key key);
    void configChanged(RecordId id, Kind kind, Key key);
    void configDirIs(std::string const& name, RecordId id);
    void configDirDel(std::string const& name);
    void statusDirIs(std::string const& name, RecordId id);
    void statusDirDel(std::string const& name);
    void directoryChanged(char const* directory, std::string const& name, std::string const& to);
    template <class Handler> void react(Handler&& handler);

    // The agent around the library.
    bool applies(Variant variant, Operation const& operation) const;
    void clientAdd(std::string const& name);
    void clientRetire(std::string const& name);
    RecordId newConfig(std::string const& name);
    RecordId newStatus(std::string const& name);
    void saveBoot();
    std::string look(Operation const& operation);
    RecordId ownConfig(std::string const& name) const { return state_.ownConfig.get(name); }
    RecordId statusOf(std::string const& name) const { return state_.statusDir.get(name); }
    bool directoryOperation(Operation const& operation);
    bool requestOperation(Operation const& operation);
    bool recordOperation(Operation const& operation);
    bool statusOperation(Operation const& operation);
    bool clearOperation(Operation const& operation);
    bool lifeOperation(Operation const& operation);
    std::string call(Operation const& operation);
    std::string poolCall(Operation const& operation);
    std::string callAllocatorIs(Operation const& operation);
    std::string callClient(Operation const& operation);
    std::string callRemoteHelper(Operation const& operation, Client client);

    // The pool.
    std::vector<bool>& bits() { return state_.machine->pool->bits; }
    bool isBitSet(U32 index);
    U32 setBits();
    void vpBitmapIs(U32 id, U32 size, bool initialState);
    void setVpBitmap(U32 index);
    U32 allocVpIndex(bool preferHigh);
    U32 findClear(bool preferHigh);
    void freeVpIndex(U32 index);

    // The state machine's life.
    Machine& machine() { return *state_.machine; }
    void start(Settings const& settings);
    void handleInitialized();
    void handleVpIndexConfig();
    void handleVpIndexConfig(std::string const& name);
    void vpIndexAllocatorIs(RecordId config, RecordId status, bool vfiForwarding);
    bool configured(std::string const& name);
    void vpIndexAllocatorDel(std::string const& name);
    void reactorsOn(bool active);

    // The allocators.
    std::string const& nameOf(Client client) { return state_.configs[client.config].name; }
    bool requested(Client client, Kind kind, Key key);
    void handleClientInitialized(Client client);
    void sweep(Client client, Kind kind);
    void handleKey(Client client, Kind kind, Key key);
    void handleLocal(Client client, Kind kind, Key key);
    void addLocal(Client client, Kind kind, Key key, Reference reference);
    void handleRemote(Client client, Kind kind, Key key);
    void handleRemoteCommon(Client client, Kind kind, Key key);
    Reference getRemoteVportRef(Kind kind, Key key);
    void addRemote(Client client, Kind kind, Key key, Reference reference);
    VPort allocate(Client client, Kind kind, Key key, bool preferHigh);
    void withdraw(Client client, Kind kind, Key key, Reference reference);
    void release(Kind kind, Key key, U32 index);
    void verifyAndUpdateAllocStats(Client client, U32 index);
    void updateFreeStats(Client client, U32 index);

    // Waiting keys.
    void handleInvalid(Kind kind, Key key);
    void handleInvalidAll(Kind kind);
    void recycleOrFreeVpIndex(U32 index);
    bool recycleTo(Kind kind, VPort vp);
    void handOver(Kind kind, Key key, std::string const& name, VPort vp);

    // Restart and clean-up.
    void reconcile();
    void recoverReference(Kind kind, Key key);
    void recoverBootEntry(Kind kind, Key key);
    void cleanUpStatus(std::string const& name);
    void clearStaleEntries();

    // Checks.
    void verifyClient(Client client);
    void verifyClientKind(Client client, Kind kind);
    void verifyStatusEntry(Client client, Kind kind, Key key, VPort vPort);
    void verifyReference(Kind kind, Key key);

    State state_;
    std::string result_; ///< of an operation on the records
    Journal journal_;
    Beliefs beliefs_;
    bool watched_;
};

} // namespace ModelTest
