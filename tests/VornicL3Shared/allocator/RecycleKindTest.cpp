// The hand-over of an index to a waiting key, the same for all five kinds.

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/allocator/TraceLines.h"
#include "VornicL3Shared/support/Listener.h"

#include <map>
#include <string>
#include <vector>

namespace {

using namespace VornicCentral;
using Test::Lines;

/// What is said when key 2 takes index 8: the trace, with `#` for the client's name, and what the
/// message calls the key.
struct Words {
    std::string handOver;
    std::string vport;
};

template <class Kind> Words const& words() {
    static std::map<std::string, Words> const all{
        {"remote",
         {"7 recycleOrFreeVpIndex Recycling vpIndex : 8 to vpIndexAllocator(#)->vpIndexStatus()"
          "->remoteVport(10.0.0.2@1002)",
          "vxlan remote vtep: 1002"}},
        {"mlag",
         {"7 recycleOrFreeVpIndex Recycling mlag vpIndex : 8 to vpIndexAllocator(#)"
          "->vpIndexStatus()->mlagRemoteVport(10.0.0.2@1002)",
          "vxlan remote vtep: 1002"}},
        {"edge",
         {"7 recycleOrFreeVpIndex Recycling vpIndex : 8 to vpIndexAllocator(#)->vpIndexStatus()"
          "->edgeVport(Ethernet1/2:100)",
          "vxlan edge port: Ethernet1/2, vlan: 100"}},
        {"vlan",
         {"7 recycleOrFreeVpIndex Recycling vpIndex : 8 to vpIndexAllocator(#)->vpIndexStatus()"
          "->vlanVport(102)",
          "vxlan vlan 102 svp"}},
        {"efilter",
         {"7 recycleOrFreeVpIndex Recycling vpIndex : 8 to vpIndexAllocator(#)->vpIndexStatus()"
          "->eFilterDisableVport(Ethernet2/2)",
          "eFilterDisable intf: Ethernet2/2"}}};
    return all.at(Kind::word);
}

template <class Kind> class RecycleKind : public ::Test::KindTest<Kind> {
protected:
    /// Key 1 holds the only index, for bgp; evpn and then bgp wait with key 2.
    void letTwoWait() {
        this->start({.tableSize = 9, .reallocation = true}, {"bgp", "evpn"});
        this->request("bgp", 1);
        this->request("evpn", 2);
        this->request("bgp", 2);
        this->world.capture.forget();
    }
    void putReference(U32 number, VpReference const& reference) {
        this->world.references->template is<Kind>(::Test::numbered<Kind>(number).key, reference);
    }
    /// Puts a key into the list of waiting keys by hand.
    void makeWait(U32 number) {
        this->world.waiting->template is<Kind>(::Test::numbered<Kind>(number).key, true);
    }
    static std::string handOverTo(std::string const& client) {
        std::string line = words<Kind>().handOver;
        ::Test::KindTest<Kind>::replace(line, "#", client);
        return line;
    }
};
TYPED_TEST_SUITE(RecycleKind, ::Test::AllKinds, ::Test::KindNames);

TYPED_TEST(RecycleKind, AllClientsOfTheKeyGetTheIndexWithOneMessageAndOneReferenceWrite) {
    this->letTwoWait();
    ::Test::Listener references(*this->world.references);
    this->world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(this->world.capture.logs().size(), 1u);
    EXPECT_EQ(references.fields(), (std::vector<Pelo::FieldId>{TypeParam::field}));
    EXPECT_EQ(this->state(),
              this->filled("pool 9: 0-8\n"
                           "config bgp: <kind>{<1> <2>}\n"
                           "config evpn: <kind>{<2>}\n"
                           "status bgp: <kind>{<1>=8 <2>=8} requests=1 failures=0 frees=0 size=9\n"
                           "status evpn: <kind>{<2>=8} requests=0 failures=1 frees=0 size=9\n"
                           "references: <kind>{<1>=8[bgp] <2>=8[evpn bgp]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(RecycleKind, TracesEachClientInOrderInTheWordsOfTheKind) {
    this->letTwoWait();
    this->world.sm->recycleOrFreeVpIndex(8);
    Lines const lines{"1 recycleOrFreeVpIndex", this->handOverTo("evpn"), this->handOverTo("bgp")};
    EXPECT_EQ(Test::linesOf(this->world.capture.traces(), "recycleOrFreeVpIndex"), lines);
    EXPECT_EQ(Test::linesOf(this->world.capture.ring(), "recycleOrFreeVpIndex"), lines);
}

TYPED_TEST(RecycleKind, TheMessageIsLoggedBetweenTheStatusesAndTheReference) {
    this->letTwoWait();
    Lines events;
    auto const noteLogs = [&] {
        for (std::string const& line : this->world.capture.logs()) {
            events.push_back(line);
        }
    };
    auto const note = [&](char const* record) {
        return [&events, &noteLogs, record](::Test::Notification const&) {
            noteLogs();
            events.push_back(record);
        };
    };
    ::Test::Listener const bgp(this->world.status("bgp"), note("status of bgp"));
    ::Test::Listener const evpn(this->world.status("evpn"), note("status of evpn"));
    ::Test::Listener const references(*this->world.references, note("reference"));
    this->world.sm->recycleOrFreeVpIndex(8);
    noteLogs();
    EXPECT_EQ(events,
              (Lines{"status of evpn", "status of bgp",
                     "VORNIC_VIRTUALPORT_RESOURCE_NORMAL: Hardware resources are available to add "
                     "virtual port for " +
                         words<TypeParam>().vport,
                     "reference"}));
}

TYPED_TEST(RecycleKind, TheKeyThatHasWaitedLongestIsServedFirst) {
    this->start({.tableSize = 9, .reallocation = true}, {"bgp"});
    for (U32 number = 1; number <= 4; ++number) {
        this->request("bgp", number);
    }
    this->withdraw("bgp", 2); // leaves the queue and enters it again at its end
    this->request("bgp", 2);
    std::vector<U32> served;
    for (U32 holder = 1, rounds = 0; rounds < 3; ++rounds) {
        this->withdraw("bgp", holder);
        for (U32 number = 1; number <= 4; ++number) {
            if (this->world.indexOf("bgp", ::Test::numbered<TypeParam>(number)) == 8) {
                holder = number;
            }
        }
        served.push_back(holder);
    }
    EXPECT_EQ(served, (std::vector<U32>{3, 4, 2}));
}

TYPED_TEST(RecycleKind, TheWalkGoesOnWithinTheKindBehindAKeyThatDoesNotWait) {
    this->start({.tableSize = 10, .reallocation = true}, {"bgp"});
    this->request("bgp", 1);
    this->request("bgp", 2);
    this->makeWait(4); // no reference
    this->makeWait(2); // one that holds an index
    this->request("bgp", 3);
    this->withdraw("bgp", 1);
    EXPECT_EQ(this->state(),
              this->filled("pool 10: 0-9\n"
                           "config bgp: <kind>{<2> <3>}\n"
                           "status bgp: <kind>{<2>=8 <3>=9} requests=2 failures=1 frees=1 size=10\n"
                           "references: <kind>{<2>=8[bgp] <3>=9[bgp]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(RecycleKind, AKeyThatNamesNobodyIsPassedOverForTheNextOfItsKind) {
    this->start({.tableSize = 9, .reallocation = true}, {"bgp"});
    this->request("bgp", 2);
    this->putReference(1, VpReference());
    this->request("bgp", 3);
    this->withdraw("bgp", 2);
    EXPECT_EQ(this->state(),
              this->filled("pool 9: 0-8\n"
                           "config bgp: <kind>{<3>}\n"
                           "status bgp: <kind>{<3>=8} requests=1 failures=1 frees=1 size=9\n"
                           "references: <kind>{<1>=65535[] <3>=8[bgp]}\n"
                           "waiting: <kind>{<1>}\n"
                           "boot:\n"));
}

} // namespace
