#pragma once

#include "VornicL3Shared/inspection/Samples.h"
#include "qor/TypeModule.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Test {

inline std::vector<Qor::TypeData const*> registeredTypes() {
    std::vector<Qor::TypeData const*> types;
    for (Qor::TypeModule const* const module : Qor::TypeModule::all()) {
        types.insert(types.end(), module->types().begin(), module->types().end());
    }
    return types;
}

struct TypeName {
    std::string operator()(testing::TestParamInfo<Qor::TypeData const*> const& info) const {
        return std::string(info.param->unqualifiedName());
    }
};

/// The fixture of what must hold for every type that is registered, whatever its fields.
class EveryType : public testing::TestWithParam<Qor::TypeData const*> {
protected:
    Qor::TypeData const& type() const { return *GetParam(); }

    Samples samples;
};

} // namespace Test
