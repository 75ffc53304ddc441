#pragma once

#include "pelo/Integers.h"

#include <stdexcept>
#include <string>

namespace Qor {

/// The base of the runtime's exceptions: what a caller got wrong.
///
/// Whoever throws one has changed nothing. The message names the type, the field or argument, what
/// was given and what was expected. Within a notification no exception may leave the handler: there
/// it ends the process.
class Exception : public std::runtime_error {
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
class MutatorReinstantiatingException final : public Exception {
    using Exception::Exception;
};

/// An argument that must be an entity is null.
class MutatorArgNullPointerException final : public Exception {
    using Exception::Exception;
};

/// The type has no field of that number.
class UnknownFieldException final : public Exception {
    using Exception::Exception;
};

/// There is no type or enumerator of that name or value.
class UnknownNameException final : public Exception {
    using Exception::Exception;
};

/// The field does not take that operation code, or the type cannot be constructed from arguments.
class OperationRefusedException final : public Exception {
    using Exception::Exception;
};

/// The attribute or collection can only be read.
class ReadOnlyAttributeException final : public Exception {
    using Exception::Exception;
};

/// The access would change an entity that is held as a constant.
class ConstEntityException final : public Exception {
    using Exception::Exception;
};

/// Too few or too many arguments.
class ArgumentCountException final : public Exception {
    using Exception::Exception;
};

/// An argument, or a value that is read as a C++ type, is of another type.
class ArgumentTypeException final : public Exception {
    using Exception::Exception;
};

/// Refuses to build a child of type `type` anew: it is there with another `attribute`.
[[noreturn]] void throwMutatorReinstantiating(char const* type, char const* attribute);

/// Refuses the null `argument` of `operation`.
[[noreturn]] void throwMutatorArgNullPointerException(char const* operation, char const* argument);

/// Refuses a name, or a value, that no enumerator or registered type of `kind` has.
[[noreturn]] void throwUnknownName(std::string const& kind, std::string const& name);

} // namespace Qor
