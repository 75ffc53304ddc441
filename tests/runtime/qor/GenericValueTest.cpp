#include "qor/GenericValue.h"

#include "Fan.h"
#include "qor/Exceptions.h"
#include "qor/TypeBuilder.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using Cooling::Blade;
using Cooling::Fan;
using Pelo::Ptr;
using Qor::GenericValue;
using Qor::valueTypeOf;

/// How a text is read as a `T`: its value's text, or "AT: EXPECTED".
template <class T> std::string readAs(std::string_view text) {
    Pelo::Parsed<GenericValue> const value = valueTypeOf<T>().parse(text);
    if (!value) {
        return std::to_string(value.error().at) + ": " + value.error().expected;
    }
    return value->template as<T>() == *Qor::ValueTraits<T>::parse(text) ? value->text() : "differs";
}

TEST(GenericValue, IsNothingByDefault) {
    GenericValue const nothing;
    EXPECT_TRUE(nothing.empty());
    EXPECT_EQ(nothing.type(), nullptr);
    EXPECT_EQ(nothing.text(), "");
    EXPECT_EQ(nothing.node(), nullptr);
    EXPECT_FALSE(nothing.is<bool>());
    EXPECT_THROW(nothing.as<bool>(), Qor::ArgumentTypeException);
}

TEST(GenericValue, IsReadAsTheTypeThatItWasMadeOf) {
    GenericValue const value = GenericValue::of(U16{7});
    EXPECT_TRUE(value.is<U16>());
    EXPECT_EQ(value.as<U16>(), 7);
    EXPECT_FALSE(value.is<U32>());
    EXPECT_THROW(value.as<U32>(), Qor::ArgumentTypeException);
    EXPECT_THROW(value.as<bool>(), Qor::ArgumentTypeException);
    EXPECT_THROW(value.as<Ptr<Fan const>>(), Qor::ArgumentTypeException);
}

TEST(GenericValue, RefusalNamesWhatIsWantedAndWhatIsThere) {
    try {
        GenericValue::of(U16{7}).as<Pelo::String>();
        FAIL() << "a number was read as a text";
    } catch (Qor::ArgumentTypeException const& thrown) {
        EXPECT_STREQ(thrown.what(), "expected a Pelo::String, got a U16 7");
    }
}

TEST(GenericValue, KeepsTextsAndPlainPointersAsCountedValues) {
    EXPECT_TRUE(GenericValue::of("text").is<Pelo::String>());
    EXPECT_TRUE(GenericValue::of(std::string_view("text")).is<Pelo::String>());

    Ptr<Fan> const fan = Fan::FanIs("f", 1, nullptr);
    {
        GenericValue const value = GenericValue::of(fan.get());
        EXPECT_TRUE(value.is<Ptr<Fan>>());
        EXPECT_EQ(fan->useCount(), 2u);
    }
    EXPECT_EQ(fan->useCount(), 1u);
}

TEST(GenericValue, PointerGainsConstAndNothingElse) {
    Ptr<Fan> const fan = Fan::FanIs("f", 1, nullptr);
    GenericValue const changeable = GenericValue::of(fan);
    GenericValue const constant = GenericValue::of(Ptr<Fan const>(fan));

    EXPECT_TRUE(changeable.is<Ptr<Fan const>>());
    EXPECT_EQ(changeable.as<Ptr<Fan const>>(), fan.get());
    EXPECT_FALSE(constant.is<Ptr<Fan>>());
    EXPECT_THROW(constant.as<Ptr<Fan>>(), Qor::ArgumentTypeException);
    EXPECT_FALSE(changeable.is<Ptr<Qor::Entity>>());
    EXPECT_THROW(changeable.as<Ptr<Pelo::Node>>(), Qor::ArgumentTypeException);
}

TEST(GenericValue, GivesItsEntityForFurtherInspection) {
    Ptr<Fan> const fan = Fan::FanIs("f", 1, nullptr);
    EXPECT_EQ(GenericValue::of(fan).node(), fan.get());
    EXPECT_EQ(GenericValue::of(fan).mutableNode(), fan.get());
    EXPECT_EQ(GenericValue::of(Ptr<Fan const>(fan)).node(), fan.get());
    EXPECT_EQ(GenericValue::of(Ptr<Fan const>(fan)).mutableNode(), nullptr);
    EXPECT_EQ(GenericValue::of(Ptr<Fan>()).node(), nullptr);
    EXPECT_EQ(GenericValue().node(), nullptr);
    EXPECT_EQ(GenericValue().mutableNode(), nullptr);
    EXPECT_EQ(GenericValue::of(true).node(), nullptr);
    EXPECT_EQ(fan->useCount(), 1u);
}

TEST(GenericValue, EqualsByTypeAndValue) {
    EXPECT_EQ(GenericValue(), GenericValue());
    EXPECT_EQ(GenericValue::of(U16{7}), GenericValue::of(U16{7}));
    EXPECT_NE(GenericValue::of(U16{7}), GenericValue::of(U16{8}));
    EXPECT_NE(GenericValue::of(U16{7}), GenericValue::of(U32{7}));
    EXPECT_NE(GenericValue::of(U16{7}), GenericValue());
    EXPECT_NE(GenericValue(), GenericValue::of(false));
}

