#include "qor/TypeData.h"

#include "Fan.h"
#include "qor/Exceptions.h"
#include "qor/TypeBuilder.h"
#include "qor/TypeModule.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using Cooling::Fan;
using Cooling::Sensor;
using Qor::TypeBuilder;
using Qor::TypeData;
using Qor::TypeModule;

TEST(TypeData, ListsFieldsInTheOrderOfTheirDeclaration) {
    std::ostringstream out;
    out << Fan::typeTable() << Sensor::typeTable();
    EXPECT_EQ(out.str(), "Cooling::Fan(name: Pelo::String, slot: U16, "
                         "neighbour: Pelo::Ptr<Cooling::Fan const>)\n"
                         "  a fan of the tray\n"
                         "  154  nameString: Pelo::String (read-only)\n"
                         "  155  slot: U16 (read-only)\n"
                         "  156  neighbour: Pelo::Ptr<Cooling::Fan const> (read-only)\n"
                         "  258  speed: U32\n"
                         "       turns a minute\n"
                         "  259  alarm[sensor: Pelo::String]: U16\n"
                         "  260  blade[position: U16]: Pelo::Ptr<Cooling::Blade> (read-only)\n"
                         "  261  owner: Pelo::Ptr<Cooling::Blade>\n"
                         "  262  path: Pelo::String (read-only)\n"
                         "  263  isSpinning: bool (read-only)\n"
                         "  264  selfTest(seconds: U16, thorough: bool): U32\n"
                         "  265  serves(vlan: Bridging::VlanId): bool const\n"
                         "  266  isFasterThan(other: Pelo::Ptr<Cooling::Fan const>): bool const\n"
                         "  267  handleAlarm(sensor: Pelo::String)\n"
                         "  268  jam()\n"
                         "  269  motor: Pelo::Ptr<Cooling::Fan>\n"
                         "Cooling::Sensor\n"
                         "  130  probe(deep: bool): U32\n");
}

TEST(TypeData, FindsEachFieldByNumberAndByName) {
    TypeData const& type = Fan::typeTable();
    for (Qor::FieldData const& field : type.fields()) {
        EXPECT_EQ(type.fieldByNumber(field.number), &field) << field.name;
        EXPECT_EQ(type.fieldByName(field.name), &field) << field.name;
    }
    EXPECT_EQ(type.fieldByNumber(130), nullptr);
    EXPECT_EQ(type.fieldByName("Speed"), nullptr);
    EXPECT_EQ(type.fieldByName(""), nullptr);
}

TEST(TypeData, KeepsTheDocumentationOfTheTypeAndOfEachField) {
    TypeData const& type = Fan::typeTable();
    EXPECT_EQ(type.documentation(), "a fan of the tray");
    EXPECT_EQ(type.fieldByName("speed")->documentation, "turns a minute");
    EXPECT_EQ(type.fieldByName("slot")->documentation, "");
    EXPECT_EQ(Sensor::typeTable().documentation(), "");
}

TEST(TypeData, UnqualifiedNameIsWhatStandsBehindTheNamespaces) {
    EXPECT_EQ(TypeBuilder<Fan>("Fan").build().unqualifiedName(), "Fan");
    EXPECT_EQ(TypeBuilder<Fan>("Cooling::Fan").build().unqualifiedName(), "Fan");
    EXPECT_EQ(TypeBuilder<Fan>("House::Cooling::Fan").build().unqualifiedName(), "Fan");
}

TEST(TypeData, OnlyAnOperationHasArguments) {
    EXPECT_EQ(Fan::typeTable().fieldByName("selfTest")->arguments().size(), 2u);
    EXPECT_TRUE(Fan::typeTable().fieldByName("speed")->arguments().empty());
}

TEST(TypeData, AcceptsOperationCodesAsDeclared) {
    auto const codes = [](char const* name) {
        std::string text;
        for (Qor::FieldAccess const& access : Fan::typeTable().fieldByName(name)->accesses) {
            text += Qor::stringValue(access.code) + " ";
        }
        return text;
    };
    EXPECT_EQ(codes("slot"), "get ");
    EXPECT_EQ(codes("speed"), "get set ");
    EXPECT_EQ(codes("alarm"), "get lookup has count iterate set del delAll ");
    EXPECT_EQ(codes("blade"), "get lookup has count iterate ");
    EXPECT_EQ(codes("motor"), "get set del ");
    EXPECT_EQ(codes("path"), "get ");
    EXPECT_EQ(codes("jam"), "call ");
}

TEST(TypeBuilderDeathTest, StopsOnAFieldThatIsThereTwice) {
    EXPECT_DEATH(
        TypeBuilder<Fan>("F").attribute(1, "slot", &Fan::slot).attribute(1, "speed", &Fan::speed),
        "other.number != field.number");
    EXPECT_DEATH(
        TypeBuilder<Fan>("F").attribute(1, "slot", &Fan::slot).operation(2, "slot", &Fan::jam),
        "std::string_view\\(other.name\\) != field.name");
    EXPECT_DEATH(TypeBuilder<Fan>("F")
                     .attribute(1, "speed", &Fan::speed)
                     .set(&Fan::speedIs)
                     .set(&Fan::speedIs),
                 "field.access\\(access.code\\) == nullptr");
}

TEST(TypeBuilderDeathTest, StopsOnADocumentationThatIsThereTwice) {
    EXPECT_DEATH(TypeBuilder<Fan>("F").doc("a fan").doc("one"), "documentation.empty\\(\\)");
    EXPECT_DEATH(
        TypeBuilder<Fan>("F").doc("a fan").operation(1, "jam", &Fan::jam).doc("stops").doc("ends"),
        "documentation.empty\\(\\)");
}

