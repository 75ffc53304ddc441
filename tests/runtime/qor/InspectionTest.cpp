#include "qor/Inspection.h"

#include "Fan.h"
#include "qor/Exceptions.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Cooling::Blade;
using Cooling::Fan;
using Pelo::Ptr;
using Qor::Arguments;
using Qor::GenericValue;
using Qor::OpCode;

constexpr OpCode allCodes[] = {OpCode::get,   OpCode::lookup,  OpCode::set,
                               OpCode::has,   OpCode::del,     OpCode::delAll,
                               OpCode::count, OpCode::iterate, OpCode::call};

/// A fan with the alarms heat = 3 and dust = 1.
class Inspection : public testing::Test {
protected:
    Inspection() {
        fan->speedIs(500);
        fan->alarmIs("heat", 3);
        fan->alarmIs("dust", 1);
    }

    Pelo::FieldId number(char const* field) const {
        return Fan::typeTable().fieldByName(field)->number;
    }
    GenericValue inspect(char const* field, OpCode code, Arguments arguments = {}) {
        return Qor::inspectOperation(*fan, number(field), code, arguments);
    }
    GenericValue inspectConst(char const* field, OpCode code, Arguments arguments = {}) {
        return Qor::inspectOperation(std::as_const(*fan), number(field), code, arguments);
    }

    /// Everything that an access could change.
    std::string state() const {
        std::string text = std::to_string(fan->speed()) + (fan->owner() ? " owned" : "");
        for (Fan::Alarms::Iterator it(fan->alarm()); it; it.advance()) {
            text += " " + std::string(it.key()) + "=" + std::to_string(it.value());
        }
        return text + " calls=" + std::to_string(fan->calls.size());
    }

    Ptr<Fan> const neighbour = Fan::FanIs("neighbour", 8, nullptr);
    Ptr<Fan> const fan = Fan::FanIs("left", 7, neighbour.get());
};

TEST_F(Inspection, ReadsAttributes) {
    EXPECT_EQ(inspect("nameString", OpCode::get).as<Pelo::String>(), "left");
    EXPECT_EQ(inspect("slot", OpCode::get).as<U16>(), 7);
    EXPECT_EQ(inspect("neighbour", OpCode::get).as<Ptr<Fan const>>(), neighbour.get());
    EXPECT_EQ(inspect("speed", OpCode::get).as<U32>(), 500u);
    EXPECT_EQ(inspect("owner", OpCode::get).as<Ptr<Blade>>(), nullptr);
    EXPECT_EQ(inspect("path", OpCode::get).as<Pelo::String>(), "cooling/fan");
    EXPECT_EQ(inspect("isSpinning", OpCode::get).as<bool>(), true);
}

TEST_F(Inspection, SetsAttributesThroughTheirMutators) {
    EXPECT_TRUE(inspect("speed", OpCode::set, {GenericValue::of(U32{900})}).empty());
    EXPECT_EQ(fan->speed(), 900u);

    Ptr<Blade> const blade = Ptr<Blade>::adopt(new Blade);
    inspect("owner", OpCode::set, {GenericValue::of(blade)});
    EXPECT_EQ(fan->owner(), blade);
    inspect("owner", OpCode::set, {GenericValue::of(Ptr<Blade>())});
    EXPECT_EQ(fan->owner(), nullptr);
    EXPECT_EQ(blade->useCount(), 1u);
}

TEST_F(Inspection, ReadsCollections) {
    GenericValue const heat = GenericValue::of("heat");
    GenericValue const noise = GenericValue::of("noise");
    EXPECT_EQ(inspect("alarm", OpCode::count).as<U32>(), 2u);
    EXPECT_EQ(inspect("alarm", OpCode::has, {heat}).as<bool>(), true);
    EXPECT_EQ(inspect("alarm", OpCode::has, {noise}).as<bool>(), false);
    EXPECT_EQ(inspect("alarm", OpCode::get, {heat}).as<U16>(), 3);
    EXPECT_EQ(inspect("alarm", OpCode::get, {noise}).as<U16>(), 0);
    EXPECT_EQ(inspect("alarm", OpCode::lookup, {heat}).as<U16>(), 3);
    EXPECT_TRUE(inspect("alarm", OpCode::lookup, {noise}).empty());
    EXPECT_EQ(inspect("blade", OpCode::get, {GenericValue::of(U16{1})}).as<Ptr<Blade>>(),
              fan->blade().lookupNode(1)->value());
    EXPECT_EQ(inspect("blade", OpCode::get, {GenericValue::of(U16{9})}).as<Ptr<Blade>>(), nullptr);
}

