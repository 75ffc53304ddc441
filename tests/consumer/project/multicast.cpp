// The multicast unit: the shared sets, the database that binds them, and a service of the agent's.

#include "VornicL3Shared/L3McastGroupApi.h"
#include "group_service.h"
#include "qor/Inspection.h"
#include "shows.h"

#include <array>
#include <iostream>

namespace Consumer {
namespace {

using namespace VornicL3;

/// Shows which set a chip had before each change.
void showFormer(Pelo::Publisher*, Pelo::Subscriber*, Pelo::FieldId, void const* key,
                void const* value) noexcept {
    auto const* const former = static_cast<Interface::IntfSet const*>(value);
    std::cout << "  chip " << *static_cast<Devbus::FapId const*>(key) << " had ";
    if (former == nullptr) {
        std::cout << "no entry\n";
    } else {
        std::cout << *former << '\n';
    }
}

} // namespace

void showMulticast() {
    std::cout << "multicast\n";
    auto const higig = nonUcastHigigIntfsFactory("higig");
    auto const backplane = bumAllowedBackplaneIntfFactory("backplane");
    auto const database = l3IpmcLocalDbFactory(backplane, higig);
    Pelo::Subscriber subscriber(nullptr, &showFormer);
    higig->publisher()->subscriberAdd(&subscriber, false);
    database->hwHigigIntfs()->higigIntfsIs(Devbus::FapId(3), {Netzo::IntfId("Higig1")});
    database->hwHigigIntfs()->higigIntfsDel(Devbus::FapId(3));

    auto const holder = l3McastGroupApiHolderFactory("holder");
    holder->l3McastGroupApiIs(groupServiceFactory());
    holder->l3McastGroupApi()->updateL2Bitmaps(Devbus::FapId(1), true);
    std::array<std::string_view, 2> const arguments{"2", "false"};
    Qor::callByName(*holder->l3McastGroupApi(), "updateL2Bitmaps", arguments);
    Qor::callByName(*holder->l3McastGroupApi(), "updateAllL2Bitmaps", {});
    holder->l3McastGroupApiIs(nullptr);
}

} // namespace Consumer
