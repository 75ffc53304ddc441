#include "Fan.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"
#include "qor/TypeBuilder.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using Cooling::Blade;
using Cooling::Fan;
using Cooling::Sensor;
using Pelo::Ptr;
using Qor::CallRefusal;
using Qor::GenericValue;

TEST(GenericConstruction, CallsTheCreatorWithTheArgumentsInOrder) {
    Ptr<Fan> const neighbour = Fan::FanIs("neighbour", 8, nullptr);
    Ptr<Pelo::Node> const node = Qor::genericIfConstructFromCtorArgs(
        Fan::typeTable(),
        {GenericValue::of("left"), GenericValue::of(U16{7}), GenericValue::of(neighbour)});
    auto const* const fan = dynamic_cast<Fan const*>(node.get());
    ASSERT_NE(fan, nullptr);
    EXPECT_EQ(node->useCount(), 1u);
    EXPECT_EQ(fan->name(), "left");
    EXPECT_EQ(fan->slot(), 7);
    EXPECT_EQ(fan->neighbour(), neighbour.get());
}

TEST(GenericConstruction, RefusesWrongArgumentsAndBuildsNothing) {
    U64 const built = Fan::allocationTracker().allocated();
    GenericValue const name = GenericValue::of("left");
    GenericValue const slot = GenericValue::of(U16{7});
    GenericValue const neighbour = GenericValue::of(Ptr<Fan>());
    Qor::TypeData const& type = Fan::typeTable();
    EXPECT_THROW(Qor::genericIfConstructFromCtorArgs(type, {name, slot}),
                 Qor::ArgumentCountException);
    EXPECT_THROW(Qor::genericIfConstructFromCtorArgs(type, {}), Qor::ArgumentCountException);
    EXPECT_THROW(Qor::genericIfConstructFromCtorArgs(type, {slot, name, neighbour}),
                 Qor::ArgumentTypeException);
    EXPECT_THROW(Qor::genericIfConstructFromCtorArgs(type, {name, slot, GenericValue()}),
                 Qor::ArgumentTypeException);
    EXPECT_EQ(Fan::allocationTracker().allocated(), built);
}

TEST(GenericConstruction, PassesTheExceptionOfTheCreatorOn) {
    EXPECT_THROW(Qor::genericIfConstructFromCtorArgs(
                     Fan::typeTable(), {GenericValue::of(""), GenericValue::of(U16{7}),
                                        GenericValue::of(Ptr<Fan>())}),
                 Qor::MutatorArgNullPointerException);
}

TEST(GenericConstruction, RefusesATypeWithoutConstructor) {
    try {
        Qor::genericIfConstructFromCtorArgs(Sensor::typeTable(), {});
        FAIL() << "an abstract type was built";
    } catch (Qor::OperationRefusedException const& thrown) {
        EXPECT_EQ(thrown.type(), "Cooling::Sensor");
        EXPECT_EQ(thrown.attribute(), "constructor");
    }
}

class CallByName : public testing::Test {
protected:
    using Texts = std::initializer_list<std::string_view>;

    /// The text of the result, or "refused ARGUMENT@PLACE: EXPECTED".
    std::string call(std::string_view operation, Texts texts) {
        return callOn(*fan, operation, texts);
    }

    template <class Node>
    static std::string callOn(Node& node, std::string_view operation, Texts texts) {
        Qor::CallResult const result =
            Qor::callByName(node, operation, {texts.begin(), texts.size()});
        if (!result.refusal) {
            return result.value.text();
        }
        EXPECT_TRUE(result.value.empty());
        CallRefusal const& refusal = *result.refusal;
        std::string const argument = refusal.argument == CallRefusal::operationName
                                         ? "operation"
                                         : std::to_string(refusal.argument);
        return "refused " + argument + "@" + std::to_string(refusal.error.at) + ": " +
               refusal.error.expected;
    }

    Ptr<Fan> const fan = Fan::FanIs("left", 7, nullptr);
};

TEST_F(CallByName, ReadsTheArgumentsAsDeclared) {
    EXPECT_EQ(call("selfTest", {"6", "true"}), "60");
    EXPECT_EQ(call("serves", {"7"}), "true");
    EXPECT_EQ(call("handleAlarm", {"heat of it"}), "");
    EXPECT_EQ(fan->calls, (std::vector<std::string>{"selfTest", "handleAlarm heat of it"}));
}

TEST_F(CallByName, LeavesTheMutatorsOfSharedEntitiesToTheirNumbers) {
    std::string const expected =
        "refused operation@0: an operation of Cooling::Fan: selfTest, serves, "
        "isFasterThan, handleAlarm, jam";
    EXPECT_EQ(call("speedIs", {"1200"}), expected);
    EXPECT_EQ(call("alarmDelAll", {}), expected);
    EXPECT_EQ(fan->speed(), 0u);
}

