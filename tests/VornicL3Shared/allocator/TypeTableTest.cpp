// The inspection tables of the state machine and the allocator reach their accessors.

#include "VornicL3Shared/support/World.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace VornicCentral;
using Qor::Arguments;
using Qor::GenericValue;
using Qor::OpCode;
using Test::World;

/// A running state machine with the client bgp, and its attributes through generic access.
class TypeTable : public testing::Test {
protected:
    TypeTable() {
        world.client("bgp");
        world.start();
    }
    template <class T> T get(Pelo::Node& node, Pelo::FieldId field) {
        return Qor::inspectOperation(node, field, OpCode::get).as<T>();
    }
    GenericValue inspect(Pelo::FieldId field, OpCode code, Arguments arguments = {}) {
        return Qor::inspectOperation(*world.sm, field, code, arguments);
    }

    World world;
};

TEST_F(TypeTable, ReadsTheAttributesOfTheStateMachine) {
    auto& sm = *world.sm;
    EXPECT_EQ(get<Pelo::Ptr<VpReferenceList>>(sm, 130), world.references);
    EXPECT_EQ(get<Pelo::Ptr<VpInvalidReferenceList>>(sm, 131), world.waiting);
    EXPECT_EQ(get<Pelo::Ptr<VpIndexConfigDir const>>(sm, 132), world.configDir.get());
    EXPECT_EQ(get<Pelo::Ptr<VpIndexStatusDir>>(sm, 133), world.statusDir);
    EXPECT_EQ(get<U32>(sm, 134), 16u);
    EXPECT_EQ(get<Pelo::Ptr<VxlanBootStatus>>(sm, 135), world.boot);
    EXPECT_FALSE(get<bool>(sm, 136));
    EXPECT_FALSE(get<bool>(sm, 137));
    EXPECT_EQ(get<Pelo::Ptr<VxlanCapabilities const>>(sm, 138), sm.vxlanCapabilities());
    EXPECT_EQ(get<Pelo::Ptr<Bask::Bitmap>>(sm, 139), sm.vpBitmap());
    EXPECT_TRUE(get<bool>(sm, 155));
}

TEST_F(TypeTable, TellsTheSwitchesOfTheStateMachineApart) {
    world.settings.reallocation = true;
    world.start();
    EXPECT_TRUE(get<bool>(*world.sm, 136));
    EXPECT_FALSE(get<bool>(*world.sm, 137));
}

TEST_F(TypeTable, ReadsTheAttributesOfTheAllocator) {
    auto& allocator = world.allocator("bgp");
    EXPECT_EQ(get<Pelo::Ptr<VpIndexAllocatorDirSm>>(allocator, 130), world.sm);
    EXPECT_EQ(get<Pelo::Ptr<VpIndexConfig const>>(allocator, 131), &world.config("bgp"));
    EXPECT_EQ(get<Pelo::Ptr<VpIndexStatus>>(allocator, 132), &world.status("bgp"));
    EXPECT_EQ(get<Pelo::Ptr<VpReferenceList>>(allocator, 133), world.references);
    EXPECT_FALSE(get<bool>(allocator, 134));
    EXPECT_TRUE(get<bool>(allocator, 135));
}

TEST_F(TypeTable, RefusesToSetWhatTheConstructorFixed) {
    EXPECT_THROW(inspect(134, OpCode::set, {GenericValue::of(U32{32})}),
                 Qor::ReadOnlyAttributeException);
    EXPECT_THROW(inspect(155, OpCode::set, {GenericValue::of(false)}),
                 Qor::ReadOnlyAttributeException);
    EXPECT_EQ(world.sm->vpTableSize(), 16u);
}

TEST_F(TypeTable, BuildsAndDetachesTheBitmap) {
    auto const detached = inspect(139, OpCode::del).as<Pelo::Ptr<Bask::Bitmap>>();
    EXPECT_TRUE(detached->isBitSet(7));
    EXPECT_EQ(world.pool(), "none");

    auto const& set = *world.sm->typeData()->fieldByNumber(139)->access(OpCode::set);
    EXPECT_EQ(std::string(set.arguments[0].name) + " " + set.arguments[1].name + " " +
                  set.arguments[2].name,
              "id size initialBitState");
    GenericValue const initialBitState = *set.arguments[2].type->parse("set");
    auto const built = inspect(
        139, OpCode::set, {GenericValue::of(U64{5}), GenericValue::of(U32{32}), initialBitState});
    EXPECT_EQ(built.as<Pelo::Ptr<Bask::Bitmap>>(), world.sm->vpBitmap());
    EXPECT_EQ(world.pool(), "32: 0-31");
    EXPECT_EQ(world.sm->vpBitmap()->id(), 5u);
}

