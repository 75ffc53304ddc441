#pragma once

#include "pelo/Export.h"
#include "pelo/Node.h"
#include "pelo/Parsed.h"
#include "pelo/Ptr.h"
#include "qor/CollectionIterator.h"
#include "qor/TypeData.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string_view>

/// Generic access: what a tool does to an entity whose type it does not know.
///
/// Every access is checked as a whole against the table of the entity's type before anything is
/// done. What is refused has changed nothing: an unknown field (`UnknownFieldException`), an
/// operation code that the field does not take (`ReadOnlyAttributeException` for a mutation of
/// something that can only be read, else `OperationRefusedException`), a change through a constant
/// (`ConstEntityException`), a wrong number of arguments (`ArgumentCountException`) and an argument
/// of another type (`ArgumentTypeException`), in this order. Exceptions of the accessor itself pass
/// through.
///
/// Cost: a walk of the type's fields, an indirect call, and generic values for what goes in and
/// comes out. On the event thread only, as what is called.
namespace Qor {

/// Does `code` to the field of that number.
VORNIC_RUNTIME_API GenericValue inspectOperation(Pelo::Node& node, Pelo::FieldId field, OpCode code,
                                                 Arguments arguments = {});

/// The same on a constant: whatever would change the entity is refused, and so is `del()` of an
/// iterator got here.
VORNIC_RUNTIME_API GenericValue inspectOperation(Pelo::Node const& node, Pelo::FieldId field,
                                                 OpCode code, Arguments arguments = {});

/// A walk through a collection: `OpCode::iterate` with its result unpacked.
VORNIC_RUNTIME_API CollectionIterator collectionIterator(Pelo::Node& node, Pelo::FieldId field);
VORNIC_RUNTIME_API CollectionIterator collectionIterator(Pelo::Node const& node,
                                                         Pelo::FieldId field);

/// Builds an object of the type with its creator, the arguments in the order of their declaration.
///
/// Refused as an access is; a type without constructor with `OperationRefusedException`.
VORNIC_RUNTIME_API Pelo::Ptr<Pelo::Node> genericIfConstructFromCtorArgs(TypeData const& type,
                                                                        Arguments arguments);

/// Why a call by texts is refused.
struct VORNIC_RUNTIME_API CallRefusal {
    /// Stands for the name of the operation where an argument's position is expected.
    static constexpr std::size_t operationName = std::numeric_limits<std::size_t>::max();

    std::size_t argument;   ///< which text is at fault; their number when one is missing at the end
    Pelo::ParseError error; ///< where in that text, and what is expected there
};

struct VORNIC_RUNTIME_API CallResult {
    GenericValue value;                 ///< nothing for an operation without result
    std::optional<CallRefusal> refusal; ///< the operation has not been called
};

/// Calls an operation by its name, with arguments that are read from texts as the operation
/// declares them. Mutators of a state machine or another node that is no `Entity` are called by the
/// names that they have in the type: `vpIndexAllocatorDel`, `vpIndexAllocatorDelAll`. Those of
/// entities, which others share and watch, are reached by number only.
///
/// What does not fit is no exception but a refusal, since the texts are most often typed by people.
/// An exception of the operation itself passes through, and so does `ConstEntityException`.
VORNIC_RUNTIME_API CallResult callByName(Pelo::Node& node, std::string_view operation,
                                         std::span<std::string_view const> texts);
VORNIC_RUNTIME_API CallResult callByName(Pelo::Node const& node, std::string_view operation,
                                         std::span<std::string_view const> texts);

} // namespace Qor
