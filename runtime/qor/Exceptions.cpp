#include "qor/Exceptions.h"

namespace Qor {

void throwMutatorReinstantiating(char const* type, char const* attribute) {
    throw MutatorReinstantiatingException(type, attribute,
                                          std::string(type) + ": the existing object has another " +
                                              attribute +
                                              ", expected the one that it was built with");
}

void throwMutatorArgNullPointerException(char const* operation, char const* argument) {
    throw MutatorArgNullPointerException(operation, argument,
                                         std::string(operation) + ": argument " + argument +
                                             " is null, expected an entity");
}

void throwUnknownName(std::string const& kind, std::string const& name) {
    throw UnknownNameException(kind, name, "there is no " + kind + " \"" + name + "\"");
}

} // namespace Qor
