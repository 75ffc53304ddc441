// Paths through entities of which some are constant, null, or without fields.

#include "inspect/Found.h"

#include "commands/OperationCall.h"
#include "inspect/Inspected.h"
#include "qor/Entity.h"
#include "qor/HashMap2018.h"
#include "qor/Inspection.h"
#include "qor/TypeBuilder.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace VpAgent {
namespace {

/// A node that offers no fields.
class Leaf final : public Pelo::Node {};

/// A room with doors to other rooms.
class Room final : public Qor::Entity {
public:
    using Shelves = Qor::HashMap2018<Pelo::String, Pelo::Ptr<Room>>;

    explicit Room(Pelo::String const& name) : Entity(name) {}

    Pelo::Ptr<Room> const& door() const { return open; }
    Pelo::Ptr<Room const> const& window() const { return glass; }
    Pelo::Ptr<Leaf> const& plant() const { return leaf; }
    Shelves const& shelf() const { return shelves; }
    void paint() { ++coats; }
    U32 coatCount() const { return coats; }

    static Qor::TypeData const& typeTable() {
        static Qor::TypeData const table = Qor::TypeBuilder<Room>("House::Room")
                                               .attribute(154, "nameString", &Room::nameString)
                                               .attribute(258, "door", &Room::door)
                                               .attribute(259, "window", &Room::window)
                                               .attribute(260, "plant", &Room::plant)
                                               .collection(261, "shelf", "label", &Room::shelf)
                                               .operation(262, "paint", &Room::paint)
                                               .operation(263, "coatCount", &Room::coatCount)
                                               .build();
        return table;
    }
    Qor::TypeData const* typeData() const override { return &typeTable(); }

    Pelo::Ptr<Room> open;
    Pelo::Ptr<Room const> glass;
    Pelo::Ptr<Leaf> leaf;
    Shelves shelves;
    U32 coats = 0;
};

/// A hall with a door to the kitchen and a window to the garden, which has a door to the shed; on
/// the hall's shelf stands a box.
class FoundTest : public testing::Test {
protected:
    FoundTest() {
        hall->open = kitchen;
        garden->open = shed;
        garden->shelves.newMember("pot", shed);
        hall->glass = garden;
        hall->shelves.newMember("box", box);
        hall->shelves.newMember("", nullptr);
        hall->leaf = Pelo::newNode<Leaf>();
    }

    Found at(std::string_view path) const {
        Word const word{path, path, 0};
        Found found = Found::entity(Qor::GenericValue::of(hall));
        for (Step const& step : pathSteps(word)) {
            found = found.next(step, word);
        }
        return found;
    }
    static auto resultOf(Reply const& reply) { return std::get<CallReply>(reply.content).result; }
    std::string refusalAt(std::string_view path) const {
        try {
            at(path);
        } catch (Refusal const& refusal) {
            return std::to_string(refusal.place()->at) + ": " + refusal.what();
        }
        return "none";
    }

