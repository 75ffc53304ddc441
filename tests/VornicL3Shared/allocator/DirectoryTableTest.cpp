// Generic access to the directories.

#include "VornicL3Shared/support/Directories.h"
#include "VornicL3Shared/support/Listener.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Qor::GenericValue;
using Qor::OpCode;
using Test::ConfigDirectory;
using Test::Listener;
using Test::StatusDirectory;

struct TableSideName {
    template <class Side> static std::string GetName(int) { return Side::name; }
};

template <class S> class DirectoryTable : public testing::Test {
protected:
    using Record = typename S::Record;
    using RecordPtr = Pelo::Ptr<Record>;

    GenericValue inspect(OpCode code, Qor::Arguments arguments = {}) {
        return Qor::inspectOperation(*dir, 131, code, arguments);
    }

    Pelo::Ptr<typename S::Dir> const dir = S::factory("directory");
    RecordPtr const one = Pelo::newNode<Record>("bgp");
    GenericValue const bgp = GenericValue::of("bgp");
    GenericValue const mlag = GenericValue::of("mlag");
};
using Sides = testing::Types<ConfigDirectory, StatusDirectory>;
TYPED_TEST_SUITE(DirectoryTable, Sides, TableSideName);

TYPED_TEST(DirectoryTable, ReadsItsName) {
    EXPECT_EQ(Qor::inspectOperation(*this->dir, 130, OpCode::get).template as<Pelo::String>(),
              "directory");
    EXPECT_THROW(Qor::inspectOperation(*this->dir, 130, OpCode::set, {this->bgp}),
                 Qor::ReadOnlyAttributeException);
}

TYPED_TEST(DirectoryTable, ReadsEntries) {
    using Held = typename TestFixture::RecordPtr;
    TypeParam::is(*this->dir, "bgp", this->one);
    EXPECT_EQ(this->inspect(OpCode::count).template as<U32>(), 1u);
    EXPECT_TRUE(this->inspect(OpCode::has, {this->bgp}).template as<bool>());
    EXPECT_FALSE(this->inspect(OpCode::has, {this->mlag}).template as<bool>());
    EXPECT_EQ(this->inspect(OpCode::get, {this->bgp}).template as<Held>(), this->one);
    EXPECT_EQ(this->inspect(OpCode::get, {this->mlag}).template as<Held>(), nullptr);
}

TYPED_TEST(DirectoryTable, ChangesEntriesThroughTheMutators) {
    using Held = typename TestFixture::RecordPtr;
    Listener listener(*this->dir);
    GenericValue const value = GenericValue::of(this->one);
    this->inspect(OpCode::set, {this->bgp, value});
    this->inspect(OpCode::set, {this->bgp, value});
    this->inspect(OpCode::set, {this->mlag, value});
    this->inspect(OpCode::set, {this->mlag, GenericValue::of(Held())});
    EXPECT_EQ(this->inspect(OpCode::del, {this->bgp}).template as<Held>(), this->one);
    EXPECT_EQ(this->inspect(OpCode::del, {this->bgp}).template as<Held>(), nullptr);
    EXPECT_EQ(listener.fields(), (std::vector<Pelo::FieldId>{131, 131, 131, 131}));
    this->inspect(OpCode::set, {this->bgp, value});
    this->inspect(OpCode::delAll);
    EXPECT_EQ(TypeParam::entries(*this->dir).memberCount(), 0u);
    EXPECT_EQ(listener.fields(), (std::vector<Pelo::FieldId>{131, 131})); // one set, one removal
}

TYPED_TEST(DirectoryTable, RefusesToChangeAConstantDirectory) {
    TypeParam::is(*this->dir, "bgp", this->one);
    Listener listener(*this->dir);
    auto const& constant = std::as_const(*this->dir);
    auto const onConstant = [&](OpCode code, std::vector<GenericValue> const& arguments) {
        return Qor::inspectOperation(constant, 131, code, arguments);
    };
    GenericValue const none = GenericValue::of(typename TestFixture::RecordPtr());
    EXPECT_THROW(onConstant(OpCode::set, {this->bgp, none}), Qor::ConstEntityException);
    EXPECT_THROW(onConstant(OpCode::set, {this->mlag, GenericValue::of(this->one)}),
                 Qor::ConstEntityException);
    EXPECT_THROW(onConstant(OpCode::del, {this->bgp}), Qor::ConstEntityException);
    EXPECT_THROW(onConstant(OpCode::delAll, {}), Qor::ConstEntityException);
    EXPECT_THROW(Qor::collectionIterator(constant, 131).del(), Qor::ConstEntityException);
    EXPECT_EQ(listener.fields(), std::vector<Pelo::FieldId>{});
    EXPECT_EQ(onConstant(OpCode::count, {}).template as<U32>(), 1u);
    EXPECT_TRUE(onConstant(OpCode::has, {this->bgp}).template as<bool>());
}

TYPED_TEST(DirectoryTable, WalksEntriesAndDeletesTheCurrentOne) {
    TypeParam::is(*this->dir, "bgp", this->one);
    TypeParam::is(*this->dir, "mlag", this->one);
    std::string visited;
    for (auto it = Qor::collectionIterator(*this->dir, 131); it; it.advance()) {
        visited += it.key().text() + " ";
        it.del();
    }
    EXPECT_EQ(visited, "bgp mlag ");
    EXPECT_EQ(TypeParam::entries(*this->dir).memberCount(), 0u);
}

TYPED_TEST(DirectoryTable, BuildsADirectoryFromItsName) {
    auto const node =
        Qor::genericIfConstructFromCtorArgs(*this->dir->typeData(), {GenericValue::of("requests")});
    auto const* const built = dynamic_cast<typename TypeParam::Dir const*>(node.get());
    ASSERT_NE(built, nullptr);
    EXPECT_EQ(built->name(), "requests");
    EXPECT_EQ(TypeParam::entries(*built).memberCount(), 0u);
}

} // namespace
