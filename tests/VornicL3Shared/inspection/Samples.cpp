#include "VornicL3Shared/inspection/Samples.h"

#include "VornicL3Shared/multicast/Multicast.h"
#include "bask/BitmapTraits.h"

namespace Test {

using namespace VornicCentral;
using Qor::GenericValue;

Samples::Samples() {
    world.client("bgp");
    world.client("mlag");
    world.request("bgp", vlan(100));
    world.request("bgp", remote("10.0.0.2@17"));
    world.request("bgp", mlag("10.0.0.2@17"));
    world.request("mlag", edge("Ethernet1/1:100"));
    world.request("mlag", efilter("Ethernet7"));
    world.start();
    world.waiting->vlanVportIs(Bridging::VlanId(200), true);
    world.boot->vlanVportIs(Bridging::VlanId(200), VirtualPort(9));
    addPlainValues();
    addEntities();
    addMulticast();
}

template <class T> void Samples::add(T const& first, T const& second) {
    GenericValue const value = GenericValue::of(first);
    values_[value.type()->name()] = {value, GenericValue::of(second)};
}

/// Both as pointers to something mutable and as pointers to constants.
template <class T> void Samples::addEntity(Pelo::Ptr<T> const& first, Pelo::Ptr<T> const& second) {
    add(first, second);
    add(Pelo::Ptr<T const>(first), Pelo::Ptr<T const>(second));
    objects_[first->typeData()->name()] = first;
}

void Samples::addPlainValues() {
    VpReference reference(VirtualPort(12));
    reference.referenceIs("bgp", true);
    add(true, false);
    add(U8{1}, U8{2});
    add(U16{10}, U16{11});
    add(U32{40}, U32{41});
    add(U64{30}, U64{31});
    add(Pelo::String("ospf"), Pelo::String("isis"));
    add(keyOf<RemoteVtepKey>("10.0.0.9@1"), keyOf<RemoteVtepKey>("10.0.0.9@2"));
    add(keyOf<PortVlanKey>("Ethernet9:1"), keyOf<PortVlanKey>("Ethernet9:2"));
    add(Bridging::VlanId(1), Bridging::VlanId(2));
    add(Netzo::IntfId("Ethernet8"), Netzo::IntfId("Ethernet9"));
    add(VirtualPort(13), VirtualPort(14));
    add(reference, VpReference(VirtualPort(15)));
    add(Bask::HBitmap::BitState::set, Bask::HBitmap::BitState::clear);
    add(Bask::Preference::high, Bask::Preference::low);
}

void Samples::addEntities() {
    addEntity(world.references, vpReferenceListFactory("other"));
    addEntity(world.waiting, vpInvalidReferenceListFactory("other"));
    addEntity(world.boot, vxlanBootStatusFactory("other"));
    addEntity(world.configDir, vpIndexConfigDirFactory("other"));
    addEntity(world.statusDir, vpIndexStatusDirFactory("other"));
    addEntity(world.configDir->vpIndexConfig("bgp"), world.configDir->vpIndexConfig("mlag"));
    addEntity(world.statusDir->vpIndexStatus("bgp"), world.statusDir->vpIndexStatus("mlag"));
    addEntity(vxlanCapabilitiesFactory("low", true), vxlanCapabilitiesFactory("high", false));
    addEntity(world.sm->vpIndexAllocator("bgp"), world.sm->vpIndexAllocator("mlag"));
    addEntity(world.sm, Pelo::Ptr<VpIndexAllocatorDirSm>());
    addEntity(world.sm->vpBitmap(),
              Pelo::newNode<Bask::Bitmap>(U64{1}, U32{8}, Bask::HBitmap::BitState::clear));
}

void Samples::addMulticast() {
    using namespace VornicL3;
    add(fap(1), fap(2));
    add(intfs("Ethernet1 Ethernet2"), intfs("Ethernet3"));
    auto const higig = nonUcastHigigIntfsFactory("higig");
    higig->higigIntfsIs(fap(3), intfs("Ethernet4"));
    auto const backplane = bumAllowedBackplaneIntfFactory("backplane");
    backplane->intfsIs(intfs("Ethernet5"));
    Pelo::Ptr<L3McastGroupApi> const service = Pelo::newNode<SampleApi>(serviceCalls_);
    auto const holder = l3McastGroupApiHolderFactory("holder");
    holder->l3McastGroupApiIs(service);
    addEntity(higig, nonUcastHigigIntfsFactory("other"));
    addEntity(backplane, bumAllowedBackplaneIntfFactory("other"));
    addEntity(l3IpmcLocalDbFactory(backplane, higig), l3IpmcLocalDbFactory(nullptr, nullptr));
    addEntity(service, Pelo::Ptr<L3McastGroupApi>());
    addEntity(holder, l3McastGroupApiHolderFactory("other"));
}

std::vector<GenericValue> Samples::of(std::vector<Qor::ArgumentData> const& arguments) const {
    std::vector<GenericValue> values;
    for (Qor::ArgumentData const& argument : arguments) {
        values.push_back(of(*argument.type)[0]);
    }
    return values;
}

std::vector<GenericValue> Samples::wrongFor(Qor::ValueType const& type) const {
    std::string mutableName = type.name();
    if (std::size_t const at = mutableName.rfind(" const>"); at != std::string::npos) {
        mutableName.erase(at, std::string_view(" const").size());
    }
    std::vector<GenericValue> wrong{GenericValue()};
    for (auto const& [name, values] : values_) {
        if (name != type.name() && name != mutableName) {
            wrong.push_back(values[0]);
        }
    }
    return wrong;
}

Pelo::Ptr<Pelo::Node> Samples::object(Qor::TypeData const& type) const {
    return objects_.at(type.name());
}

} // namespace Test