TEST_F(CallByName, RefusesWhatIsNoOperation) {
    std::string const expected =
        "refused operation@0: an operation of Cooling::Fan: selfTest, serves, "
        "isFasterThan, handleAlarm, jam";
    EXPECT_EQ(call("selftest", {}), expected);
    EXPECT_EQ(call("speed", {}), expected);
    EXPECT_EQ(call("", {}), expected);
    Ptr<Blade> const blade = Ptr<Blade>::adopt(new Blade);
    EXPECT_EQ(callOn(*blade, "selfTest", {}),
              "refused operation@0: an operation of an entity that has any");
}

TEST_F(CallByName, SaysThatATypeHasNoOperations) {
    class Label final : public Pelo::Node {
    public:
        U32 number() const { return 7; }
        Qor::TypeData const* typeData() const override {
            static Qor::TypeData const table = Qor::TypeBuilder<Label>("Cooling::Label")
                                                   .attribute(130, "number", &Label::number)
                                                   .build();
            return &table;
        }
    };
    auto const label = Pelo::newNode<Label>();
    EXPECT_EQ(Qor::inspectOperation(*label, 130, Qor::OpCode::get).text(), "7");
    EXPECT_EQ(callOn(*label, "number", {}),
              "refused operation@0: an operation of Cooling::Label, which has none");
}

TEST_F(CallByName, ResultThatMayBeMissingIsNothingThen) {
    class Drawer final : public Pelo::Node {
    public:
        std::optional<U32> find(bool there) const {
            return there ? std::optional<U32>(7) : std::nullopt;
        }
        Qor::TypeData const* typeData() const override {
            static Qor::TypeData const table = Qor::TypeBuilder<Drawer>("Cooling::Drawer")
                                                   .operation(130, "find", &Drawer::find, {"there"})
                                                   .build();
            return &table;
        }
    };
    auto const drawer = Pelo::newNode<Drawer>();
    std::vector<std::string_view> const there{"true"};
    std::vector<std::string_view> const missing{"false"};
    EXPECT_EQ(Qor::callByName(*drawer, "find", there).value, GenericValue::of(U32{7}));
    EXPECT_EQ(Qor::callByName(*drawer, "find", missing).value, GenericValue());
    EXPECT_EQ(drawer->typeData()->fieldByName("find")->signature(), "find(there: bool): U32 const");
}

TEST_F(CallByName, RefusesAWrongNumberOfArguments) {
    EXPECT_EQ(call("selfTest", {}), "refused 0@0: argument seconds: U16");
    EXPECT_EQ(call("selfTest", {"6"}), "refused 1@0: argument thorough: bool");
    EXPECT_EQ(call("selfTest", {"6", "true", "x"}),
              "refused 2@0: no more arguments: (seconds: U16, thorough: bool)");
    EXPECT_TRUE(fan->calls.empty());
}

TEST_F(CallByName, MarksThePlaceOfWhatDoesNotFit) {
    EXPECT_EQ(call("selfTest", {"6s", "true"}),
              "refused 0@1: a number from 0 to 65535 (argument seconds)");
    EXPECT_EQ(call("selfTest", {"6", "yes"}), "refused 1@0: true or false (argument thorough)");
    EXPECT_EQ(call("isFasterThan", {"right"}), "refused 0@0: a Pelo::Ptr<Cooling::Fan const>, "
                                               "which cannot be given as text (argument other)");
    EXPECT_TRUE(fan->calls.empty());
}

TEST_F(CallByName, LeavesExceptionsOfTheOperationToTheCaller) {
    EXPECT_THROW(call("jam", {}), std::runtime_error);
}

TEST_F(CallByName, ChangesNoConstant) {
    EXPECT_EQ(callOn(std::as_const(*fan), "serves", {"7"}), "true");
    EXPECT_THROW(callOn(std::as_const(*fan), "selfTest", {"6", "true"}), Qor::ConstEntityException);
    EXPECT_TRUE(fan->calls.empty());
}

TEST_F(CallByName, ReachesTheOverridingOperation) {
    struct Probe final : Sensor {
        U32 probe(bool deep) override { return deep ? 2 : 1; }
    };
    Ptr<Probe> const probe = Ptr<Probe>::adopt(new Probe);
    EXPECT_EQ(callOn(*probe, "probe", {"true"}), "2");
    EXPECT_EQ(callOn(*probe, "probe", {"false"}), "1");
}

} // namespace
