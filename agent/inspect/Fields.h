#pragma once

#include "pelo/Node.h"
#include "qor/Inspection.h"
#include "qor/TypeData.h"

#include <string>
#include <typeinfo>

namespace VpAgent {

/// The name of an entity's type, also of one that offers no fields.
inline std::string typeName(Pelo::Node const& node) {
    Qor::TypeData const* const type = node.typeData();
    return type == nullptr ? Qor::sourceName(typeid(node)) : type->name();
}

/// Calls `visit(Qor::FieldData const&)` for the fields of one kind, in their order; `type` may be
/// null.
template <class Visit>
void forEachField(Qor::TypeData const* type, Qor::FieldKind kind, Visit visit) {
    if (type == nullptr) {
        return;
    }
    for (Qor::FieldData const& field : type->fields()) {
        if (field.kind == kind) {
            visit(field);
        }
    }
}

/// Calls `visit(key, value)`, generic values, for each member of a collection in its order.
template <class Visit>
void forEachMember(Pelo::Node const& node, Qor::FieldData const& collection, Visit visit) {
    for (auto it = Qor::collectionIterator(node, collection.number); it; it.advance()) {
        visit(it.key(), it.object());
    }
}

} // namespace VpAgent
