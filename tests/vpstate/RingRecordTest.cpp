#include "lumlog/Reader.h"
#include "lumlog/Record.h"
#include "vpstate/PortVlanKey.h"
#include "vpstate/RemoteVtepKey.h"
#include "vpstate/VirtualPort.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using VornicCentral::PortVlanKey;
using VornicCentral::RemoteVtepKey;
using VornicCentral::VirtualPort;

/// What a value reads as when it has been recorded.
template <class T> std::string recorded(T const& value) {
    static_assert(Lumlog::HasArgTraits<T>, "the value is recorded without being printed");
    Lumlog::RingBuffer ring(Lumlog::RingBuffer::minSize);
    static Lumlog::MsgDescriptor site("RingRecordTest", 1, 5);
    Lumlog::record(ring, site, value);
    auto const record = Lumlog::Reader(ring.bytes()).next();
    return record ? record->text : "no record";
}

TEST(RingRecord, KeysReadAsTheyPrint) {
    for (char const* const text :
         {"10.0.0.2@17", "2001:db8::2@4294967295", "10.0.0.2@17/1/2", "::ffff:10.0.0.2@0/0/255"}) {
        EXPECT_EQ(recorded(*RemoteVtepKey::parse(text)), text);
    }
    for (char const* const text : {"Ethernet1/1:100", "a:b:0"}) {
        EXPECT_EQ(recorded(*PortVlanKey::parse(text)), text);
    }
    EXPECT_EQ(recorded(Bridging::VlanId(100)), "100");
    EXPECT_EQ(recorded(Netzo::IntfId("Ethernet7")), "Ethernet7");
}

TEST(RingRecord, VirtualPortsReadAsTheyPrint) {
    EXPECT_EQ(recorded(VirtualPort(12)), "12");
    EXPECT_EQ(recorded(VirtualPort()), "65535");
}

} // namespace