TEST(GenericValue, PrintsItsText) {
    Ptr<Fan> const fan = Fan::FanIs("left", 1, nullptr);
    std::ostringstream out;
    out << GenericValue() << ", " << GenericValue::of(true) << ", " << GenericValue::of(U8{200})
        << ", " << GenericValue::of("name") << ", " << GenericValue::of(Bridging::VlanId(5)) << ", "
        << GenericValue::of(fan) << ", " << GenericValue::of(Ptr<Blade>()) << ", "
        << GenericValue::of(Ptr<Blade>::adopt(new Blade));
    EXPECT_EQ(out.str(),
              "nothing, true, 200, name, 5, Cooling::Fan \"left\", null, Cooling::Blade");
}

/// A node whose table has no name, but an operation that is called so.
class Caller final : public Pelo::Node {
public:
    U32 name() { return 7; }
    Qor::TypeData const* typeData() const override {
        static Qor::TypeData const table = Qor::TypeBuilder<Caller>("Cooling::Caller")
                                               .operation(130, "name", &Caller::name)
                                               .build();
        return &table;
    }
};

TEST(GenericValue, EntityWithoutANameReadsAsItsType) {
    auto const caller = Pelo::newNode<Caller>();
    EXPECT_EQ(GenericValue::of(caller).text(), "Cooling::Caller");
    EXPECT_EQ(caller->name(), 7u);
}

TEST(ValueType, HasNameAndKind) {
    EXPECT_EQ(valueTypeOf<bool>().name(), "bool");
    EXPECT_EQ(valueTypeOf<U8>().name(), "U8");
    EXPECT_EQ(valueTypeOf<U16>().name(), "U16");
    EXPECT_EQ(valueTypeOf<U32>().name(), "U32");
    EXPECT_EQ(valueTypeOf<U64>().name(), "U64");
    EXPECT_EQ(valueTypeOf<Pelo::String>().name(), "Pelo::String");
    EXPECT_EQ(valueTypeOf<Bridging::VlanId>().name(), "Bridging::VlanId");
    EXPECT_EQ(valueTypeOf<Ptr<Fan const>>().name(), "Pelo::Ptr<Cooling::Fan const>");

    EXPECT_EQ(valueTypeOf<bool>().kind(), Qor::ValueKind::boolean);
    EXPECT_EQ(valueTypeOf<U64>().kind(), Qor::ValueKind::number);
    EXPECT_EQ(valueTypeOf<Pelo::String>().kind(), Qor::ValueKind::text);
    EXPECT_EQ(valueTypeOf<Bridging::VlanId>().kind(), Qor::ValueKind::text);
    EXPECT_EQ(valueTypeOf<Ptr<Fan>>().kind(), Qor::ValueKind::entity);
}

TEST(ValueType, ReadsBooleans) {
    EXPECT_EQ(readAs<bool>("true"), "true");
    EXPECT_EQ(readAs<bool>("false"), "false");
    for (std::string_view const text : {"", "True", "1", "on", "true "}) {
        EXPECT_EQ(readAs<bool>(text), "0: true or false");
    }
}

TEST(ValueType, ReadsNumbersStrictly) {
    EXPECT_EQ(readAs<U8>("255"), "255");
    EXPECT_EQ(readAs<U16>("65535"), "65535");
    EXPECT_EQ(readAs<U32>("4294967295"), "4294967295");
    EXPECT_EQ(readAs<U64>("18446744073709551615"), "18446744073709551615");
    EXPECT_EQ(readAs<U8>("256"), "2: a number from 0 to 255");
    EXPECT_EQ(readAs<U32>("4294967296"), "9: a number from 0 to 4294967295");
    EXPECT_EQ(readAs<U16>(""), "0: a number from 0 to 65535");
    EXPECT_EQ(readAs<U16>("-1"), "0: a number from 0 to 65535");
    EXPECT_EQ(readAs<U16>("+1"), "0: a number from 0 to 65535");
    EXPECT_EQ(readAs<U16>("12 "), "2: a number from 0 to 65535");
}

TEST(ValueType, ReadsTextsAsTheyAreAndKeysByTheirOwnRules) {
    EXPECT_EQ(readAs<Pelo::String>(""), "");
    EXPECT_EQ(readAs<Pelo::String>(" a b"), " a b");
    EXPECT_EQ(readAs<Bridging::VlanId>("100"), "100");
    EXPECT_EQ(readAs<Bridging::VlanId>("10x"),
              "2: " + Bridging::VlanId::parse("10x").error().expected);
}

TEST(ValueType, ReadsNoEntityFromText) {
    EXPECT_EQ(readAs<Ptr<Fan>>("left"),
              "0: a Pelo::Ptr<Cooling::Fan>, which cannot be given as text");
}

} // namespace
