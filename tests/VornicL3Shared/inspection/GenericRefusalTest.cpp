// What generic access refuses of every type, and that it changes nothing then.

#include "VornicL3Shared/inspection/EveryType.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"

#include <sstream>
#include <utility>

namespace Test {
namespace {

using Qor::GenericValue;
using Qor::OpCode;
using Values = std::vector<GenericValue>;

constexpr OpCode allCodes[] = {OpCode::get,
                               OpCode::lookup,
                               OpCode::set,
                               OpCode::has,
                               OpCode::del,
                               OpCode::delAll,
                               OpCode::count,
                               OpCode::iterate,
                               OpCode::call,
                               static_cast<OpCode>(9),
                               static_cast<OpCode>(1000),
                               static_cast<OpCode>(-1)};

/// The name of the exception that leaves the call; empty when none does.
template <class Call> std::string refusalOf(Call call) {
    try {
        call();
    } catch (Qor::Exception const& exception) {
        std::string const name = Qor::sourceName(typeid(exception));
        return name.substr(std::string_view("Qor::").size());
    }
    return "";
}

class GenericRefusal : public EveryType {
protected:
    GenericRefusal() : object(samples.object(type())) {
        if (object->publisher() != nullptr) {
            object->publisher()->subscriberAdd(&subscriber_, false);
        }
        samples.world.capture.forget();
        before_ = seen();
    }

    std::string onMutable(Pelo::FieldId field, OpCode code, Values const& arguments) {
        return refusalOf([&] { Qor::inspectOperation(*object, field, code, arguments); });
    }
    std::string onConstant(Pelo::FieldId field, OpCode code, Values const& arguments) {
        return refusalOf(
            [&] { Qor::inspectOperation(std::as_const(*object), field, code, arguments); });
    }

    /// Every value of the object has stayed, so has the rest of the agent, and nobody was told
    /// anything.
    void expectNothingHappened() {
        EXPECT_EQ(seen(), before_);
        EXPECT_EQ(notified_, 0);
        EXPECT_EQ(samples.world.capture.traces(), Lines{});
        EXPECT_EQ(samples.serviceCalls(), Lines{});
    }

    Pelo::Ptr<Pelo::Node> const object;

private:
    static void dispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId, void const*,
                         void const*) noexcept {
        ++subscriber->owner<GenericRefusal>().notified_;
    }

    /// The text of a value, and which entity it points to.
    static std::string shown(GenericValue const& value) {
        std::ostringstream out;
        out << value << "@" << value.node().get();
        return std::move(out).str();
    }

    std::string seen() const {
        std::string text = samples.world.state();
        for (Qor::FieldData const& field : type().fields()) {
            text += std::string(field.name) + ":";
            if (field.kind == Qor::FieldKind::attribute) {
                text += shown(Qor::inspectOperation(*object, field.number, OpCode::get));
            } else if (field.kind == Qor::FieldKind::collection) {
                for (auto it = Qor::collectionIterator(*object, field.number); it; it.advance()) {
                    text += it.key().text() + "=" + shown(it.object()) + " ";
                }
            }
            text += '\n';
        }
        return text;
    }

