// The allocator unit: requests and results, notifications, messages and traces, exceptions, casts,
// and access by name.

#include "agent.h"
#include "shows.h"

#include <array>
#include <iostream>
#include <stdexcept>
#include <typeinfo>

namespace Consumer {
namespace {

using namespace VornicCentral;

/// Shows each change of a client's results.
class Watcher {
public:
    explicit Watcher(VpIndexStatus& status) : subscriber_(this, &Watcher::dispatch) {
        status.publisher()->subscriberAdd(&subscriber_, false);
    }

private:
    static void dispatch(Pelo::Publisher*, Pelo::Subscriber*, Pelo::FieldId field, void const* key,
                         void const* value) noexcept {
        if (field == VlanVport::field) {
            auto const* const given = static_cast<VirtualPort const*>(value);
            std::cout << "  vlan " << *static_cast<Bridging::VlanId const*>(key) << ": "
                      << (given == nullptr ? "gone" : given->stringValue()) << '\n';
        }
    }

    Pelo::Subscriber subscriber_;
};

void showRequests(Agent& agent) {
    std::cout << "requests\n";
    auto const bgp = agent.client("bgp");
    Watcher const watcher(*agent.statusDir->vpIndexStatus("bgp"));
    for (U16 const vlan : {U16{100}, U16{101}, U16{102}}) {
        bgp->vlanVportIs(Bridging::VlanId(vlan), true);
    }
    std::cout << "  " << agent.waiting->vlanVport().memberCount() << " waits\n";
    bgp->vlanVportDel(Bridging::VlanId(101));
    PortVlanKey const edge(Netzo::IntfId("Ethernet1"), Bridging::VlanId(100));
    bgp->vlanVportDelAll();
    bgp->edgeVportIs(edge, true);
    std::cout << "  " << edge << ": " << agent.references->edgeVport(edge) << '\n';
}

/// The lines of level 5 while an index is handed out and given back, and the ring's newest record.
void showTraces(Agent const& agent) {
    std::cout << "traces\n";
    Qor::TraceHandle& handle = *Qor::TraceHandle::find("VornicVpIndexAllocator");
    handle.levelIs(5, true);
    auto former = Qor::traceSinkIs([](Qor::TraceLine const& line) {
        std::cout << "  " << line.level << ' ' << line.text << '\n';
    });
    agent.machine->freeVpIndex(agent.machine->allocVpIndex(true));
    Qor::traceSinkIs(std::move(former));
    handle.levelIs(5, false);

    Lumlog::Reader reader(Lumlog::RingBuffer::current()->bytes());
    auto const records = reader.rest();
    std::cout << "  ring: " << records.back().text << '\n';
}

template <class Thrown, class Refused> void showRefusal(char const* what, Refused const& refused) {
    try {
        refused();
        std::cout << "  " << what << ": not refused\n";
    } catch (Thrown const& thrown) {
        std::cout << "  " << what << ": " << thrown.what() << '\n';
    }
}

/// Exceptions that are thrown within the libraries, caught by their type and by their bases.
void showExceptions(Agent const& agent) {
    std::cout << "exceptions\n";
    auto const withoutConfig = [&] {
        agent.machine->vpIndexAllocatorIs(agent.machine.get(), nullptr, nullptr, nullptr, false);
    };
    showRefusal<Qor::MutatorArgNullPointerException>("null config", withoutConfig);
    showRefusal<Qor::Exception>("by its base", withoutConfig);
    showRefusal<std::runtime_error>("by the standard's", withoutConfig);
    showRefusal<Qor::MutatorReinstantiatingException>("other arguments", [&] {
        agent.machine->vpIndexAllocatorIs(agent.machine.get(),
                                          agent.configDir->vpIndexConfig("bgp"),
                                          agent.statusDir->vpIndexStatus("bgp"), nullptr, false);
    });
    showRefusal<Qor::UnknownFieldException>(
        "no field", [&] { Qor::inspectOperation(*agent.machine, 9999, Qor::OpCode::get); });
    showRefusal<Qor::ArgumentTypeException>("other type",
                                            [] { Qor::GenericValue::of(U32{7}).as<U16>(); });
}

/// Casts of nodes that the libraries built, down, across and to what they are not.
void showCasts(Agent const& agent) {
    std::cout << "casts" << std::boolalpha << '\n';
    Pelo::Ptr<Pelo::Node> const machine = agent.machine;
    Pelo::Ptr<Pelo::Node> const directory = agent.configDir;
    Pelo::Ptr<Pelo::Node> const results = agent.statusDir->vpIndexStatus("bgp");
    auto const show = [](char const* what, bool is) {
        std::cout << "  " << what << ": " << is << '\n';
    };
    show("machine", dynamic_cast<VpIndexAllocatorDirSm*>(machine.get()) == agent.machine.get());
    show("machine as entity", dynamic_cast<Qor::Entity*>(machine.get()) != nullptr);
    show("directory", dynamic_cast<VpDirectory<VpIndexConfig>*>(directory.get()) != nullptr);
    show("other directory", dynamic_cast<VpIndexStatusDir*>(directory.get()) != nullptr);
    show("results", dynamic_cast<VpRecord<VirtualPort>*>(results.get()) != nullptr);
    show("requests", dynamic_cast<VpRecord<bool>*>(results.get()) != nullptr);
    Pelo::Node const& node = *results;
    show("type", typeid(node) == typeid(VpIndexStatus));
}

/// Values that this program makes are taken by the libraries, and the other way round.
void showGenericAccess(Agent const& agent) {
    std::cout << "generic access\n";
    Qor::TypeData const& type = Qor::TypeData::get("VpIndexAllocatorDirSm");
    Pelo::FieldId const sizeField = type.fieldByName("vpTableSize")->number;
    std::cout << "  size "
              << Qor::inspectOperation(*agent.machine, sizeField, Qor::OpCode::get).as<U32>()
              << '\n';
    auto const config = agent.configDir->vpIndexConfig("bgp");
    Qor::inspectOperation(
        *config, VlanVport::field, Qor::OpCode::set,
        {Qor::GenericValue::of(Bridging::VlanId(200)), Qor::GenericValue::of(true)});
    auto const results = agent.statusDir->vpIndexStatus("bgp");
    for (auto it = Qor::collectionIterator(*results, VlanVport::field); it; it.advance()) {
        std::cout << "  vlan " << it.key() << " = " << it.object().as<VirtualPort>() << '\n';
    }
    Pelo::Ptr<Pelo::Node> const built =
        Qor::genericIfConstructFromCtorArgs(Qor::TypeData::get("VornicCentral::VpIndexConfig"),
                                            {Qor::GenericValue::of(Pelo::String("isis"))});
    std::cout << "  built " << dynamic_cast<VpIndexConfig&>(*built).name() << '\n';
    std::array<std::string_view, 1> const high{"true"};
    Qor::CallResult const index = Qor::callByName(*agent.machine, "allocVpIndex", high);
    std::cout << "  allocVpIndex: " << index.value << '\n';
    agent.machine->freeVpIndex(index.value.as<U16>());
    agent.machine->verify();
}

} // namespace

void showAllocation() {
    auto former = Qor::logSinkIs(
        [](Qor::LogMessage const& message) { std::cout << "  log: " << message.text << '\n'; });
    Agent agent;
    agent.start();
    showRequests(agent);
    showTraces(agent);
    showExceptions(agent);
    showCasts(agent);
    showGenericAccess(agent);
    Qor::logSinkIs(std::move(former));
}

} // namespace Consumer
