#pragma once

#include "state/Database.h"
#include "statefile/Loader.h"
#include "statefile/RecordChanges.h"

#include <memory>
#include <unordered_map>
#include <vector>

namespace VpAgent {

/// What of the database differs from the state file.
///
/// It subscribes to the shared records, the two directories and both records of every client, and
/// collects what changes, however often, as one change. The database must outlive it.
///
/// Cost: per change that of filing the key; `writeTo` and `clear` are proportional to what changed.
class ChangeTracker {
public:
    /// The database is as `loaded` left it.
    ChangeTracker(Database const& database, Loaded const& loaded);
    ~ChangeTracker();
    ChangeTracker(ChangeTracker const&) = delete;
    ChangeTracker& operator=(ChangeTracker const&) = delete;

    bool empty() const noexcept { return !changed_; }

    /// Brings the rows of all that changed up to date.
    void writeTo(Writer& writer);

    /// The file holds the database as it is now.
    void clear();

private:
    struct TrackedClient;

    static void configListed(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId,
                             void const* key, void const* value) noexcept;
    static void statusListed(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId,
                             void const* key, void const* value) noexcept;

    void statusIs(Pelo::String const& name, bool present);
    TrackedClient& track(Client const& client, ClientRow const& row);
    void forget(TrackedClient& client);
    void touch(TrackedClient& client);
    void placeClients(Writer& writer);

    Database const& database_;
    std::unordered_map<std::string_view, std::unique_ptr<TrackedClient>> clients_; ///< by row.name
    std::vector<TrackedClient*> touched_; ///< the clients of which anything changed
    std::vector<U64> forgotten_;          ///< ids that have rows and are not known any more
    U64 nextClient_;
    bool changed_ = false;
    RecordChanges<VornicCentral::VpReferenceList> references_;
    RecordChanges<VornicCentral::VpInvalidReferenceList> waiting_;
    RecordChanges<VornicCentral::VxlanBootStatus> boot_;
    Pelo::Subscriber configs_;
    Pelo::Subscriber statuses_;
};

} // namespace VpAgent
