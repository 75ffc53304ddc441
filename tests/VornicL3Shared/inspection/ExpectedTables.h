#pragma once

#include "pelo/Publisher.h"

#include <string>
#include <vector>

/// What every registered type must offer, written out by hand: the types of each module in the
/// order of their indices, and of each type the constructor and the fields in their order.
namespace Test {

struct ExpectedField {
    Pelo::FieldId number;
    std::string signature; ///< as `Qor::FieldData::signature` says it
    std::string accesses;  ///< what each operation code takes and gives, as `accessesText` says it
};

struct ExpectedType {
    std::string name;
    std::string constructor; ///< its arguments; "none" for a type that cannot be built
    std::vector<ExpectedField> fields;
};

struct ExpectedModule {
    std::string name;
    std::vector<ExpectedType> types;
};

/// In the order of their names.
std::vector<ExpectedModule> expectedModules();

} // namespace Test