    Pelo::Ptr<Room> const hall = Pelo::newNode<Room>("hall");
    Pelo::Ptr<Room> const kitchen = Pelo::newNode<Room>("kitchen");
    Pelo::Ptr<Room> const garden = Pelo::newNode<Room>("garden");
    Pelo::Ptr<Room> const shed = Pelo::newNode<Room>("shed");
    Pelo::Ptr<Room> const box = Pelo::newNode<Room>("box");
};

TEST_F(FoundTest, FollowsAttributesAndMembers) {
    EXPECT_EQ(at("door").node(), kitchen.get());
    EXPECT_TRUE(at("door").isEntity());
    EXPECT_EQ(at("shelf/box").node(), box.get());
    EXPECT_EQ(at("door/nameString").value(), Qor::GenericValue::of("kitchen"));
    Found const shelf = at("shelf");
    EXPECT_EQ(shelf.node(), hall.get());
    EXPECT_EQ(shelf.collection(), Room::typeTable().fieldByName("shelf"));
    EXPECT_FALSE(shelf.isEntity());
}

TEST_F(FoundTest, KeepsConstantWhatIsBehindAPointerToAConstant) {
    EXPECT_FALSE(at("door").constant());
    EXPECT_EQ(&at("door").mutableNode(), kitchen.get());
    EXPECT_FALSE(at("shelf/box").constant());
    EXPECT_TRUE(at("window").constant());
    EXPECT_TRUE(at("window/door").constant());
    EXPECT_TRUE(at("window/shelf").constant());
    EXPECT_TRUE(at("window/shelf/pot").constant());
    EXPECT_TRUE(Found::entity(Qor::GenericValue::of(Pelo::Ptr<Room const>(hall))).constant());
}

TEST_F(FoundTest, LetsCallOnlyWhatChangesNothingOfAConstant) {
    Word const paint{"paint", "paint", 12};
    Word const count{"coatCount", "coatCount", 12};
    callOperation(at("door"), paint, {});
    EXPECT_EQ(std::get<U64>(resultOf(callOperation(at("door"), count, {}))), 1u);
    for (char const* const path : {"window", "window/door", "window/shelf/pot"}) {
        EXPECT_EQ(std::get<U64>(resultOf(callOperation(at(path), count, {}))), 0u);
        try {
            callOperation(at(path), paint, {});
            FAIL() << path << " has been painted";
        } catch (Refusal const& refusal) {
            EXPECT_STREQ(refusal.what(), "\"paint\" was refused: House::Room.paint: call would "
                                         "change a constant entity");
            EXPECT_EQ(refusal.place(), (Place{12, 5}));
        }
    }
    EXPECT_EQ(garden->coats + shed->coats, 0u);
}

TEST_F(FoundTest, RefusesNullPointers) {
    EXPECT_EQ(refusalAt("door/door"), "5: \"door\" is a null pointer, expected a " +
                                          Room::typeTable().fieldByName("door")->type->name() +
                                          " that points to an entity");
    EXPECT_EQ(refusalAt("shelf/"), "6: \"\" is a null pointer, expected a " +
                                       Room::typeTable().fieldByName("shelf")->type->name() +
                                       " that points to an entity");
    EXPECT_EQ(Found::entity(Qor::GenericValue::of(Pelo::Ptr<Room>())).node(), nullptr);
}

TEST_F(FoundTest, RefusesWhatIsNotThereWithWhatIs) {
    EXPECT_EQ(refusalAt("door/floor"), "5: House::Room has no field \"floor\", expected "
                                       "nameString, door, window, plant or shelf");
    EXPECT_EQ(refusalAt("paint"), "0: \"paint\" is an operation, which 'call' calls, expected "
                                  "nameString, door, window, plant or shelf");
    EXPECT_EQ(refusalAt("shelf/cup"), "6: no key \"cup\" in shelf, expected box or ");
    EXPECT_EQ(refusalAt("door/shelf/cup"),
              "11: no key \"cup\" in shelf, expected a key, but there is none");
    EXPECT_EQ(refusalAt("nameString/door"),
              "11: \"door\" follows a value, expected the end of the path");
    EXPECT_NE(refusalAt("plant/door").find(" has no field \"door\", expected the end of the path"),
              std::string::npos);
}

TEST_F(FoundTest, CountsTheKeysThatAreTooManyToList) {
    for (int number = 0; number < 21; ++number) {
        kitchen->shelves.newMember(Pelo::String(std::to_string(number)), box);
    }
    EXPECT_EQ(refusalAt("door/shelf/cup"),
              "11: no key \"cup\" in shelf, expected 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, "
              "14, 15, 16, 17, 18, 19 or one of 1 more");
}

TEST_F(FoundTest, ShowsNoControlCharacterToPeople) {
    auto const bell = Pelo::newNode<Room>("bell\x07");
    bell->shelves.newMember("\x1b[2J/", box);
    std::string const text =
        inspectedText(InspectedPath{"\x1b", Found::entity(Qor::GenericValue::of(bell))});
    EXPECT_EQ(text.find_first_of("\x07\x1b"), std::string::npos);
    EXPECT_NE(text.find("nameString  Pelo::String"), std::string::npos);
    EXPECT_NE(text.find("bell\\x07"), std::string::npos);
    EXPECT_NE(text.find("\\x1B[2J/ = House::Room \"box\""), std::string::npos);
    hall->open = bell;
    EXPECT_EQ(refusalAt("door/shelf/cup"), "11: no key \"cup\" in shelf, expected \\x1B[2J%2F");
}

TEST_F(FoundTest, ShowsAnEntityWithoutFields) {
    std::string text;
    JsonWriter json(text);
    writeInspected(json, InspectedPath{"plant", at("plant")});
    EXPECT_NE(text.find(R"("constant": false, "attributes": [], "collections": [], )"
                        R"("operations": []})"),
              std::string::npos)
        << text;
}

} // namespace
} // namespace VpAgent
