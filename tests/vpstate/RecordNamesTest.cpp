// The records by the names of their creators, collections and fields.

#include "RecordCases.h"
#include "qor/Inspection.h"

#include <string>
#include <utility>

namespace {

using namespace VornicCentral;

/// What the first call makes is of that type, has that name, and belongs to the caller alone.
template <class R, class Create> void expectCreated(Create create) {
    Pelo::Ptr<R> const record = create("bgp");
    EXPECT_EQ(record->name(), "bgp");
    EXPECT_EQ(record->useCount(), 1u);
}

TEST(RecordNames, EveryRecordHasACreatorAndAFactory) {
    expectCreated<VpIndexConfig>(&VpIndexConfig::VpIndexConfigIs);
    expectCreated<VpIndexConfig>(&vpIndexConfigFactory);
    expectCreated<VpIndexStatus>(&VpIndexStatus::VpIndexStatusIs);
    expectCreated<VpIndexStatus>(&vpIndexStatusFactory);
    expectCreated<VpReferenceList>(&VpReferenceList::VpReferenceListIs);
    expectCreated<VpReferenceList>(&vpReferenceListFactory);
    expectCreated<VpInvalidReferenceList>(&VpInvalidReferenceList::VpInvalidReferenceListIs);
    expectCreated<VpInvalidReferenceList>(&vpInvalidReferenceListFactory);
    expectCreated<VxlanBootStatus>(&VxlanBootStatus::VxlanBootStatusIs);
    expectCreated<VxlanBootStatus>(&vxlanBootStatusFactory);
}

template <class R> class RecordAccessors : public testing::Test {
protected:
    using Value = typename R::Value;

    RemoteVtepKey const vtep = Records::sampleKeys<RemoteVtepKey>()[0];
    PortVlanKey const port = Records::sampleKeys<PortVlanKey>()[0];
    Bridging::VlanId const vlan = Bridging::VlanId(100);
    Netzo::IntfId const intf = Netzo::IntfId("Ethernet1");
    Value const one = Records::sampleValues<Value>()[0];
    Value const two = Records::sampleValues<Value>()[1];
    Pelo::Ptr<R> const record = Pelo::newNode<R>("record");

    void fill() {
        record->remoteVportIs(vtep, one);
        record->mlagRemoteVportIs(vtep, two);
        record->edgeVportIs(port, one);
        record->vlanVportIs(vlan, two);
        record->eFilterDisableVportIs(intf, one);
    }

    /// Which of the five samples are there, in the order of the kinds: "11000".
    std::string present() const {
        std::string text;
        for (bool const has : {record->remoteVportHas(vtep), record->mlagRemoteVportHas(vtep),
                               record->edgeVportHas(port), record->vlanVportHas(vlan),
                               record->eFilterDisableVportHas(intf)}) {
            text += has ? '1' : '0';
        }
        return text;
    }
};
struct RecordName {
    template <class R> static std::string GetName(int) { return Records::recordName<R>(); }
};
using RecordTypes = testing::Types<VpIndexConfig, VpIndexStatus, VpReferenceList,
                                   VpInvalidReferenceList, VxlanBootStatus>;
TYPED_TEST_SUITE(RecordAccessors, RecordTypes, RecordName);

TYPED_TEST(RecordAccessors, EachNameReachesItsOwnCollection) {
    auto& named = *this->record;
    std::string seen;
    auto const note = [&] { seen += this->present() + " "; };
    named.mlagRemoteVportIs(this->vtep, this->one);
    note();
    named.remoteVportIs(this->vtep, this->two);
    note();
    named.edgeVportIs(this->port, this->one);
    note();
    named.vlanVportIs(this->vlan, this->two);
    note();
    named.eFilterDisableVportIs(this->intf, this->one);
    note();
    EXPECT_EQ(seen, "01000 11000 11100 11110 11111 ");
    EXPECT_EQ(named.mlagRemoteVport(this->vtep), this->one);
    EXPECT_EQ(named.remoteVport(this->vtep), this->two);
    EXPECT_EQ(named.edgeVport(this->port), this->one);
    EXPECT_EQ(named.vlanVport(this->vlan), this->two);
    EXPECT_EQ(named.eFilterDisableVport(this->intf), this->one);
}

TYPED_TEST(RecordAccessors, EachNameDeletesFromItsOwnCollection) {
    this->fill();
    auto& named = *this->record;
    EXPECT_EQ(named.mlagRemoteVportDel(this->vtep), this->two);
    EXPECT_EQ(this->present(), "10111");
    EXPECT_EQ(named.remoteVportDel(this->vtep), this->one);
    EXPECT_EQ(this->present(), "00111");
    EXPECT_EQ(named.eFilterDisableVportDel(this->intf), this->one);
    EXPECT_EQ(this->present(), "00110");
    EXPECT_EQ(named.edgeVportDel(this->port), this->one);
    EXPECT_EQ(this->present(), "00010");
    EXPECT_EQ(named.vlanVportDel(this->vlan), this->two);
    EXPECT_EQ(this->present(), "00000");
}

TYPED_TEST(RecordAccessors, EachNameEmptiesItsOwnCollection) {
    this->fill();
    auto& named = *this->record;
    named.vlanVportDelAll();
    EXPECT_EQ(this->present(), "11101");
    named.mlagRemoteVportDelAll();
    EXPECT_EQ(this->present(), "10101");
    named.eFilterDisableVportDelAll();
    EXPECT_EQ(this->present(), "10100");
    named.remoteVportDelAll();
    EXPECT_EQ(this->present(), "00100");
    named.edgeVportDelAll();
    EXPECT_EQ(this->present(), "00000");
}

TYPED_TEST(RecordAccessors, EachNameGivesItsOwnCollection) {
    this->fill();
    auto const& named = *this->record;
    EXPECT_EQ(named.remoteVport().lookupNode(this->vtep)->value(), this->one);
    EXPECT_EQ(named.mlagRemoteVport().lookupNode(this->vtep)->value(), this->two);
    EXPECT_EQ(named.edgeVport().lookupNode(this->port)->value(), this->one);
    EXPECT_EQ(named.vlanVport().lookupNode(this->vlan)->value(), this->two);
    EXPECT_EQ(named.eFilterDisableVport().lookupNode(this->intf)->value(), this->one);
}

TEST(RecordTables, SetTheCountersOfAStatus) {
    auto const status = vpIndexStatusFactory("bgp");
    for (Pelo::FieldId field = 263; field <= 266; ++field) {
        Qor::inspectOperation(*status, field, Qor::OpCode::set,
                              {Qor::GenericValue::of(U32{field})});
    }
    EXPECT_EQ(status->vpAllocRequests(), 263u);
    EXPECT_EQ(status->vpAllocFailures(), 264u);
    EXPECT_EQ(status->vpFreeRequests(), 265u);
    EXPECT_EQ(status->vpTableSize(), 266u);
}

} // namespace
