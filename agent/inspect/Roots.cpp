#include "inspect/Roots.h"

#include "state/Agent.h"

#include <algorithm>

namespace VpAgent {

namespace {

using Qor::GenericValue;

GenericValue machine(Agent const& agent) {
    using StateMachine = VornicCentral::VpIndexAllocatorDirSm;
    return GenericValue::of(
        Pelo::Ptr<StateMachine>(agent.machine.running() ? &agent.machine.stateMachine() : nullptr));
}

/// A record of the database, which is always there.
template <auto record> GenericValue recordOf(Agent const& agent) {
    return GenericValue::of((agent.database.*record)());
}

/// A multicast entity, while there are any.
template <auto entity> GenericValue multicastOf(Agent const& agent) {
    return GenericValue::of((agent.multicast.*entity)());
}

constexpr Root rootTable[] = {
    {"machine", "the state machine, while it runs", machine,
     "the state machine is not running, expected 'start' before"},
    {"references", "which virtual ports are in use", recordOf<&Database::references>, ""},
    {"waiting", "which virtual ports wait for an index", recordOf<&Database::waiting>, ""},
    {"boot", "which indices were held before the restart", recordOf<&Database::boot>, ""},
    {"configs", "what each client requests", recordOf<&Database::configs>, ""},
    {"statuses", "what each client was given", recordOf<&Database::statuses>, ""},
    {"holder", "where the multicast group API is found", multicastOf<&Multicast::holder>,
     Multicast::missing},
    {"higig", "the Higig interfaces, chip by chip", multicastOf<&Multicast::higig>,
     Multicast::missing},
    {"backplane", "the backplane interfaces that are allowed", multicastOf<&Multicast::backplane>,
     Multicast::missing},
    {"ipmc", "the local IP multicast database", multicastOf<&Multicast::ipmc>, Multicast::missing},
};

} // namespace

std::span<Root const> roots() { return rootTable; }

Root const* findRoot(std::string_view name) {
    auto const all = roots();
    auto const found = std::find_if(all.begin(), all.end(),
                                    [name](Root const& root) { return root.name == name; });
    return found == all.end() ? nullptr : &*found;
}

} // namespace VpAgent