TEST_F(TypeTable, ReadsAndRemovesAllocators) {
    using AllocatorPtr = Pelo::Ptr<VpIndexAllocator>;
    auto const allocator = world.sm->vpIndexAllocator("bgp");
    GenericValue const bgp = GenericValue::of("bgp");
    EXPECT_EQ(inspect(140, OpCode::count).as<U32>(), 1u);
    EXPECT_TRUE(inspect(140, OpCode::has, {bgp}).as<bool>());
    EXPECT_EQ(inspect(140, OpCode::get, {bgp}).as<AllocatorPtr>(), allocator);
    EXPECT_EQ(Qor::collectionIterator(*world.sm, 140).key(), bgp);
    EXPECT_EQ(inspect(140, OpCode::del, {bgp}).as<AllocatorPtr>(), allocator);
    EXPECT_EQ(inspect(140, OpCode::del, {bgp}).as<AllocatorPtr>(), nullptr);
    EXPECT_FALSE(world.sm->vpIndexAllocatorHas("bgp"));
}

TEST_F(TypeTable, MakesAllocators) {
    inspect(140, OpCode::delAll);
    EXPECT_FALSE(world.sm->vpIndexAllocatorHas("bgp"));
    Pelo::Ptr<VpIndexConfig const> const config = world.configDir->vpIndexConfig("bgp");
    inspect(140, OpCode::set,
            {GenericValue::of(world.sm), GenericValue::of(config),
             GenericValue::of(world.statusDir->vpIndexStatus("bgp")),
             GenericValue::of(world.references), GenericValue::of(false)});
    EXPECT_EQ(world.allocator("bgp").vpIndexConfig(), config);
}

TEST_F(TypeTable, BuildsAStateMachineFromItsArguments) {
    Pelo::Ptr<VpIndexConfigDir const> const configDir = world.configDir;
    auto const node = Qor::genericIfConstructFromCtorArgs(
        *world.sm->typeData(),
        {GenericValue::of(world.references), GenericValue::of(world.waiting),
         GenericValue::of(configDir), GenericValue::of(world.statusDir), GenericValue::of(U32{64}),
         GenericValue::of(world.boot), GenericValue::of(true), GenericValue::of(false),
         GenericValue::of(world.sm->vxlanCapabilities())});
    auto const* const built = dynamic_cast<VpIndexAllocatorDirSm const*>(node.get());
    ASSERT_NE(built, nullptr);
    EXPECT_EQ(built->vpTableSize(), 64u);
    EXPECT_TRUE(built->vpReallocationEnabled());
    EXPECT_FALSE(built->vfiForwarding());
    EXPECT_TRUE(built->vpIndexAllocatorHas("bgp"));
    EXPECT_TRUE(built->nodeFlag(Pelo::NodeFlag::notificationActive));
}

TEST_F(TypeTable, BuildsAnAllocatorFromItsArguments) {
    Pelo::Ptr<VpIndexConfig const> const config = vpIndexConfigFactory("mlag");
    auto const node = Qor::genericIfConstructFromCtorArgs(
        *world.allocator("bgp").typeData(),
        {GenericValue::of(world.sm), GenericValue::of(config),
         GenericValue::of(vpIndexStatusFactory("mlag")), GenericValue::of(world.references),
         GenericValue::of(true)});
    auto const* const built = dynamic_cast<VpIndexAllocator const*>(node.get());
    ASSERT_NE(built, nullptr);
    EXPECT_EQ(built->name(), "mlag");
    EXPECT_TRUE(built->vfiForwarding());
    EXPECT_TRUE(built->initialized());
}

TEST_F(TypeTable, RefusesToBuildAnAllocatorOfNoStateMachine) {
    Pelo::Ptr<VpIndexConfig const> const config = vpIndexConfigFactory("mlag");
    U64 const before = VpIndexAllocator::allocationTracker().live();
    EXPECT_THROW(Qor::genericIfConstructFromCtorArgs(
                     VpIndexAllocator::typeTable(),
                     {GenericValue::of(Pelo::Ptr<VpIndexAllocatorDirSm>()),
                      GenericValue::of(config), GenericValue::of(vpIndexStatusFactory("mlag")),
                      GenericValue::of(world.references), GenericValue::of(true)}),
                 Qor::MutatorArgNullPointerException);
    EXPECT_EQ(VpIndexAllocator::allocationTracker().live(), before);
    EXPECT_FALSE(config->publisher()->hasSubscribers());
}

} // namespace
