// Generic access to the types of the unit, and their module.

#include "VornicL3Shared/multicast/Multicast.h"
#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/Vports.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"
#include "qor/TypeModule.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace VornicL3;
using Devbus::FapId;
using Interface::IntfSet;
using Qor::GenericValue;
using Qor::inspectOperation;
using Qor::OpCode;
using Test::fap;
using Test::intfs;
using Test::Listener;
using Test::SampleApi;
using Test::textOf;
using Notes = std::vector<std::string>;

constexpr OpCode everyCode[] = {OpCode::get,   OpCode::lookup,  OpCode::set,
                                OpCode::has,   OpCode::del,     OpCode::delAll,
                                OpCode::count, OpCode::iterate, OpCode::call};

/// The codes that the table lists for a field.
std::string codesOf(Qor::TypeData const& type, Pelo::FieldId number) {
    std::string codes;
    for (OpCode const code : everyCode) {
        if (type.fieldByNumber(number)->access(code) != nullptr) {
            codes += (codes.empty() ? "" : " ") + stringValue(code);
        }
    }
    return codes;
}

/// An entity of each type, the database bound to the sets and a sample service installed.
class MulticastTable : public testing::Test {
protected:
    MulticastTable() { holder->l3McastGroupApiIs(api); }

    template <class T> T get(Pelo::Node& node, Pelo::FieldId field) {
        return inspectOperation(node, field, OpCode::get).as<T>();
    }
    Notes take() { return std::exchange(notes, {}); }

    Notes notes;
    Pelo::Ptr<L3McastGroupApi> const api = Pelo::newNode<SampleApi>(notes);
    Pelo::Ptr<NonUcastHigigIntfs> const higig = nonUcastHigigIntfsFactory("higig");
    Pelo::Ptr<BumAllowedBackplaneIntf> const backplane =
        bumAllowedBackplaneIntfFactory("backplane");
    Pelo::Ptr<L3IpmcLocalDb> const db = l3IpmcLocalDbFactory(backplane, higig);
    Pelo::Ptr<L3McastGroupApiHolder> const holder = l3McastGroupApiHolderFactory("holder");
};

TEST_F(MulticastTable, IsThatOfTheModuleAtItsIndex) {
    Qor::TypeModule const* const module = Qor::TypeModule::find("L3McastGroupApi");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(module->types().size(), 5u);
    EXPECT_EQ(module->indexOf(*higig->typeData()), 0u);
    EXPECT_EQ(module->indexOf(*backplane->typeData()), 1u);
    EXPECT_EQ(module->indexOf(*db->typeData()), 2u);
    EXPECT_EQ(module->indexOf(*api->typeData()), 3u);
    EXPECT_EQ(module->indexOf(*holder->typeData()), 4u);
}

TEST_F(MulticastTable, IsFoundByName) {
    EXPECT_EQ(Qor::TypeData::find("VornicL3::NonUcastHigigIntfs"),
              &NonUcastHigigIntfs::typeTable());
    EXPECT_EQ(Qor::TypeData::find("L3McastGroupApi"), &L3McastGroupApi::typeTable());
}

