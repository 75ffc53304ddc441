#include "qor/TypeData.h"

#include "qor/Exceptions.h"
#include "qor/TypeModule.h"

#include <algorithm>
#include <ostream>

namespace Qor {

std::string_view TypeData::unqualifiedName() const noexcept {
    std::string_view const name = name_;
    std::size_t const colons = name.rfind("::");
    return colons == std::string_view::npos ? name : name.substr(colons + 2);
}

FieldData const* TypeData::fieldByNumber(Pelo::FieldId number) const noexcept {
    auto const at = std::find_if(fields_.begin(), fields_.end(),
                                 [number](FieldData const& f) { return f.number == number; });
    return at == fields_.end() ? nullptr : &*at;
}

FieldData const* TypeData::fieldByName(std::string_view name) const noexcept {
    auto const at = std::find_if(fields_.begin(), fields_.end(),
                                 [name](FieldData const& f) { return f.name == name; });
    return at == fields_.end() ? nullptr : &*at;
}

TypeData const* TypeData::find(std::string_view name) {
    TypeData const* byUnqualifiedName = nullptr;
    bool ambiguous = false;
    for (TypeModule const* const module : TypeModule::all()) {
        for (TypeData const* const type : module->types()) {
            if (type->name() == name) {
                return type;
            }
            if (type->unqualifiedName() == name) {
                ambiguous = byUnqualifiedName != nullptr;
                byUnqualifiedName = type;
            }
        }
    }
    return ambiguous ? nullptr : byUnqualifiedName;
}

TypeData const& TypeData::get(std::string_view name) {
    TypeData const* const type = find(name);
    if (type == nullptr) {
        throwUnknownName("entity type", std::string(name));
    }
    return *type;
}

namespace {

void printDocumentation(std::ostream& out, char const* indent, std::string const& text) {
    if (!text.empty()) {
        out << indent << text << '\n';
    }
}

} // namespace

std::ostream& operator<<(std::ostream& out, TypeData const& type) {
    out << type.name();
    if (type.constructor() != nullptr) {
        out << '(' << listText(type.constructor()->arguments) << ')';
    }
    out << '\n';
    printDocumentation(out, "  ", type.documentation());
    for (FieldData const& field : type.fields()) {
        out << "  " << field.number << "  " << field.signature() << '\n';
        printDocumentation(out, "       ", field.documentation);
    }
    return out;
}

} // namespace Qor
