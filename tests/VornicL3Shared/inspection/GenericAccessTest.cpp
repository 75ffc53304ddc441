// What generic access does to every type: it builds objects, reads what they hold, and changes it.

#include "VornicL3Shared/inspection/EveryType.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"

#include <utility>

namespace Test {
namespace {

using Qor::GenericValue;
using Qor::OpCode;
using Values = std::vector<GenericValue>;

/// An object of its own, built from its arguments. What is built, changes no object of the agent,
/// but for the state machine and the allocators, which serve the agent's clients anew.
class GenericAccess : public EveryType {
protected:
    Pelo::Ptr<Pelo::Node> build() {
        return Qor::genericIfConstructFromCtorArgs(type(),
                                                   samples.of(type().constructor()->arguments));
    }
    static GenericValue inspect(Pelo::Node& node, Qor::FieldData const& field, OpCode code,
                                Values const& arguments = {}) {
        return Qor::inspectOperation(node, field.number, code, arguments);
    }

    /// Fields that `set` writes as they are read; those that build an entity are not among them.
    std::vector<Qor::FieldData const*> writable(Qor::FieldKind kind) const {
        std::vector<Qor::FieldData const*> fields;
        for (Qor::FieldData const& field : type().fields()) {
            Qor::FieldAccess const* const set = field.access(OpCode::set);
            if (field.kind == kind && set != nullptr &&
                std::string_view(set->arguments.back().name) == "value") {
                fields.push_back(&field);
            }
        }
        return fields;
    }

    /// "key=value key=value", both by a walk and by asking for each key of it.
    static std::string members(Pelo::Node const& node, Qor::FieldData const& field) {
        std::string walked;
        std::string asked;
        U32 count = 0;
        for (auto it = Qor::collectionIterator(node, field.number); it; it.advance(), ++count) {
            Values const key{it.key()};
            walked += it.key().text() + "=" + it.object().text() + " ";
            EXPECT_TRUE(Qor::inspectOperation(node, field.number, OpCode::has, key).as<bool>());
            EXPECT_EQ(Qor::inspectOperation(node, field.number, OpCode::lookup, key), it.object());
            asked += it.key().text() + "=" +
                     Qor::inspectOperation(node, field.number, OpCode::get, key).text() + " ";
        }
        EXPECT_EQ(asked, walked);
        EXPECT_EQ(Qor::inspectOperation(node, field.number, OpCode::count).as<U32>(), count);
        return walked;
    }
};

TEST_P(GenericAccess, BuildsAnObjectThatHoldsItsArguments) {
    if (type().constructor() == nullptr) {
        EXPECT_STREQ(type().name(), "VornicL3::L3McastGroupApi"); // the one abstract type
        EXPECT_THROW(Qor::genericIfConstructFromCtorArgs(type(), {}),
                     Qor::OperationRefusedException);
        return;
    }
    auto const& declared = type().constructor()->arguments;
    Values const given = samples.of(declared);
    auto const built = Qor::genericIfConstructFromCtorArgs(type(), given);
    EXPECT_EQ(built->typeData(), &type());
    std::size_t held = 0;
    for (std::size_t at = 0; at < declared.size(); ++at) {
        Qor::FieldData const* field = type().fieldByName(declared[at].name);
        if (field == nullptr && std::string_view(declared[at].name) == "name") {
            field = type().fieldByName("nameString");
        }
        if (field == nullptr) {
            continue;
        }
        GenericValue const read = inspect(*built, *field, OpCode::get);
        EXPECT_EQ(read.text(), given[at].text()) << declared[at].name;
        EXPECT_EQ(read.node(), given[at].node()) << declared[at].name;
        ++held;
    }
    EXPECT_EQ(held, declared.size());
}

TEST_P(GenericAccess, ReadsAsMuchOfAConstant) {
    auto const object = samples.object(type());
    for (Qor::FieldData const& field : type().fields()) {
        if (field.kind == Qor::FieldKind::attribute) {
            EXPECT_EQ(inspect(*object, field, OpCode::get),
                      Qor::inspectOperation(std::as_const(*object), field.number, OpCode::get));
        } else if (field.kind == Qor::FieldKind::collection) {
            members(*object, field);
            for (GenericValue const& absent : samples.of(*field.key.type)) {
                EXPECT_EQ(inspect(*object, field, OpCode::has, {absent}).as<bool>(), false);
                EXPECT_TRUE(inspect(*object, field, OpCode::lookup, {absent}).empty());
            }
        }
    }
}

TEST_P(GenericAccess, SetsAttributes) {
    for (Qor::FieldData const* const field : writable(Qor::FieldKind::attribute)) {
        auto const object = build();
        for (GenericValue const& value : samples.of(*field->type)) {
            EXPECT_TRUE(inspect(*object, *field, OpCode::set, {value}).empty());
            EXPECT_EQ(inspect(*object, *field, OpCode::get), value) << field->name;
        }
        for (Qor::FieldData const& other : type().fields()) {
            if (other.number != field->number && other.kind == Qor::FieldKind::attribute) {
                EXPECT_EQ(inspect(*object, other, OpCode::get),
                          inspect(*build(), other, OpCode::get))
                    << other.name << " when " << field->name << " is set";
            }
        }
    }
}

TEST_P(GenericAccess, ChangesCollections) {
    for (Qor::FieldData const* const field : writable(Qor::FieldKind::collection)) {
        auto const object = build();
        Values const keys = samples.of(*field->key.type);
        Values const values = samples.of(*field->type);
        auto const entry = [&](std::size_t key, std::size_t value) {
            return keys[key].text() + "=" + values[value].text() + " ";
        };
        GenericValue const none = inspect(*object, *field, OpCode::get, {keys[0]});

        inspect(*object, *field, OpCode::set, {keys[1], values[0]});
        inspect(*object, *field, OpCode::set, {keys[0], values[0]});
        EXPECT_EQ(members(*object, *field), entry(1, 0) + entry(0, 0));
        inspect(*object, *field, OpCode::set, {keys[1], values[1]});
        EXPECT_EQ(members(*object, *field), entry(1, 1) + entry(0, 0));
        EXPECT_EQ(inspect(*object, *field, OpCode::del, {keys[1]}), values[1]);
        EXPECT_EQ(inspect(*object, *field, OpCode::del, {keys[1]}), none);
        EXPECT_EQ(members(*object, *field), entry(0, 0));
        for (Qor::FieldData const& other : type().fields()) {
            if (other.number != field->number && other.kind == Qor::FieldKind::collection) {
                EXPECT_EQ(members(*object, other), "") << other.name;
            }
        }
        EXPECT_TRUE(inspect(*object, *field, OpCode::delAll).empty());
        EXPECT_EQ(members(*object, *field), "");
    }
}

INSTANTIATE_TEST_SUITE_P(Registered, GenericAccess, testing::ValuesIn(registeredTypes()),
                         TypeName());

} // namespace
} // namespace Test