TEST_F(MulticastTable, SaysNumberNameAndTypeOfEveryField) {
    EXPECT_EQ(textOf(*higig->typeData()),
              "VornicL3::NonUcastHigigIntfs(name: Pelo::String)\n"
              "  the Higig interfaces that carry non-unicast traffic, chip by chip\n"
              "  154  nameString: Pelo::String (read-only)\n"
              "       the entity's name\n"
              "  258  higigIntfs[fapId: Devbus::FapId]: Interface::IntfSet\n"
              "       the interfaces, by forwarding chip\n"
              "  259  path: Pelo::String (read-only)\n"
              "       where the entity is published\n");
    EXPECT_EQ(textOf(*backplane->typeData()),
              "VornicL3::BumAllowedBackplaneIntf(name: Pelo::String)\n"
              "  the backplane interfaces that broadcast, unknown-unicast and multicast may use\n"
              "  154  nameString: Pelo::String (read-only)\n"
              "       the entity's name\n"
              "  258  intfs: Interface::IntfSet\n"
              "       the interfaces that are allowed\n"
              "  259  path: Pelo::String (read-only)\n"
              "       where the entity is published\n");
    EXPECT_EQ(textOf(*db->typeData()),
              "VornicL3::L3IpmcLocalDb(allowedBackplaneIntf: Pelo::Ptr<VornicL3::"
              "BumAllowedBackplaneIntf const>, hwHigigIntfs: Pelo::Ptr<VornicL3::"
              "NonUcastHigigIntfs>)\n"
              "  the local IP multicast database, which binds the two interface sets\n"
              "  130  allowedBackplaneIntf: Pelo::Ptr<VornicL3::BumAllowedBackplaneIntf const> "
              "(read-only)\n"
              "       the backplane interfaces that are allowed, not to be changed from here\n"
              "  131  hwHigigIntfs: Pelo::Ptr<VornicL3::NonUcastHigigIntfs> (read-only)\n"
              "       the Higig interfaces, chip by chip\n");
    EXPECT_EQ(textOf(*api->typeData()),
              "VornicL3::L3McastGroupApi\n"
              "  the service that recomputes the L2 bitmaps of multicast groups\n"
              "  130  updateL2Bitmaps(fapId: Devbus::FapId, post: bool)\n"
              "       recomputes them for one forwarding chip\n"
              "  131  updateAllL2Bitmaps()\n"
              "       recomputes them for all chips\n");
    EXPECT_EQ(textOf(*holder->typeData()),
              "VornicL3::L3McastGroupApiHolder(name: Pelo::String)\n"
              "  where the installed multicast group service is found\n"
              "  154  nameString: Pelo::String (read-only)\n"
              "       the entity's name\n"
              "  258  l3McastGroupApi: Pelo::Ptr<VornicL3::L3McastGroupApi>\n"
              "       the installed service; null while there is none\n"
              "  259  sharedEntityName: Pelo::String (read-only)\n"
              "       the name under which the entity is shared\n");
}

TEST_F(MulticastTable, TakesTheseOperationCodes) {
    EXPECT_EQ(codesOf(*higig->typeData(), 258), "get lookup set has del delAll count iterate");
    EXPECT_EQ(codesOf(*backplane->typeData(), 258), "get set");
    EXPECT_EQ(codesOf(*db->typeData(), 130), "get");
    EXPECT_EQ(codesOf(*db->typeData(), 131), "get");
    EXPECT_EQ(codesOf(*api->typeData(), 130), "call");
    EXPECT_EQ(codesOf(*api->typeData(), 131), "call");
    EXPECT_EQ(codesOf(*holder->typeData(), 258), "get set");
    for (Pelo::Node const* const node : {static_cast<Pelo::Node const*>(higig.get()),
                                         static_cast<Pelo::Node const*>(backplane.get()),
                                         static_cast<Pelo::Node const*>(holder.get())}) {
        EXPECT_EQ(codesOf(*node->typeData(), 154), "get");
        EXPECT_EQ(codesOf(*node->typeData(), 259), "get");
    }
}

TEST_F(MulticastTable, ReadsNamesAndConstants) {
    EXPECT_EQ(get<Pelo::String>(*higig, 154), "higig");
    EXPECT_EQ(get<Pelo::String>(*higig, 259), "l3/mcast/higig/hwStatus");
    EXPECT_EQ(get<Pelo::String>(*backplane, 154), "backplane");
    EXPECT_EQ(get<Pelo::String>(*backplane, 259), "l3/mcast/higig/allowedBackplaneIntf");
    EXPECT_EQ(get<Pelo::String>(*holder, 154), "holder");
    EXPECT_EQ(get<Pelo::String>(*holder, 259), "l3McastGroupApi");
}

