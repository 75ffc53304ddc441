#pragma once

#include "pelo/Export.h"
#include "pelo/Publisher.h"
#include "qor/GenericValue.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace Qor {

/// What can be done to a field. Which arguments an operation code takes stands behind it.
enum class OpCode {
    get,     ///< attribute: (); collection: (key), a default value when the key is absent
    lookup,  ///< collection: (key), nothing when the key is absent
    set,     ///< attribute: (value); collection: (key, value); or what builds the value
    has,     ///< collection: (key)
    del,     ///< attribute: (); collection: (key); gives what the mutator returns
    delAll,  ///< collection: ()
    count,   ///< collection: (); the number of members, a U32
    iterate, ///< collection: (); a CollectionIterator
    call,    ///< operation: its arguments; gives its result
};

/// The name of an operation code, "del" for `OpCode::del`; its number when it is none.
VORNIC_RUNTIME_API std::string stringValue(OpCode code);

enum class FieldKind { attribute, collection, operation };

struct VORNIC_RUNTIME_API ArgumentData {
    char const* name;
    ValueType const* type;
};

/// The entity to which an access is made.
struct VORNIC_RUNTIME_API AccessTarget {
    Pelo::Node& node;
    bool constant; ///< the caller holds it as a constant: nothing may be changed
};

using AccessRun = std::function<GenericValue(AccessTarget const&, Arguments)>;

/// What one operation code takes, gives and does.
struct VORNIC_RUNTIME_API FieldAccess {
    OpCode code;
    bool changes; ///< refused on a constant entity
    std::vector<ArgumentData> arguments;
    ValueType const* result; ///< null when there is none
    /// Runs it, with as many arguments of such types as `arguments` says.
    AccessRun run;
};

/// The description of one attribute, collection or operation of a type.
struct VORNIC_RUNTIME_API FieldData {
    Pelo::FieldId number;
    char const* name;
    FieldKind kind;
    /// Of the attribute, of the collection's values or of the operation's result; null for an
    /// operation without one.
    ValueType const* type;
    /// Of a collection; the type is null for the other kinds.
    ArgumentData key{nullptr, nullptr};
    std::vector<FieldAccess> accesses{}; ///< what can be done to it, one entry an operation code
    std::string documentation{};         ///< what it is, in a few words for people; may be empty

    /// Null when the field does not take that operation code.
    FieldAccess const* access(OpCode code) const noexcept;

    /// The arguments of an operation.
    std::span<ArgumentData const> arguments() const noexcept;

    /// Whether nothing can be changed through this field: an attribute or collection without
    /// mutators, an operation that may be called on a constant entity.
    bool readOnly() const noexcept;

    /// The field as one reads it in a reference: "vpTableSize: U32 (read-only)",
    /// "higigIntfs[fapId: Devbus::FapId]: Interface::IntfSet", "allocVpIndex(indexPreferenceHigh:
    /// bool): U16".
    std::string signature() const;
};

/// "name: type, name: type".
VORNIC_RUNTIME_API std::string listText(std::span<ArgumentData const> arguments);

} // namespace Qor
