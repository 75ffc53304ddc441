#pragma once

// The layer-3 multicast unit, all that its users need: the service below, the holder in which it is
// found, the two interface sets and the database that binds them.

#include "VornicL3Shared/BumAllowedBackplaneIntf.h"
#include "VornicL3Shared/Export.h"
#include "VornicL3Shared/L3IpmcLocalDb.h"
#include "VornicL3Shared/L3McastGroupApiHolder.h"
#include "VornicL3Shared/NonUcastHigigIntfs.h"
#include "devbus/FapId.h"
#include "pelo/Node.h"

namespace VornicL3 {

/// The service that recomputes the L2 bitmaps of multicast groups. Abstract: the agent derives its
/// implementation and installs it in the `L3McastGroupApiHolder`.
///
///     Pelo::Ptr<L3McastGroupApi> const api = holder->l3McastGroupApi();
///     if (api) { // the copy keeps it alive during the call
///         api->updateL2Bitmaps(Devbus::FapId(1), true);
///     }
///
/// Both operations can be called by number and by name through generic access, whatever the
/// implementation; there they are refused on a constant. An implementation lives as long as
/// somebody holds it, the holder included. It is called on the event thread; what a call costs, and
/// what it refuses, is the implementation's.
class VORNICL3SHARED_API L3McastGroupApi : public Pelo::Node {
public:
    static constexpr Pelo::FieldId updateL2BitmapsField = 130;
    static constexpr Pelo::FieldId updateAllL2BitmapsField = 131;

    /// Recomputes the bitmaps for one forwarding chip. What `post` changes is for the
    /// implementation to say.
    virtual void updateL2Bitmaps(Devbus::FapId fapId, bool post) = 0;
    /// Recomputes them for all chips.
    virtual void updateAllL2Bitmaps() = 0;

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const final;

protected:
    L3McastGroupApi() noexcept = default;
    ~L3McastGroupApi() override;
};

} // namespace VornicL3