TEST_F(MulticastTable, ReadsTheSetsOfChips) {
    higig->higigIntfsIs(fap(1), intfs("a b"));
    GenericValue const one = GenericValue::of(fap(1));
    GenericValue const two = GenericValue::of(fap(2));
    EXPECT_EQ(inspectOperation(*higig, 258, OpCode::get, {one}), GenericValue::of(intfs("a b")));
    EXPECT_EQ(inspectOperation(*higig, 258, OpCode::get, {two}), GenericValue::of(IntfSet()));
    EXPECT_EQ(inspectOperation(*higig, 258, OpCode::lookup, {one}), GenericValue::of(intfs("a b")));
    EXPECT_TRUE(inspectOperation(*higig, 258, OpCode::lookup, {two}).empty());
    EXPECT_TRUE(inspectOperation(*higig, 258, OpCode::has, {one}).as<bool>());
    EXPECT_FALSE(inspectOperation(*higig, 258, OpCode::has, {two}).as<bool>());
    EXPECT_EQ(inspectOperation(*higig, 258, OpCode::count).as<U32>(), 1u);
    auto it = Qor::collectionIterator(*higig, 258);
    EXPECT_EQ(it.key().text() + " " + it.object().text(), "1 [a, b]");
}

TEST_F(MulticastTable, ChangesTheSetsOfChipsThroughTheMutators) {
    Listener listener(*higig);
    GenericValue const one = GenericValue::of(fap(1));
    GenericValue const set = GenericValue::of(intfs("a"));
    inspectOperation(*higig, 258, OpCode::set, {one, set});
    inspectOperation(*higig, 258, OpCode::set, {one, set});
    EXPECT_EQ(inspectOperation(*higig, 258, OpCode::del, {one}), set);
    EXPECT_EQ(inspectOperation(*higig, 258, OpCode::del, {one}), GenericValue::of(IntfSet()));
    EXPECT_EQ(listener.fields(), (std::vector<Pelo::FieldId>{258, 258}));
    higig->higigIntfsIs(fap(2), intfs(""));
    inspectOperation(*higig, 258, OpCode::delAll);
    EXPECT_EQ(listener.fields(), (std::vector<Pelo::FieldId>{258, 258}));
    EXPECT_EQ(higig->higigIntfs().memberCount(), 0u);
}

TEST_F(MulticastTable, ReadsAndReplacesTheBackplaneSet) {
    Listener listener(*backplane);
    inspectOperation(*backplane, 258, OpCode::set, {GenericValue::of(intfs("a"))});
    inspectOperation(*backplane, 258, OpCode::set, {GenericValue::of(intfs("a"))});
    EXPECT_EQ(get<IntfSet>(*backplane, 258), intfs("a"));
    EXPECT_EQ(listener.fields(), std::vector<Pelo::FieldId>{258});
}

TEST_F(MulticastTable, ReadsAndWritesSetsAndChipsAsTexts) {
    auto const set = Qor::valueTypeOf<IntfSet>().parse("[Ethernet2,Ethernet1]");
    ASSERT_TRUE(set);
    EXPECT_EQ(*set, GenericValue::of(intfs("Ethernet1 Ethernet2")));
    EXPECT_EQ(set->text(), "[Ethernet1, Ethernet2]");
    EXPECT_FALSE(Qor::valueTypeOf<IntfSet>().parse("Ethernet1"));
    EXPECT_EQ(*Qor::valueTypeOf<FapId>().parse("255"), GenericValue::of(fap(255)));
    EXPECT_FALSE(Qor::valueTypeOf<FapId>().parse("256"));
}

