#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace Qor {

/// The base of the runtime's exceptions: what a caller got wrong.
///
/// The operation that refuses has changed nothing; one that called it may have done a part of its
/// work, as its own contract says. The message names the type, the field or argument, and where the
/// runtime knows them what was given and what was expected. Within a notification no exception may
/// leave the handler: there it ends the process.
class VORNIC_RUNTIME_API Exception : public std::runtime_error {
public:
    Exception(std::string type, std::string attribute, std::string const& message)
        : std::runtime_error(message), type_(std::move(type)), attribute_(std::move(attribute)) {}

    /// The type, or the operation, that refused.
    std::string const& type() const noexcept { return type_; }
    /// The attribute, operation or argument at fault; a field number or a name as it was given when
    /// there is none such.
    std::string const& attribute() const noexcept { return attribute_; }

private:
    std::string type_;
    std::string attribute_;
};

/// A child entity exists already, and was asked for with another construction argument.
class VORNIC_RUNTIME_API MutatorReinstantiatingException final : public Exception {
    using Exception::Exception;
};

/// An argument that must be an entity is null.
class VORNIC_RUNTIME_API MutatorArgNullPointerException final : public Exception {
    using Exception::Exception;
};

/// The type has no field of that number.
class VORNIC_RUNTIME_API UnknownFieldException final : public Exception {
    using Exception::Exception;
};

/// There is no type or enumerator of that name or value.
class VORNIC_RUNTIME_API UnknownNameException final : public Exception {
    using Exception::Exception;
};

/// The field does not take that operation code, or the type cannot be constructed from arguments.
class VORNIC_RUNTIME_API OperationRefusedException final : public Exception {
    using Exception::Exception;
};

/// The attribute or collection can only be read.
class VORNIC_RUNTIME_API ReadOnlyAttributeException final : public Exception {
    using Exception::Exception;
};

/// The access would change an entity that is held as a constant.
class VORNIC_RUNTIME_API ConstEntityException final : public Exception {
    using Exception::Exception;
};

/// Too few or too many arguments.
class VORNIC_RUNTIME_API ArgumentCountException final : public Exception {
    using Exception::Exception;
};

/// An argument, or a value that is read as a C++ type, is of another type.
class VORNIC_RUNTIME_API ArgumentTypeException final : public Exception {
    using Exception::Exception;
};

/// Refuses to build a child of type `type` anew: it is there with another `attribute`.
[[noreturn]] VORNIC_RUNTIME_API void throwMutatorReinstantiating(char const* type,
                                                                 char const* attribute);

/// Refuses the null `argument` of `operation`.
[[noreturn]] VORNIC_RUNTIME_API void throwMutatorArgNullPointerException(char const* operation,
                                                                         char const* argument);

/// Refuses a name, or a value, that no enumerator or registered type of `kind` has.
[[noreturn]] VORNIC_RUNTIME_API void throwUnknownName(std::string const& kind,
                                                      std::string const& name);

} // namespace Qor
