// The multicast unit: how a component of the agent reaches the multicast group service of another
// one, which may be replaced while the agent runs.
//
// One component offers the service: it derives L3McastGroupApi and installs an object of it in the
// holder. The other one knows the holder only. Both share the sets of interfaces, which the local
// database binds.

#include "VornicL3Shared/L3McastGroupApi.h"

#include <iostream>
#include <string>
#include <utility>

using namespace VornicL3;

namespace {

/// The service. A real one computes a bitmap of ports; this one shows what it would compute it of.
class GroupService final : public L3McastGroupApi {
public:
    GroupService(std::string name, Pelo::Ptr<L3IpmcLocalDb> const& database)
        : name_(std::move(name)), database_(database) {}
    ~GroupService() override { std::cout << "    " << name_ << " is gone\n"; }

    /// What `post` means is for each service to say; here, that the change has been made.
    void updateL2Bitmaps(Devbus::FapId fapId, bool post) override {
        std::cout << "    " << name_ << ": chip " << fapId << (post ? ", after" : ", before")
                  << " the change: Higig " << database_->hwHigigIntfs()->higigIntfs(fapId)
                  << ", backplane " << database_->allowedBackplaneIntf()->intfs() << '\n';
    }

    void updateAllL2Bitmaps() override {
        NonUcastHigigIntfs const& chips = *database_->hwHigigIntfs();
        for (NonUcastHigigIntfs::HigigIntfs::Iterator it(chips.higigIntfs()); it; it.advance()) {
            updateL2Bitmaps(Devbus::FapId(it.key()), true);
        }
    }

private:
    std::string name_;
    Pelo::Ptr<L3IpmcLocalDb> database_;
};

/// The component that uses the service: whenever the interfaces of a chip change, or the service
/// itself, the bitmaps are out of date.
class ChipFollower {
public:
    ChipFollower(Pelo::Ptr<L3McastGroupApiHolder> const& holder,
                 Pelo::Ptr<NonUcastHigigIntfs> const& chips)
        : holder_(holder),
          serviceChanged_(this, &onServiceChanged),
          chipChanged_(this, &onChipChanged) {
        bool const beforeOthers = false; // who subscribed first is told first
        holder->publisher()->subscriberAdd(&serviceChanged_, beforeOthers);
        chips->publisher()->subscriberAdd(&chipChanged_, beforeOthers);
    }

private:
    /// The holder publishes one field. `value` points to the former service; the one that is
    /// installed now, if any, is read from the holder.
    static void onServiceChanged(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId,
                                 void const*, void const* value) noexcept {
        auto const& former = *static_cast<Pelo::Ptr<L3McastGroupApi> const*>(value);
        auto const& self = subscriber->owner<ChipFollower>();
        Pelo::Ptr<L3McastGroupApi> const api = self.holder_->l3McastGroupApi();
        std::cout << "    the service is "
                  << (!api     ? "removed"
                      : former ? "replaced"
                               : "installed")
                  << '\n';
        if (api) {
            api->updateAllL2Bitmaps();
        }
    }

    /// The copy of the pointer keeps the service alive during the call, whatever the call does.
    static void onChipChanged(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId,
                              void const* key, void const*) noexcept {
        auto const& self = subscriber->owner<ChipFollower>();
        Pelo::Ptr<L3McastGroupApi> const api = self.holder_->l3McastGroupApi();
        if (!api) {
            std::cout << "    nobody computes bitmaps\n";
            return;
        }
        api->updateL2Bitmaps(*static_cast<Devbus::FapId const*>(key), true);
    }

    Pelo::Ptr<L3McastGroupApiHolder> holder_;
    Pelo::Subscriber serviceChanged_;
    Pelo::Subscriber chipChanged_;
};

} // namespace

int main() {
    // What all components share. Who gets at the database may change the chips, and reads the
    // backplane.
    auto const chips = nonUcastHigigIntfsFactory("chips");
    auto const backplane = bumAllowedBackplaneIntfFactory("backplane");
    auto const database = l3IpmcLocalDbFactory(backplane, chips);
    auto const holder = l3McastGroupApiHolderFactory("holder");
    ChipFollower const follower(holder, chips);

    std::cout << "Chip 1 gets two interfaces:\n";
    chips->higigIntfsIs(Devbus::FapId(1), {Netzo::IntfId("Higig1"), Netzo::IntfId("Higig2")});

    std::cout << "The first service is installed:\n";
    backplane->intfsIs({Netzo::IntfId("Backplane1")});
    holder->l3McastGroupApiIs(Pelo::newNode<GroupService>("service 1", database));

    std::cout << "Chip 2 gets an interface, then chip 1 loses one:\n";
    chips->higigIntfsIs(Devbus::FapId(2), {Netzo::IntfId("Higig3")});
    chips->higigIntfsIs(Devbus::FapId(1), {Netzo::IntfId("Higig2")});

    // The former service lives until everybody has been told of the new one.
    std::cout << "Another service takes over:\n";
    holder->l3McastGroupApiIs(Pelo::newNode<GroupService>("service 2", database));

    std::cout << "It leaves:\n";
    holder->l3McastGroupApiIs(nullptr);
}