TEST_F(MulticastTable, RefusesToChangeWhatCanOnlyBeRead) {
    GenericValue const text = GenericValue::of("other");
    for (Pelo::FieldId const field : {154u, 259u}) {
        EXPECT_THROW(inspectOperation(*higig, field, OpCode::set, {text}),
                     Qor::ReadOnlyAttributeException);
        EXPECT_THROW(inspectOperation(*backplane, field, OpCode::set, {text}),
                     Qor::ReadOnlyAttributeException);
        EXPECT_THROW(inspectOperation(*holder, field, OpCode::set, {text}),
                     Qor::ReadOnlyAttributeException);
    }
    EXPECT_THROW(inspectOperation(*db, 130, OpCode::set, {GenericValue::of(backplane)}),
                 Qor::ReadOnlyAttributeException);
    EXPECT_THROW(inspectOperation(*db, 131, OpCode::set, {GenericValue::of(higig)}),
                 Qor::ReadOnlyAttributeException);
    EXPECT_EQ(db->allowedBackplaneIntf(), backplane.get());
    EXPECT_EQ(db->hwHigigIntfs(), higig);
}

TEST_F(MulticastTable, KeepsTheBackplaneSetOfTheDatabaseConstant) {
    GenericValue const value = inspectOperation(*db, 130, OpCode::get);
    EXPECT_EQ(value.node(), backplane.get());
    EXPECT_EQ(value.mutableNode(), nullptr);
    EXPECT_THROW(value.as<Pelo::Ptr<BumAllowedBackplaneIntf>>(), Qor::ArgumentTypeException);
    EXPECT_THROW(inspectOperation(*value.node(), 258, OpCode::set, {GenericValue::of(intfs("a"))}),
                 Qor::ConstEntityException);
    EXPECT_EQ(backplane->intfs(), IntfSet());
    EXPECT_EQ(inspectOperation(*db, 131, OpCode::get).mutableNode(), higig.get());
}

TEST_F(MulticastTable, ReadsNullWhereTheDatabaseHasNone) {
    auto const empty = l3IpmcLocalDbFactory(nullptr, nullptr);
    EXPECT_EQ(get<Pelo::Ptr<BumAllowedBackplaneIntf const>>(*empty, 130), nullptr);
    EXPECT_EQ(get<Pelo::Ptr<NonUcastHigigIntfs>>(*empty, 131), nullptr);
    EXPECT_EQ(inspectOperation(*empty, 131, OpCode::get).text(), "null");
}

TEST_F(MulticastTable, CallsTheServiceByNumber) {
    EXPECT_TRUE(inspectOperation(*api, 130, OpCode::call,
                                 {GenericValue::of(fap(3)), GenericValue::of(true)})
                    .empty());
    inspectOperation(*api, 130, OpCode::call, {GenericValue::of(fap(4)), GenericValue::of(false)});
    EXPECT_TRUE(inspectOperation(*api, 131, OpCode::call).empty());
    EXPECT_EQ(take(), (Notes{"api update 3 post", "api update 4", "api update all"}));
}

TEST_F(MulticastTable, CallsTheServiceByName) {
    std::string_view const arguments[] = {"7", "true"};
    EXPECT_FALSE(Qor::callByName(*api, "updateL2Bitmaps", arguments).refusal);
    EXPECT_FALSE(Qor::callByName(*api, "updateAllL2Bitmaps", {}).refusal);
    std::string_view const noChip[] = {"256", "true"};
    auto const refused = Qor::callByName(*api, "updateL2Bitmaps", noChip);
    ASSERT_TRUE(refused.refusal);
    EXPECT_EQ(refused.refusal->argument, 0u);
    EXPECT_EQ(take(), (Notes{"api update 7 post", "api update all"}));
}

TEST_F(MulticastTable, RefusesEveryOtherCodeOfTheServiceAndCallsNothing) {
    GenericValue const chip = GenericValue::of(fap(3));
    GenericValue const post = GenericValue::of(true);
    for (OpCode const code : everyCode) {
        if (code == OpCode::call) {
            continue;
        }
        EXPECT_THROW(inspectOperation(*api, 130, code, {chip, post}),
                     Qor::OperationRefusedException)
            << stringValue(code);
        EXPECT_THROW(inspectOperation(*api, 131, code), Qor::OperationRefusedException)
            << stringValue(code);
    }
    EXPECT_THROW(inspectOperation(*api, 130, static_cast<OpCode>(99), {chip, post}),
                 Qor::OperationRefusedException);
    EXPECT_EQ(take(), Notes{});
}