TEST_F(Inspection, ChangesCollectionsThroughTheirMutators) {
    inspect("alarm", OpCode::set, {GenericValue::of("noise"), GenericValue::of(U16{9})});
    inspect("alarm", OpCode::set, {GenericValue::of("heat"), GenericValue::of(U16{4})});
    EXPECT_EQ(state(), "500 heat=4 dust=1 noise=9 calls=0");
    EXPECT_EQ(inspect("alarm", OpCode::del, {GenericValue::of("dust")}).as<U16>(), 1);
    EXPECT_EQ(inspect("alarm", OpCode::del, {GenericValue::of("dust")}).as<U16>(), 0);
    EXPECT_EQ(state(), "500 heat=4 noise=9 calls=0");
    EXPECT_TRUE(inspect("alarm", OpCode::delAll).empty());
    EXPECT_EQ(state(), "500 calls=0");
}

TEST_F(Inspection, CallsOperations) {
    EXPECT_EQ(inspect("selfTest", OpCode::call, {GenericValue::of(U16{6}), GenericValue::of(true)})
                  .as<U32>(),
              60u);
    EXPECT_EQ(inspect("serves", OpCode::call, {GenericValue::of(Bridging::VlanId(7))}).as<bool>(),
              true);
    EXPECT_EQ(inspect("isFasterThan", OpCode::call, {GenericValue::of(neighbour)}).as<bool>(),
              true);
    EXPECT_TRUE(inspect("handleAlarm", OpCode::call, {GenericValue::of("heat")}).empty());
    EXPECT_EQ(fan->calls, (std::vector<std::string>{"selfTest", "handleAlarm heat"}));
}

TEST_F(Inspection, BuildsAndDetachesAnEntityOfItsOwn) {
    GenericValue const built =
        inspect("motor", OpCode::set, {GenericValue::of("m"), GenericValue::of(U16{3})});
    EXPECT_EQ(built.as<Ptr<Fan>>(), fan->motor());
    EXPECT_EQ(fan->motor()->name(), "m");
    EXPECT_EQ(fan->motor()->slot(), 3);
    EXPECT_EQ(inspect("motor", OpCode::get), built);
    EXPECT_EQ(inspect("motor", OpCode::del), built);
    EXPECT_EQ(fan->motor(), nullptr);
    EXPECT_THROW(inspect("motor", OpCode::set, {built}), Qor::ArgumentCountException);
    EXPECT_THROW(inspectConst("motor", OpCode::del), Qor::ConstEntityException);
}

TEST_F(Inspection, PassesTheExceptionOfTheAccessorOn) {
    EXPECT_THROW(inspect("jam", OpCode::call), std::runtime_error);
}

TEST_F(Inspection, ConstantsCanBeReadAndCalledWhereNothingChanges) {
    EXPECT_EQ(inspectConst("speed", OpCode::get).as<U32>(), 500u);
    EXPECT_EQ(inspectConst("alarm", OpCode::count).as<U32>(), 2u);
    EXPECT_EQ(inspectConst("alarm", OpCode::lookup, {GenericValue::of("dust")}).as<U16>(), 1);
    EXPECT_EQ(
        inspectConst("serves", OpCode::call, {GenericValue::of(Bridging::VlanId(8))}).as<bool>(),
        false);
}

using InspectionRefusal = Inspection;

/// What an access throws, as "TYPE.FIELD", its message apart.
template <class Thrown, class Access>
std::string refusal(Access access, std::string* message = nullptr) {
    try {
        access();
    } catch (Thrown const& thrown) {
        if (message != nullptr) {
            *message = thrown.what();
        }
        return thrown.type() + "." + thrown.attribute();
    }
    return "nothing refused";
}

TEST_F(InspectionRefusal, UnknownFieldNumber) {
    std::string message;
    for (OpCode const code : allCodes) {
        EXPECT_EQ(refusal<Qor::UnknownFieldException>(
                      [&] { Qor::inspectOperation(*fan, 999, code); }, &message),
                  "Cooling::Fan.999");
    }
    EXPECT_EQ(message, "Cooling::Fan has no field 999");
    EXPECT_EQ(refusal<Qor::UnknownFieldException>([] {
                  auto const blade = Ptr<Blade>::adopt(new Blade);
                  Qor::inspectOperation(*blade, 130, OpCode::get);
              }),
              "Cooling::Blade.130");
}

TEST_F(InspectionRefusal, EveryOperationCodeThatAFieldDoesNotTake) {
    std::string const before = state();
    int refused = 0;
    for (Qor::FieldData const& field : Fan::typeTable().fields()) {
        for (OpCode const code : allCodes) {
            if (field.access(code) == nullptr) {
                EXPECT_EQ(refusal<Qor::Exception>(
                              [&] { Qor::inspectOperation(*fan, field.number, code); }),
                          std::string("Cooling::Fan.") + field.name);
                ++refused;
            }
        }
    }
    constexpr int combinations = 15 * 9;
    constexpr int taken = 30;
    EXPECT_EQ(refused, combinations - taken);
    EXPECT_EQ(state(), before);
}

