#include "qor/ValueTraits.h"

#include "pelo/Node.h"
#include "qor/Inspection.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace Qor {

namespace {

/// The attribute that names the entities of a type; null for a type whose entities have no name.
FieldData const* nameField(TypeData const& type) {
    for (char const* const fieldName : {"name", "nameString"}) {
        FieldData const* const field = type.fieldByName(fieldName);
        if (field != nullptr && field->kind == FieldKind::attribute) {
            return field;
        }
    }
    return nullptr;
}

} // namespace

std::string sourceName(std::type_info const& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> const name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    return name ? name.get() : type.name();
}

Pelo::Parsed<bool> parseBool(std::string_view text) {
    if (text == "true" || text == "false") {
        return text == "true";
    }
    return Pelo::ParseError{0, "true or false"};
}

std::string entityText(Pelo::Node const* node) {
    if (node == nullptr) {
        return "null";
    }
    TypeData const* const type = node->typeData();
    if (type == nullptr) {
        return sourceName(typeid(*node));
    }
    FieldData const* const field = nameField(*type);
    if (field == nullptr) {
        return type->name();
    }
    return std::string(type->name()) + " \"" +
           inspectOperation(*node, field->number, OpCode::get).text() + "\"";
}

} // namespace Qor
