// Everything that a subscriber of a directory, or of the Higig interfaces, may do within a
// notification, in every combination (see `support/NotificationPlay.h`), and whatever may happen to
// their collections while they are walked.

#include "VornicL3Shared/NonUcastHigigIntfs.h"
#include "VornicL3Shared/support/Directories.h"
#include "support/CollectionPlay.h"
#include "support/WalkMatrix.h"

#include <gtest/gtest.h>

namespace {

/// One of the directories by numbers; the name of a record tells its number.
template <class D> struct Directory {
    using Entity = typename D::Dir;
    using Key = Pelo::String;
    using Value = Pelo::Ptr<typename D::Record>;
    static constexpr bool tellsFormer = false;
    static constexpr bool emptiesNewcomers = false;

    static Pelo::Ptr<Entity> make() { return D::factory("directory"); }
    static Key key(U32 number) { return Pelo::String(std::to_string(number)); }
    static void set(Entity& directory, U32 number, U32 value) {
        auto const former = D::entry(directory, key(number).data());
        bool const same = former && valueNumber(former) == value;
        D::is(directory, key(number),
              same ? former : Pelo::newNode<typename D::Record>(key(value)));
    }
    static void del(Entity& directory, U32 number) { D::del(directory, key(number)); }
    static void delAll(Entity& directory) { D::delAll(directory); }
    static U32 keyNumber(Key const& given) { return static_cast<U32>(std::stoul(given.data())); }
    static U32 valueNumber(Value const& given) { return keyNumber(given->name()); }
    static auto const& collection(Entity const& directory) { return D::entries(directory); }
};

/// The chips by their numbers; a set tells its number by its size.
struct Chips {
    using Entity = VornicL3::NonUcastHigigIntfs;
    using Key = Devbus::FapId;
    using Value = Interface::IntfSet;
    static constexpr bool tellsFormer = true;
    static constexpr bool emptiesNewcomers = true;

    static Pelo::Ptr<Entity> make() { return VornicL3::nonUcastHigigIntfsFactory("chips"); }
    static Key key(U32 number) { return Key(static_cast<U8>(number)); }
    static void set(Entity& chips, U32 number, U32 value) {
        Interface::IntfSet intfs;
        while (intfs.size() < value) {
            intfs.insert(Netzo::IntfId("Fabric" + std::to_string(intfs.size())));
        }
        chips.higigIntfsIs(key(number), intfs);
    }
    static void del(Entity& chips, U32 number) { chips.higigIntfsDel(key(number)); }
    static void delAll(Entity& chips) { chips.higigIntfsDelAll(); }
    static U32 keyNumber(Key given) { return given.value(); }
    static U32 valueNumber(Value const& given) { return static_cast<U32>(given.size()); }
    static auto const& collection(Entity const& chips) { return chips.higigIntfs(); }
};

/// What both matrices need besides.
template <class C> struct Case : C {
    template <class Visit> static void walk(typename C::Entity const& entity, Visit const& visit) {
        for (typename std::decay_t<decltype(C::collection(entity))>::Iterator it(
                 C::collection(entity));
             it; it.advance()) {
            visit(C::keyNumber(it.key()), C::valueNumber(it.value()));
        }
    }
};

template <class C> struct Box {
    static constexpr bool walkKeepsOwner = false;

    void insert(U32 number) { C::set(*entity, number, 1); }
    void replace(U32 number) { C::set(*entity, number, 2); }
    void erase(U32 number) { C::del(*entity, number); }
    void clear() { C::delAll(*entity); }
    void drop() { entity = nullptr; }

    class Walk {
    public:
        explicit Walk(Box const& box) : at_(C::collection(*box.entity)) {}
        bool more() const { return static_cast<bool>(at_); }
        void advance() { at_.advance(); }
        std::optional<U32> current() const {
            auto const* const member = at_.currNodeMaybeStale();
            return member == nullptr ? std::nullopt : std::optional(C::keyNumber(member->key()));
        }

    private:
        typename std::decay_t<decltype(C::collection(std::declval<typename C::Entity>()))>::Iterator
            at_;
    };

    Pelo::Ptr<typename C::Entity> entity = C::make();
};

template <class C> class EntityMatrix : public testing::Test {
protected:
    static U32 play(U32 depth) {
        return Play::playAll<Play::RealCollections<Case<C>>, Play::ModelCollections<Case<C>>>(
            depth);
    }
};
using Cases =
    testing::Types<Directory<Test::ConfigDirectory>, Directory<Test::StatusDirectory>, Chips>;
TYPED_TEST_SUITE(EntityMatrix, Cases);

TYPED_TEST(EntityMatrix, EverythingWithinANotificationIsAsPromised) {
    U64 const before = TypeParam::Entity::allocationTracker().live();
    EXPECT_EQ(this->play(1), Play::collectionScripts(1));
    EXPECT_EQ(this->play(2), Play::collectionScripts(2));
    EXPECT_EQ(TypeParam::Entity::allocationTracker().live(), before);
}

TYPED_TEST(EntityMatrix, AWalkOutlivesWhateverHappensToTheCollection) {
    EXPECT_EQ(Support::tryAllWalks<Box<TypeParam>>(), Support::allWalks);
}

} // namespace