TEST_F(InspectionRefusal, OperationCodeOfAnotherKind) {
    std::string message;
    EXPECT_EQ(refusal<Qor::OperationRefusedException>([&] { inspect("selfTest", OpCode::set); },
                                                      &message),
              "Cooling::Fan.selfTest");
    EXPECT_EQ(message, "Cooling::Fan.selfTest: set is refused, expected one of call");
    EXPECT_THROW(inspect("speed", OpCode::call), Qor::OperationRefusedException);
    EXPECT_THROW(inspect("speed", OpCode::del), Qor::OperationRefusedException);
    EXPECT_THROW(inspect("speed", static_cast<OpCode>(77)), Qor::OperationRefusedException);
}

TEST_F(InspectionRefusal, ChangeOfWhatIsReadOnly) {
    std::string message;
    EXPECT_EQ(refusal<Qor::ReadOnlyAttributeException>(
                  [&] { inspect("slot", OpCode::set, {GenericValue::of(U16{1})}); }, &message),
              "Cooling::Fan.slot");
    EXPECT_EQ(message, "Cooling::Fan.slot: it is read-only; set is refused, expected one of get");
    EXPECT_THROW(inspect("path", OpCode::set, {GenericValue::of("x")}),
                 Qor::ReadOnlyAttributeException);
    EXPECT_THROW(inspect("blade", OpCode::del, {GenericValue::of(U16{0})}),
                 Qor::ReadOnlyAttributeException);
    EXPECT_THROW(inspect("blade", OpCode::delAll), Qor::ReadOnlyAttributeException);
    EXPECT_EQ(fan->blade().memberCount(), Fan::numberOfBlades);
}

TEST_F(InspectionRefusal, ChangeOfAConstant) {
    std::string const before = state();
    std::string message;
    EXPECT_EQ(
        refusal<Qor::ConstEntityException>(
            [&] { inspectConst("speed", OpCode::set, {GenericValue::of(U32{1})}); }, &message),
        "Cooling::Fan.speed");
    EXPECT_EQ(message, "Cooling::Fan.speed: set would change a constant entity");
    EXPECT_THROW(
        inspectConst("alarm", OpCode::set, {GenericValue::of("x"), GenericValue::of(U16{1})}),
        Qor::ConstEntityException);
    EXPECT_THROW(inspectConst("alarm", OpCode::del, {GenericValue::of("heat")}),
                 Qor::ConstEntityException);
    EXPECT_THROW(inspectConst("alarm", OpCode::delAll), Qor::ConstEntityException);
    EXPECT_THROW(inspectConst("handleAlarm", OpCode::call, {GenericValue::of("heat")}),
                 Qor::ConstEntityException);
    EXPECT_THROW(inspectConst("slot", OpCode::set, {GenericValue::of(U16{1})}),
                 Qor::ReadOnlyAttributeException);
    EXPECT_EQ(state(), before);
}

TEST_F(InspectionRefusal, WrongNumberOfArguments) {
    std::string const before = state();
    std::string message;
    EXPECT_EQ(refusal<Qor::ArgumentCountException>(
                  [&] { inspect("selfTest", OpCode::call, {GenericValue::of(U16{6})}); }, &message),
              "Cooling::Fan.selfTest");
    EXPECT_EQ(message, "Cooling::Fan.selfTest: 1 arguments given, expected 2: "
                       "(seconds: U16, thorough: bool)");
    EXPECT_THROW(inspect("speed", OpCode::get, {GenericValue::of(true)}),
                 Qor::ArgumentCountException);
    EXPECT_THROW(inspect("speed", OpCode::set), Qor::ArgumentCountException);
    EXPECT_THROW(inspect("alarm", OpCode::set, {GenericValue::of("heat")}),
                 Qor::ArgumentCountException);
    EXPECT_THROW(inspect("alarm", OpCode::delAll, {GenericValue::of("heat")}),
                 Qor::ArgumentCountException);
    EXPECT_EQ(state(), before);
}

TEST_F(InspectionRefusal, WrongTypeOfAnArgument) {
    std::string const before = state();
    std::string message;
    EXPECT_EQ(refusal<Qor::ArgumentTypeException>(
                  [&] {
                      inspect("selfTest", OpCode::call,
                              {GenericValue::of(U16{6}), GenericValue::of(U16{1})});
                  },
                  &message),
              "Cooling::Fan.selfTest");
    EXPECT_EQ(message, "Cooling::Fan.selfTest: argument thorough: got U16 1, expected a bool");
    EXPECT_THROW(inspect("speed", OpCode::set, {GenericValue::of(U16{1})}),
                 Qor::ArgumentTypeException);
    EXPECT_THROW(inspect("speed", OpCode::set, {GenericValue()}), Qor::ArgumentTypeException);
    EXPECT_THROW(inspect("owner", OpCode::set, {GenericValue::of(fan)}),
                 Qor::ArgumentTypeException);
    EXPECT_THROW(
        inspect("alarm", OpCode::set, {GenericValue::of(U16{1}), GenericValue::of(U16{1})}),
        Qor::ArgumentTypeException);
    EXPECT_THROW(inspect("alarm", OpCode::has, {GenericValue::of(true)}),
                 Qor::ArgumentTypeException);
    EXPECT_EQ(state(), before);
}

} // namespace
