#pragma once

#include "VornicL3Shared/L3McastGroupApi.h"
#include "output/McastEvent.h"
#include "output/Reporter.h"
#include "pelo/Publisher.h"
#include "state/SampleGroupApi.h"

#include <string>
#include <string_view>

namespace VpAgent {

/// The shared entities of layer-3 multicast, while there are any: the holder of the group API, the
/// two interface sets, and the database that binds them. They are in memory only.
///
/// It subscribes to each of them and reports every notification, every call of the installed group
/// API and its end, at the moment when it happens.
class Multicast {
public:
    /// What to say, and what to expect, while there are none.
    static constexpr std::string_view missing =
        "there are no multicast entities, expected 'mcast create' before";

    explicit Multicast(Reporter& reporter) : reporter_(reporter) {}
    /// Reports nothing any more.
    ~Multicast();
    Multicast(Multicast const&) = delete;
    Multicast& operator=(Multicast const&) = delete;

    bool created() const noexcept { return static_cast<bool>(holder_); }

    /// Makes all four. There are none yet.
    void create();
    /// Lets all four go, and with them the installed group API. They are there.
    void destroy();

    /// Null while there are none.
    Pelo::Ptr<VornicL3::L3McastGroupApiHolder> const& holder() const noexcept { return holder_; }
    Pelo::Ptr<VornicL3::NonUcastHigigIntfs> const& higig() const noexcept { return higig_; }
    Pelo::Ptr<VornicL3::BumAllowedBackplaneIntf> const& backplane() const noexcept {
        return backplane_;
    }
    Pelo::Ptr<VornicL3::L3IpmcLocalDb> const& ipmc() const noexcept { return ipmc_; }

    /// Installs a sample group API of that name: the installed one again when it has the name. They
    /// are there.
    void install(std::string_view name);

    /// The name of the installed group API; null when there is none. They are there.
    std::string const* installed() const noexcept;

    /// How many events have been reported since the beginning.
    U64 eventCount() const noexcept { return eventCount_; }

private:
    static void higigChanged(Pelo::Publisher* publisher, Pelo::Subscriber* subscriber,
                             Pelo::FieldId field, void const* key, void const* former) noexcept;
    static void backplaneChanged(Pelo::Publisher* publisher, Pelo::Subscriber* subscriber,
                                 Pelo::FieldId field, void const* key, void const* former) noexcept;
    static void holderChanged(Pelo::Publisher* publisher, Pelo::Subscriber* subscriber,
                              Pelo::FieldId field, void const* key, void const* former) noexcept;

    void report(McastEvent const& event);

    Reporter& reporter_;
    bool silent_ = false;
    U64 eventCount_ = 0;
    Pelo::Ptr<VornicL3::L3McastGroupApiHolder> holder_;
    Pelo::Ptr<VornicL3::NonUcastHigigIntfs> higig_;
    Pelo::Ptr<VornicL3::BumAllowedBackplaneIntf> backplane_;
    Pelo::Ptr<VornicL3::L3IpmcLocalDb> ipmc_;
    Pelo::Subscriber higigWatch_{this, &higigChanged};
    Pelo::Subscriber backplaneWatch_{this, &backplaneChanged};
    Pelo::Subscriber holderWatch_{this, &holderChanged};
};

} // namespace VpAgent
