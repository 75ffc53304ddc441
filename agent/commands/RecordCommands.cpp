#include "Limits.h"
#include "commands/Handlers.h"
#include "state/Agent.h"

namespace VpAgent::Handlers {

using namespace VornicCentral;

namespace {

/// `room()` says whether the record may grow, by one key.
template <class Record, class Room>
Reply put(Record& record, Arguments const& arguments, typename Record::Value const& value,
          Room room) {
    arguments.vport->visit([&](auto kind, auto const& key) {
        using Kind = decltype(kind);
        if (!room() && !record.template has<Kind>(key)) {
            throw tooManyKeys("in such records", arguments.command);
        }
        record.template is<Kind>(key, value);
    });
    return {};
}

/// The same for a record that there is once.
template <class Record>
Reply put(Record& record, Arguments const& arguments, typename Record::Value const& value) {
    return put(record, arguments, value, [&] { return record.memberCount() < Limits::keys; });
}

template <class Record> Reply drop(Record& record, Vport const& vport) {
    vport.visit([&](auto kind, auto const& key) { record.template del<decltype(kind)>(key); });
    return {};
}

template <class Record> Reply clear(Record& record) {
    forEachKind([&](auto kind) { record.template delAll<decltype(kind)>(); });
    return {};
}

} // namespace

Reply putReference(Agent& agent, Arguments const& arguments) {
    if (arguments.rest.size() > Limits::clients) {
        throw Refusal("too many names, expected at most " + std::to_string(Limits::clients),
                      arguments.rest[Limits::clients].place());
    }
    VpReference reference{VirtualPort(arguments.index)};
    for (Word const& name : arguments.rest) {
        reference.referenceIs(name.text, true);
    }
    return put(*agent.database.references(), arguments, reference);
}

Reply putStatus(Agent& agent, Arguments const& arguments) {
    Client const& client = knownClient(agent, *arguments.client);
    return put(*client.status, arguments, VirtualPort(arguments.index),
               [&] { return agent.database.takeRoomForStatuses(1); });
}

Reply putWaiting(Agent& agent, Arguments const& arguments) {
    return put(*agent.database.waiting(), arguments, true);
}

Reply putBoot(Agent& agent, Arguments const& arguments) {
    return put(*agent.database.boot(), arguments, VirtualPort(arguments.index));
}

Reply dropReference(Agent& agent, Arguments const& arguments) {
    return drop(*agent.database.references(), *arguments.vport);
}

Reply dropStatus(Agent& agent, Arguments const& arguments) {
    Client const& client = knownClient(agent, *arguments.client);
    return drop(*client.status, *arguments.vport);
}

Reply dropWaiting(Agent& agent, Arguments const& arguments) {
    return drop(*agent.database.waiting(), *arguments.vport);
}

Reply dropBoot(Agent& agent, Arguments const& arguments) {
    return drop(*agent.database.boot(), *arguments.vport);
}

Reply clearReferences(Agent& agent, Arguments const&) {
    return clear(*agent.database.references());
}

Reply clearWaiting(Agent& agent, Arguments const&) { return clear(*agent.database.waiting()); }

Reply clearBoot(Agent& agent, Arguments const&) { return clear(*agent.database.boot()); }

Reply saveBoot(Agent& agent, Arguments const&) {
    VxlanBootStatus& boot = *agent.database.boot();
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        boot.delAll<Kind>();
        forEachMember(agent.database.references()->collection<Kind>(),
                      [&](auto const& key, auto const& reference) {
                          if (reference.vPort().valid()) {
                              boot.is<Kind>(key, reference.vPort());
                          }
                      });
    });
    return {};
}

} // namespace VpAgent::Handlers