TEST(TypeBuilderDeathTest, StopsOnASecondConstructor) {
    EXPECT_DEATH(TypeBuilder<Fan>("F")
                     .constructor(&Fan::FanIs, {"name", "slot", "neighbour"})
                     .constructor(&Fan::FanIs, {"name", "slot", "neighbour"}),
                 "!constructor_.has_value\\(\\)");
}

TEST(TypeBuilderDeathTest, StopsOnAMutatorThatDoesNotFit) {
    EXPECT_DEATH(TypeBuilder<Fan>("F").detach(&Fan::motorDel), "!fields_.empty\\(\\)");
    EXPECT_DEATH(TypeBuilder<Fan>("F").set(&Fan::speedIs), "!fields_.empty\\(\\)");
    EXPECT_DEATH(TypeBuilder<Fan>("F").attribute(1, "slot", &Fan::slot).set(&Fan::speedIs),
                 "std::equal");
    EXPECT_DEATH(TypeBuilder<Fan>("F").attribute(1, "speed", &Fan::speed).delAll(&Fan::alarmDelAll),
                 "isCollection");
    EXPECT_DEATH(
        TypeBuilder<Fan>("F").collection(1, "blade", "position", &Fan::blade).del(&Fan::alarmDel),
        "std::equal");
    EXPECT_DEATH(TypeBuilder<Fan>("F").operation(1, "jam", &Fan::jam).set(&Fan::speedIs),
                 "isCollection");
    EXPECT_DEATH(TypeBuilder<Fan>("F").operation(1, "jam", &Fan::jam).detach(&Fan::motorDel),
                 "field.kind == FieldKind::operation");
}

TEST(TypeBuilderDeathTest, StopsOnAWrongNumberOfArgumentNames) {
    EXPECT_DEATH(TypeBuilder<Fan>("F").operation(1, "serves", &Fan::serves),
                 "names.size\\(\\) == types.size\\(\\)");
    EXPECT_DEATH(TypeBuilder<Fan>("F").constructor(&Fan::FanIs, {"name"}),
                 "names.size\\(\\) == types.size\\(\\)");
}

TEST(TypeModule, RegistersItsTypesWhileItLives) {
    EXPECT_EQ(TypeData::find("Cooling::Fan"), nullptr);
    EXPECT_EQ(TypeModule::of(Fan::typeTable()), nullptr);
    std::size_t const before = TypeModule::all().size();
    {
        TypeModule const module("Cooling", {&Sensor::typeTable(), &Fan::typeTable()});
        EXPECT_EQ(TypeModule::all().size(), before + 1);
        EXPECT_EQ(TypeModule::all().back(), &module);
        EXPECT_EQ(TypeModule::find("Cooling"), &module);
        EXPECT_STREQ(module.name(), "Cooling");
        EXPECT_EQ(TypeModule::of(Fan::typeTable()), &module);
        EXPECT_EQ(module.indexOf(Sensor::typeTable()), 0u);
        EXPECT_EQ(module.indexOf(Fan::typeTable()), 1u);
        EXPECT_EQ(TypeData::find("Cooling::Fan"), &Fan::typeTable());
        EXPECT_EQ(TypeData::find("Sensor"), &Sensor::typeTable());
        EXPECT_EQ(&TypeData::get("Fan"), &Fan::typeTable());
        EXPECT_EQ(TypeData::find("Cooling::"), nullptr);
    }
    EXPECT_EQ(TypeModule::find("Cooling"), nullptr);
    EXPECT_EQ(TypeData::find("Fan"), nullptr);
    EXPECT_THROW(TypeData::get("Cooling::Fan"), Qor::UnknownNameException);
}

TEST(TypeModule, TakesAnAmbiguousShortNameForNone) {
    TypeData const other = TypeBuilder<Fan>("Heating::Fan").build();
    TypeModule const cooling("Cooling", {&Fan::typeTable()});
    TypeModule const heating("Heating", {&other});
    EXPECT_EQ(TypeData::find("Fan"), nullptr);
    EXPECT_EQ(TypeData::find("Heating::Fan"), &other);
    EXPECT_EQ(TypeData::find("Cooling::Fan"), &Fan::typeTable());
    EXPECT_EQ(heating.indexOf(Fan::typeTable()), std::nullopt);
}

TEST(TypeModule, TakesATypeThatIsCalledLikeTheUnqualifiedNameOfAnother) {
    TypeModule const cooling("Cooling", {&Fan::typeTable()});
    TypeData const plain = TypeBuilder<Fan>("Fan").build();
    TypeModule const other("Other", {&plain});
    EXPECT_EQ(TypeData::find("Fan"), &plain);
    EXPECT_EQ(TypeData::find("Cooling::Fan"), &Fan::typeTable());
}

TEST(TypeModuleDeathTest, StopsOnANameThatIsThereTwice) {
    TypeModule const module("Cooling", {&Fan::typeTable()});
    EXPECT_DEATH(TypeModule("Cooling", {}), "find\\(name\\) == nullptr");
    EXPECT_DEATH(TypeModule("Other", {&Fan::typeTable()}), "!typeNameTaken");
    EXPECT_DEATH(TypeModule("Other", {&Sensor::typeTable(), &Sensor::typeTable()}), "count_if");
}

} // namespace
