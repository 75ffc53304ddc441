// A host that links the records and loads the library that allocates at run time. It calls the
// factories by their symbols, and everything else through what the factories return.

#include "VornicL3Shared/L3McastGroupApi.h"
#include "VornicL3Shared/VornicL3VpIndexAllocator.h"
#include "library.h"

#include <string_view>

namespace {

using namespace VornicCentral;

constexpr char const* soname = "libVornicL3Shared.so.1";

void showModules() {
    std::cout << "  modules:";
    for (Qor::TypeModule const* const module : Qor::TypeModule::all()) {
        std::cout << ' ' << module->name();
    }
    std::cout << "\n  VpIndexAllocatorDirSm is "
              << (Qor::TypeData::find("VpIndexAllocatorDirSm") == nullptr ? "unknown\n"
                                                                          : "known\n");
}

/// The factories, by their mangled names.
struct Factories {
    using ConfigDir = Pelo::Ptr<VpIndexConfigDir>(Pelo::String const&);
    using StatusDir = Pelo::Ptr<VpIndexStatusDir>(Pelo::String const&);
    using Machine = decltype(vpIndexAllocatorDirSmFactory);

    explicit Factories(void* library)
        : configDir(function<ConfigDir>(
              library, "_ZN13VornicCentral23vpIndexConfigDirFactoryERKN4Pelo6StringE")),
          statusDir(function<StatusDir>(
              library, "_ZN13VornicCentral23vpIndexStatusDirFactoryERKN4Pelo6StringE")),
          machine(function<Machine>(
              library,
              "_ZN13VornicCentral28vpIndexAllocatorDirSmFactoryERKN4Pelo3PtrINS_15VpReferenceList"
              "EEERKNS1_INS_22VpInvalidReferenceListEEERKNS1_IKNS_16VpIndexConfigDirEEERKNS1_INS_"
              "16VpIndexStatusDirEEEjRKNS1_INS_15VxlanBootStatusEEEbbRKNS1_IKNS_17VxlanCapabilities"
              "EEE")) {}

    ConfigDir* configDir;
    StatusDir* statusDir;
    Machine* machine;
};

void request(VpIndexConfigDir& configs, VpIndexStatusDir& statuses, U16 vlan) {
    configs.vpIndexConfig("bgp")->vlanVportIs(Bridging::VlanId(vlan), true);
    std::cout << "  vlan " << vlan << " has "
              << statuses.vpIndexStatus("bgp")->vlanVport(Bridging::VlanId(vlan)) << '\n';
}

/// Builds an object of a type that this program does not know, as its module describes it.
void buildByName() {
    Qor::TypeModule const& module = *Qor::TypeModule::find("L3McastGroupApi");
    Qor::TypeData const& type = *module.types().front();
    auto const node =
        Qor::genericIfConstructFromCtorArgs(type, {Qor::GenericValue::of(Pelo::String("higig"))});
    Pelo::FieldId const field = type.fieldByName("higigIntfs")->number;
    Qor::inspectOperation(*node, field, Qor::OpCode::set,
                          {Qor::GenericValue::of(Devbus::FapId(3)),
                           Qor::GenericValue::of(Interface::IntfSet{Netzo::IntfId("Higig1")})});
    for (auto it = Qor::collectionIterator(*node, field); it; it.advance()) {
        std::cout << "  " << type.name() << " chip " << it.key() << ": " << it.object() << '\n';
    }
}

} // namespace

int main() {
    std::cout << "before\n";
    showModules();

    std::cout << "loaded\n";
    void* const library = load(soname);
    showModules();
    Factories const factories(library);
    auto const configs = factories.configDir("configs");
    auto const statuses = factories.statusDir("statuses");
    statuses->vpIndexStatusIs("bgp", vpIndexStatusFactory("bgp"));
    configs->vpIndexConfigIs("bgp", vpIndexConfigFactory("bgp"));
    auto const references = vpReferenceListFactory("references");
    auto const waiting = vpInvalidReferenceListFactory("waiting");
    auto const bootStatus = vxlanBootStatusFactory("boot");
    auto const machine = factories.machine(references, waiting, configs, statuses, 16, bootStatus,
                                           true, false, nullptr);
    request(*configs, *statuses, 100);
    buildByName();
    std::cout << "  " << VpIndexConfigDir::allocationTracker().live() << " directory of requests\n";

    std::cout << "closed\n";
    std::cout << "  dlclose gives " << dlclose(library) << ", the library is "
              << (dlopen(soname, RTLD_NOW | RTLD_NOLOAD) == nullptr ? "gone\n" : "there\n");
    showModules();
    request(*configs, *statuses, 101);
    buildByName();
    Qor::callByName(*machine, "verify", {});

    std::cout << "loaded again\n";
    std::cout << "  " << (load(soname) == library ? "the same" : "another") << '\n';
    showModules();
}
