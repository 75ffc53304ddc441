#include "commands/Handlers.h"
#include "qor/Inspection.h"
#include "state/Agent.h"

namespace VpAgent::Handlers {

using VornicL3::L3McastGroupApi;
using VornicL3::L3McastGroupApiHolder;

namespace {

Multicast& entities(Agent& agent, Arguments const& arguments) {
    if (!agent.multicast.created()) {
        throw Refusal(std::string(Multicast::missing), arguments.command.place());
    }
    return agent.multicast;
}

/// Runs `change`, whose notifications say what it did; for the person who typed it a note when
/// there were none.
template <class Change> Reply changed(Agent& agent, Arguments const& arguments, Change change) {
    Multicast& multicast = entities(agent, arguments);
    U64 const before = multicast.eventCount();
    change(multicast);
    Reply reply;
    if (agent.forPeople && multicast.eventCount() == before) {
        reply.note = "nothing changed";
    }
    return reply;
}

/// Calls an operation of the installed group API, which is found as a component of the switch finds
/// it that knows nothing but numbers.
Reply callInstalled(Agent& agent, Arguments const& arguments, Pelo::FieldId operation,
                    Qor::Arguments values) {
    Multicast const& multicast = entities(agent, arguments);
    auto const api =
        Qor::inspectOperation(*multicast.holder(), L3McastGroupApiHolder::l3McastGroupApiField,
                              Qor::OpCode::get)
            .mutableNode();
    if (!api) {
        throw Refusal("no group API is installed, expected 'mcast install' before",
                      arguments.command.place());
    }
    Qor::inspectOperation(*api, operation, Qor::OpCode::call, values);
    return {};
}

} // namespace

Reply mcastCreate(Agent& agent, Arguments const& arguments) {
    if (agent.multicast.created()) {
        throw Refusal("the multicast entities are there already, expected 'mcast destroy' before",
                      arguments.command.place());
    }
    agent.multicast.create();
    return {};
}

Reply mcastDestroy(Agent& agent, Arguments const& arguments) {
    entities(agent, arguments).destroy();
    return {};
}

Reply mcastHigig(Agent& agent, Arguments const& arguments) {
    return changed(agent, arguments, [&](Multicast const& multicast) {
        multicast.higig()->higigIntfsIs(arguments.fap, arguments.intfs);
    });
}

Reply mcastHigigDel(Agent& agent, Arguments const& arguments) {
    return changed(agent, arguments, [&](Multicast const& multicast) {
        multicast.higig()->higigIntfsDel(arguments.fap);
    });
}

Reply mcastHigigClear(Agent& agent, Arguments const& arguments) {
    return changed(agent, arguments,
                   [](Multicast const& multicast) { multicast.higig()->higigIntfsDelAll(); });
}

Reply mcastBackplane(Agent& agent, Arguments const& arguments) {
    return changed(agent, arguments, [&](Multicast const& multicast) {
        multicast.backplane()->intfsIs(arguments.intfs);
    });
}

Reply mcastInstall(Agent& agent, Arguments const& arguments) {
    return changed(agent, arguments,
                   [&](Multicast& multicast) { multicast.install(arguments.word->text); });
}

Reply mcastRemove(Agent& agent, Arguments const& arguments) {
    return changed(agent, arguments, [](Multicast const& multicast) {
        multicast.holder()->l3McastGroupApiIs(nullptr);
    });
}

Reply mcastUpdate(Agent& agent, Arguments const& arguments) {
    return callInstalled(
        agent, arguments, L3McastGroupApi::updateL2BitmapsField,
        {Qor::GenericValue::of(arguments.fap), Qor::GenericValue::of(arguments.truth)});
}

Reply mcastUpdateAll(Agent& agent, Arguments const& arguments) {
    return callInstalled(agent, arguments, L3McastGroupApi::updateAllL2BitmapsField, {});
}

Reply mcastShow(Agent&, Arguments const&) { return {McastReply{}, {}}; }

} // namespace VpAgent::Handlers