    std::string before_;
    int notified_ = 0;
    Pelo::Subscriber subscriber_{this, &dispatch};
};

TEST_P(GenericRefusal, OfANumberThatIsNoField) {
    for (Pelo::FieldId number = 0; number < 600; ++number) {
        if (type().fieldByNumber(number) == nullptr) {
            for (OpCode const code : allCodes) {
                EXPECT_EQ(onMutable(number, code, {}), "UnknownFieldException") << number;
                EXPECT_EQ(onConstant(number, code, {}), "UnknownFieldException") << number;
            }
        }
    }
    expectNothingHappened();
}

TEST_P(GenericRefusal, OfAnOperationCodeThatTheFieldDoesNotTake) {
    for (Qor::FieldData const& field : type().fields()) {
        bool const operation = field.kind == Qor::FieldKind::operation;
        bool const readOnly = !operation && field.access(OpCode::set) == nullptr;
        for (OpCode const code : allCodes) {
            if (field.access(code) != nullptr) {
                continue;
            }
            bool const change =
                code == OpCode::set || code == OpCode::del || code == OpCode::delAll;
            std::string const expected =
                change && readOnly ? "ReadOnlyAttributeException" : "OperationRefusedException";
            EXPECT_EQ(onMutable(field.number, code, {}), expected) << field.name;
            EXPECT_EQ(onConstant(field.number, code, {}), expected) << field.name;
        }
    }
    expectNothingHappened();
}

TEST_P(GenericRefusal, OfAChangeOfAConstant) {
    for (Qor::FieldData const& field : type().fields()) {
        for (Qor::FieldAccess const& access : field.accesses) {
            if (access.changes) {
                EXPECT_EQ(onConstant(field.number, access.code, samples.of(access.arguments)),
                          "ConstEntityException")
                    << field.name;
            }
        }
    }
    expectNothingHappened();
}

TEST_P(GenericRefusal, OfTooManyOrTooFewArguments) {
    for (Qor::FieldData const& field : type().fields()) {
        for (Qor::FieldAccess const& access : field.accesses) {
            Values tooMany = samples.of(access.arguments);
            tooMany.push_back(GenericValue::of(true));
            EXPECT_EQ(onMutable(field.number, access.code, tooMany), "ArgumentCountException");
            for (std::size_t count = 0; count < access.arguments.size(); ++count) {
                Values const tooFew(tooMany.begin(),
                                    tooMany.begin() + static_cast<std::ptrdiff_t>(count));
                EXPECT_EQ(onMutable(field.number, access.code, tooFew), "ArgumentCountException");
            }
        }
    }
    expectNothingHappened();
}

TEST_P(GenericRefusal, OfEveryArgumentOfAnotherType) {
    for (Qor::FieldData const& field : type().fields()) {
        for (Qor::FieldAccess const& access : field.accesses) {
            for (std::size_t at = 0; at < access.arguments.size(); ++at) {
                for (GenericValue const& wrong : samples.wrongFor(*access.arguments[at].type)) {
                    Values arguments = samples.of(access.arguments);
                    arguments[at] = wrong;
                    EXPECT_EQ(onMutable(field.number, access.code, arguments),
                              "ArgumentTypeException")
                        << field.name << " " << wrong;
                }
            }
        }
    }
    expectNothingHappened();
}

TEST_P(GenericRefusal, OfConstructionFromOtherArguments) {
    if (type().constructor() == nullptr) {
        EXPECT_EQ(refusalOf([&] { Qor::genericIfConstructFromCtorArgs(type(), {}); }),
                  "OperationRefusedException");
        return;
    }
    auto const construct = [&](Values const& arguments) {
        return refusalOf([&] { Qor::genericIfConstructFromCtorArgs(type(), arguments); });
    };
    std::vector<Qor::ArgumentData> const& declared = type().constructor()->arguments;
    Values arguments = samples.of(declared);
    for (std::size_t at = 0; at < declared.size(); ++at) {
        for (GenericValue const& wrong : samples.wrongFor(*declared[at].type)) {
            Values changed = arguments;
            changed[at] = wrong;
            EXPECT_EQ(construct(changed), "ArgumentTypeException") << declared[at].name;
        }
    }
    EXPECT_EQ(construct(Values(arguments.begin(), arguments.end() - 1)), "ArgumentCountException");
    arguments.push_back(GenericValue::of(true));
    EXPECT_EQ(construct(arguments), "ArgumentCountException");
    expectNothingHappened();
}

INSTANTIATE_TEST_SUITE_P(Registered, GenericRefusal, testing::ValuesIn(registeredTypes()),
                         TypeName());

} // namespace
} // namespace Test