TEST_F(MulticastTable, KnowsNoOtherFieldOfTheService) {
    for (Pelo::FieldId const field : {0u, 129u, 132u, 154u, 258u}) {
        EXPECT_THROW(inspectOperation(*api, field, OpCode::call), Qor::UnknownFieldException);
    }
    EXPECT_EQ(take(), Notes{});
}

TEST_F(MulticastTable, RefusesACallOfTheServiceWithOtherArguments) {
    GenericValue const chip = GenericValue::of(fap(3));
    EXPECT_THROW(inspectOperation(*api, 130, OpCode::call, {chip}), Qor::ArgumentCountException);
    EXPECT_THROW(inspectOperation(*api, 130, OpCode::call, {chip, chip}),
                 Qor::ArgumentTypeException);
    EXPECT_THROW(inspectOperation(*api, 131, OpCode::call, {chip}), Qor::ArgumentCountException);
    Pelo::Node const& constant = *api;
    EXPECT_THROW(inspectOperation(constant, 131, OpCode::call), Qor::ConstEntityException);
    EXPECT_EQ(take(), Notes{});
}

TEST_F(MulticastTable, ReadsAndReplacesTheInstalledService) {
    EXPECT_EQ(get<Pelo::Ptr<L3McastGroupApi>>(*holder, 258), api);
    Listener listener(*holder);
    Pelo::Ptr<L3McastGroupApi> const another = Pelo::newNode<SampleApi>(notes, "another");
    inspectOperation(*holder, 258, OpCode::set, {GenericValue::of(another)});
    EXPECT_EQ(holder->l3McastGroupApi(), another);
    inspectOperation(*holder, 258, OpCode::set, {GenericValue::of(another)});
    inspectOperation(*holder, 258, OpCode::set, {GenericValue::of(Pelo::Ptr<L3McastGroupApi>())});
    EXPECT_EQ(holder->l3McastGroupApi(), nullptr);
    EXPECT_EQ(listener.fields(), (std::vector<Pelo::FieldId>{258, 258}));
    EXPECT_THROW(inspectOperation(*holder, 258, OpCode::del), Qor::OperationRefusedException);
}

TEST_F(MulticastTable, BuildsObjectsFromTheirArguments) {
    GenericValue const name = GenericValue::of("built");
    for (char const* const type :
         {"NonUcastHigigIntfs", "BumAllowedBackplaneIntf", "L3McastGroupApiHolder"}) {
        auto const node = Qor::genericIfConstructFromCtorArgs(Qor::TypeData::get(type), {name});
        EXPECT_EQ(node->typeData(), Qor::TypeData::find(type));
        EXPECT_EQ(get<Pelo::String>(*node, 154), "built");
    }
    auto const built = Qor::genericIfConstructFromCtorArgs(
        L3IpmcLocalDb::typeTable(), {GenericValue::of(backplane), GenericValue::of(higig)});
    auto const& builtDb = dynamic_cast<L3IpmcLocalDb const&>(*built);
    EXPECT_EQ(builtDb.allowedBackplaneIntf(), backplane.get());
    EXPECT_EQ(builtDb.hwHigigIntfs(), higig);
    EXPECT_THROW(Qor::genericIfConstructFromCtorArgs(L3McastGroupApi::typeTable(), {}),
                 Qor::OperationRefusedException);
}

TEST_F(MulticastTable, BuildsADatabaseWithoutSets) {
    auto const built = Qor::genericIfConstructFromCtorArgs(
        L3IpmcLocalDb::typeTable(), {GenericValue::of(Pelo::Ptr<BumAllowedBackplaneIntf const>()),
                                     GenericValue::of(Pelo::Ptr<NonUcastHigigIntfs>())});
    auto const& builtDb = dynamic_cast<L3IpmcLocalDb const&>(*built);
    EXPECT_EQ(builtDb.allowedBackplaneIntf(), nullptr);
    EXPECT_EQ(builtDb.hwHigigIntfs(), nullptr);
}

} // namespace
