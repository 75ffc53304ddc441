// Which types are registered, and what they offer.

#include "VornicL3Shared/inspection/EveryType.h"
#include "VornicL3Shared/inspection/ExpectedTables.h"
#include "qor/Inspection.h"

#include <algorithm>

namespace Test {
namespace {

std::string accessesText(Qor::FieldData const& field) {
    std::string text;
    for (Qor::FieldAccess const& access : field.accesses) {
        text += Qor::stringValue(access.code) + "(" + Qor::listText(access.arguments) + ")" +
                (access.result == nullptr ? "" : ": " + access.result->name()) +
                (access.changes ? "\n" : " const\n");
    }
    return text;
}

std::vector<Qor::TypeModule const*> modulesByName() {
    std::vector<Qor::TypeModule const*> modules(Qor::TypeModule::all().begin(),
                                                Qor::TypeModule::all().end());
    std::sort(modules.begin(), modules.end(),
              [](auto const* a, auto const* b) { return std::string_view(a->name()) < b->name(); });
    return modules;
}

TEST(RegisteredTypes, AreThoseOfTheModulesInTheOrderOfTheirIndices) {
    std::string registered;
    for (Qor::TypeModule const* const module : modulesByName()) {
        registered += std::string(module->name()) + ":";
        for (Qor::TypeData const* const type : module->types()) {
            registered += std::string(" ") + type->name();
        }
        registered += '\n';
    }
    std::string expected;
    for (ExpectedModule const& module : expectedModules()) {
        expected += module.name + ":";
        for (ExpectedType const& type : module.types) {
            expected += " " + type.name;
        }
        expected += '\n';
    }
    EXPECT_EQ(registered, expected);
}

TEST(RegisteredTypes, OfferTheirFieldsInOrder) {
    for (ExpectedModule const& module : expectedModules()) {
        for (ExpectedType const& expected : module.types) {
            Qor::TypeData const& type = Qor::TypeData::get(expected.name);
            std::string offered;
            std::string wanted;
            for (Qor::FieldData const& field : type.fields()) {
                offered += std::to_string(field.number) + " " + field.signature() + "\n" +
                           accessesText(field);
            }
            for (ExpectedField const& field : expected.fields) {
                wanted +=
                    std::to_string(field.number) + " " + field.signature + "\n" + field.accesses;
            }
            EXPECT_EQ(offered, wanted) << expected.name;
            EXPECT_EQ(type.constructor() == nullptr ? "none"
                                                    : Qor::listText(type.constructor()->arguments),
                      expected.constructor);
        }
    }
}

TEST_P(EveryType, IsFoundByItsNameWithAndWithoutItsNamespaces) {
    EXPECT_EQ(Qor::TypeData::find(type().name()), &type());
    EXPECT_EQ(Qor::TypeData::find(type().unqualifiedName()), &type());
}

TEST_P(EveryType, IsTheTypeOfItsObjects) { EXPECT_EQ(samples.object(type())->typeData(), &type()); }

TEST_P(EveryType, IsDocumentedWithEveryField) {
    EXPECT_NE(type().documentation(), "");
    for (Qor::FieldData const& field : type().fields()) {
        EXPECT_NE(field.documentation, "") << field.name;
        EXPECT_FALSE(field.documentation.ends_with('.')) << field.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Registered, EveryType, testing::ValuesIn(registeredTypes()), TypeName());

} // namespace
} // namespace Test
