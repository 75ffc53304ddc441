#include "inspect/Fields.h"
#include "inspect/Inspected.h"
#include "inspect/Roots.h"

#include <span>

namespace VpAgent {

using Qor::FieldData;
using Qor::FieldKind;
using Qor::GenericValue;

namespace {

void writeValue(JsonWriter& json, GenericValue const& value) {
    if (value.is<bool>()) {
        json.boolean(value.as<bool>());
    } else if (value.type()->kind() == Qor::ValueKind::number) {
        json.number(std::stoull(value.text()));
    } else if (value.type()->kind() == Qor::ValueKind::entity && !value.node()) {
        json.null();
    } else {
        json.text(value.text());
    }
}

void writeArgument(JsonWriter& json, Qor::ArgumentData const& argument) {
    json.openObject()
        .member("name", argument.name)
        .member("type", argument.type->name())
        .closeObject();
}

void writeArguments(JsonWriter& json, std::span<Qor::ArgumentData const> arguments) {
    json.openArray();
    for (Qor::ArgumentData const& argument : arguments) {
        writeArgument(json, argument);
    }
    json.closeArray();
}

/// Opens an object with what says which field it is and of what type.
void beginField(JsonWriter& json, FieldData const& field) {
    json.openObject().member("number", U64{field.number}).member("name", field.name);
    if (field.kind == FieldKind::operation) {
        json.key("arguments");
        writeArguments(json, field.arguments());
        if (field.type != nullptr) {
            json.member("result", field.type->name());
        }
        json.member("constant", field.readOnly());
        return;
    }
    if (field.kind == FieldKind::collection) {
        json.key("key");
        writeArgument(json, field.key);
    }
    json.member("type", field.type->name());
}

/// The three lists of fields; `writeRest` writes what stands in a field behind its type.
template <class WriteRest>
void writeFields(JsonWriter& json, Qor::TypeData const* type, WriteRest writeRest) {
    for (auto const& [name, kind] : {std::pair("attributes", FieldKind::attribute),
                                     std::pair("collections", FieldKind::collection),
                                     std::pair("operations", FieldKind::operation)}) {
        json.key(name).openArray();
        forEachField(type, kind, [&](FieldData const& field) {
            beginField(json, field);
            writeRest(field);
            json.closeObject();
        });
        json.closeArray();
    }
}

void writeMembers(JsonWriter& json, Pelo::Node const& node, FieldData const& collection) {
    json.key("members").openArray();
    forEachMember(node, collection, [&](GenericValue const& key, GenericValue const& value) {
        json.openObject().member("key", key.text()).key("value");
        writeValue(json, value);
        json.closeObject();
    });
    json.closeArray();
}

void write(JsonWriter& json, InspectedModules) {
    json.key("modules").openArray();
    for (Qor::TypeModule const* const module : modulesByName()) {
        json.openObject().member("name", module->name()).key("types").openArray();
        for (Qor::TypeData const* const type : module->types()) {
            json.text(type->name());
        }
        json.closeArray().closeObject();
    }
    json.closeArray().key("roots").openArray();
    for (Root const& root : roots()) {
        json.text(root.name);
    }
    json.closeArray();
}

void write(JsonWriter& json, Qor::TypeData const* type) {
    json.member("type", type->name()).member("module", Qor::TypeModule::of(*type)->name());
    json.member("documentation", type->documentation()).key("constructor");
    if (type->constructor() == nullptr) {
        json.null();
    } else {
        writeArguments(json, type->constructor()->arguments);
    }
    writeFields(json, type, [&](FieldData const& field) {
        if (field.kind != FieldKind::operation) {
            json.member("readOnly", field.readOnly());
        }
        json.member("documentation", field.documentation);
    });
}

void writeEntity(JsonWriter& json, Found const& found) {
    Pelo::Node const& node = *found.node();
    json.member("type", typeName(node)).member("constant", found.constant());
    writeFields(json, node.typeData(), [&](FieldData const& field) {
        if (field.kind == FieldKind::attribute) {
            json.key("value");
            writeValue(json, Qor::inspectOperation(node, field.number, Qor::OpCode::get));
        } else if (field.kind == FieldKind::collection) {
            writeMembers(json, node, field);
        }
    });
}

void write(JsonWriter& json, InspectedPath const& inspected) {
    Found const& found = inspected.found;
    json.member("path", inspected.path);
    if (found.isEntity()) {
        writeEntity(json, found);
    } else if (found.collection() != nullptr) {
        json.key("collection");
        beginField(json, *found.collection());
        writeMembers(json, *found.node(), *found.collection());
        json.closeObject();
    } else {
        json.member("type", found.value().type()->name()).key("value");
        writeValue(json, found.value());
    }
}

} // namespace

void writeInspected(JsonWriter& json, Inspected const& inspected) {
    json.openObject();
    std::visit([&](auto const& content) { write(json, content); }, inspected);
    json.closeObject();
}

} // namespace VpAgent
