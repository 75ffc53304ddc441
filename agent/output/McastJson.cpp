#include "output/McastJson.h"

#include "state/Database.h"
#include "state/Multicast.h"

namespace VpAgent {

namespace {

void write(JsonWriter& json, std::monostate) { json.null(); }

void write(JsonWriter& json, std::string const& name) { json.text(name); }

void write(JsonWriter& json, Interface::IntfSet const& intfs) {
    json.openArray();
    for (Netzo::IntfId const& intf : intfs) {
        json.text(intf.name());
    }
    json.closeArray();
}

void write(JsonWriter& json, McastValue const& value) {
    std::visit([&](auto const& each) { write(json, each); }, value);
}

void writeMembers(JsonWriter& json, McastChange const& change) {
    json.member("notification", change.entity)
        .member("field", change.field)
        .member("attribute", change.attribute);
    if (change.key) {
        json.member("key", U32{change.key->value()});
    }
    json.key("previous");
    write(json, change.former);
    json.key("value");
    write(json, change.present);
}

void writeMembers(JsonWriter& json, McastCall const& call) {
    json.member("called", call.api).member("operation", call.operation);
    if (call.update) {
        json.member("fapId", U32{call.update->fapId.value()}).member("post", call.update->post);
    }
}

void writeMembers(JsonWriter& json, McastRelease const& release) {
    json.member("released", release.api);
}

} // namespace

void writeEvent(JsonWriter& json, McastEvent const& event) {
    json.openObject();
    std::visit([&](auto const& each) { writeMembers(json, each); }, event);
    json.closeObject();
}

void writeMulticast(JsonWriter& json, Multicast const& multicast) {
    if (!multicast.created()) {
        json.null();
        return;
    }
    json.openObject().key("l3McastGroupApi");
    if (std::string const* const api = multicast.installed()) {
        json.text(*api);
    } else {
        json.null();
    }
    json.key("higigIntfs").openObject();
    forEachMember(multicast.higig()->higigIntfs(), [&](Devbus::FapId fapId, auto const& intfs) {
        json.key(fapId.stringValue());
        write(json, intfs);
    });
    json.closeObject().key("intfs");
    write(json, multicast.backplane()->intfs());
    auto const& db = *multicast.ipmc();
    json.key("l3IpmcLocalDb")
        .openObject()
        .member("allowedBackplaneIntf", db.allowedBackplaneIntf()->name().view())
        .member("hwHigigIntfs", db.hwHigigIntfs()->name().view())
        .closeObject();
    json.closeObject();
}

} // namespace VpAgent
