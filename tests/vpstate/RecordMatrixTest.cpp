// Everything that a subscriber of a record may do within a notification, in every combination, for
// every record and every kind: see `support/NotificationPlay.h`. And whatever may happen to a
// collection of a record while it is walked.

#include "RecordCases.h"
#include "support/CollectionPlay.h"
#include "support/WalkMatrix.h"

namespace {

/// A case of `RecordCases.h` by numbers.
template <class C> struct ByNumbers {
    using Entity = typename C::Record;
    using Kind = typename C::Kind;
    using Key = typename C::Key;
    using Value = typename C::Value;
    static constexpr bool tellsFormer = false;
    static constexpr bool emptiesNewcomers = false;

    static Pelo::Ptr<Entity> make() { return Pelo::newNode<Entity>("record"); }
    static Key key(U32 number) {
        static auto const keys = Records::sampleKeys<Key>();
        return keys[number];
    }
    static Value value(U32 number) {
        static auto const values = Records::sampleValues<Value>();
        return values[number - 1];
    }
    static void set(Entity& record, U32 number, U32 to) {
        record.template is<Kind>(key(number), value(to));
    }
    static void del(Entity& record, U32 number) { record.template del<Kind>(key(number)); }
    static void delAll(Entity& record) { record.template delAll<Kind>(); }
    static U32 keyNumber(Key const& given) { return given == key(0) ? 0 : given == key(1) ? 1 : 2; }
    static U32 valueNumber(Value const& given) { return given == value(1) ? 1 : 2; }
    template <class Visit> static void walk(Entity const& record, Visit const& visit) {
        for (typename Entity::template Collection<Kind>::Iterator it(
                 record.template collection<Kind>());
             it; it.advance()) {
            visit(keyNumber(it.key()), valueNumber(it.value()));
        }
    }
};

template <class C> class RecordMatrix : public testing::Test {
protected:
    static U32 play(U32 depth) {
        return Play::playAll<Play::RealCollections<ByNumbers<C>>,
                             Play::ModelCollections<ByNumbers<C>>>(depth);
    }
};
TYPED_TEST_SUITE(RecordMatrix, Records::Cases, Records::CaseName);

TYPED_TEST(RecordMatrix, EverythingWithinANotificationIsAsPromised) {
    U64 const before = TypeParam::Record::allocationTracker().live();
    EXPECT_EQ(this->play(1), Play::collectionScripts(1));
    EXPECT_EQ(TypeParam::Record::allocationTracker().live(), before);
}

/// The same code for every record and kind; told on each of them once.
template <class C> class NestedRecordMatrix : public RecordMatrix<C> {};
using OneOfEach = testing::Types<
    Records::Case<VornicCentral::VpIndexConfig, VornicCentral::VlanVport>,
    Records::Case<VornicCentral::VpIndexStatus, VornicCentral::RemoteVport>,
    Records::Case<VornicCentral::VpReferenceList, VornicCentral::EdgeVport>,
    Records::Case<VornicCentral::VpInvalidReferenceList, VornicCentral::EFilterDisableVport>,
    Records::Case<VornicCentral::VxlanBootStatus, VornicCentral::MlagRemoteVport>>;
TYPED_TEST_SUITE(NestedRecordMatrix, OneOfEach, Records::CaseName);

TYPED_TEST(NestedRecordMatrix, EverythingWithinANestedNotificationIsAsPromised) {
    EXPECT_EQ(this->play(2), Play::collectionScripts(2));
}

/// The number of a key of any kind, and the key of a number.
template <class Key> struct Numbered;
template <> struct Numbered<Bridging::VlanId> {
    static Bridging::VlanId key(U32 number) {
        return Bridging::VlanId(static_cast<U16>(number + 1));
    }
};
template <> struct Numbered<Netzo::IntfId> {
    static Netzo::IntfId key(U32 number) {
        return Netzo::IntfId("Ethernet" + std::to_string(number + 1));
    }
};
template <> struct Numbered<VornicCentral::PortVlanKey> {
    static VornicCentral::PortVlanKey key(U32 number) {
        return *VornicCentral::PortVlanKey::parse("Ethernet1:" + std::to_string(number + 1));
    }
};
template <> struct Numbered<VornicCentral::RemoteVtepKey> {
    static VornicCentral::RemoteVtepKey key(U32 number) {
        return *VornicCentral::RemoteVtepKey::parse("10.0.0.1@" + std::to_string(number + 1));
    }
};

template <class C> struct RecordBox {
    using Kind = typename C::Kind;
    static constexpr bool walkKeepsOwner = false;

    static typename C::Key key(U32 number) { return Numbered<typename C::Key>::key(number); }
    void insert(U32 number) {
        record->template is<Kind>(key(number), ByNumbers<C>::value(1));
        numbers.push_back(number);
    }
    void replace(U32 number) { record->template is<Kind>(key(number), ByNumbers<C>::value(2)); }
    void erase(U32 number) { record->template del<Kind>(key(number)); }
    void clear() { record->template delAll<Kind>(); }
    void drop() { record = nullptr; }

    class Walk {
    public:
        explicit Walk(RecordBox const& box)
            : box_(box), at_(box.record->template collection<Kind>()) {}
        bool more() const { return static_cast<bool>(at_); }
        void advance() { at_.advance(); }
        std::optional<U32> current() const {
            auto const* const member = at_.currNodeMaybeStale();
            for (U32 const number : box_.numbers) {
                if (member != nullptr && member->key() == key(number)) {
                    return number;
                }
            }
            return std::nullopt;
        }

    private:
        RecordBox const& box_;
        typename C::Record::template Collection<Kind>::Iterator at_;
    };

    Pelo::Ptr<typename C::Record> record = ByNumbers<C>::make();
    std::vector<U32> numbers; ///< all that were ever inserted
};

TYPED_TEST(NestedRecordMatrix, AWalkOutlivesWhateverHappensToTheCollection) {
    EXPECT_EQ(Support::tryAllWalks<RecordBox<TypeParam>>(), Support::allWalks);
}

} // namespace
