#include "qor/Trace.h"

#include "SinkFixture.h"
#include "netzo/IntfId.h"

#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <string>

namespace TraceTypes {

/// A key with pieces for the ring buffer and a printed form of other words.
struct Key {
    Netzo::IntfId port;
    U16 vlan;
};
std::ostream& operator<<(std::ostream& out, Key const& key) {
    return out << key.port << "/" << key.vlan;
}

/// Can be printed to a trace only.
struct TracedOnly {};
Qor::TraceStream& operator<<(Qor::TraceStream& out, TracedOnly const&) {
    return out << "traced only";
}

} // namespace TraceTypes

template <> struct Lumlog::ArgTraits<TraceTypes::Key> {
    static auto pieces(TraceTypes::Key const& key) {
        return Lumlog::pieces(key.port, Qor::Words("/"), key.vlan);
    }
};

namespace Qor {
namespace {

using namespace TraceTypes;
using Texts = std::vector<std::string>;

constexpr char unit[] = "/src/unit";

class Trace : public SinkTest {
protected:
    Trace() { handle_.levelsMaskIs(~U64{0}); }

    TraceHandle handle_{"TraceTest", false};
};

TEST_F(Trace, OneStatementMakesTheLineAndTheRecord) {
    U32 const index = 12;
    QOR_TRACE(handle_, 5, unit, "allocVpIndex", " index allocated is: ", index);
    QOR_TRACE(handle_, 1, unit, "reconcile");
    EXPECT_EQ(lines_, (Texts{"allocVpIndex index allocated is: 12", "reconcile"}));
    EXPECT_EQ(records(), lines_);
}

TEST_F(Trace, TakesEveryKindOfPiece) {
    Pelo::String const name("bgp");
    std::string const tag = " mlag";
    Key const key{Netzo::IntfId("Ethernet1"), 100};
    QOR_TRACE(handle_, 1, unit, "op", tag, std::string_view(" view "), name, " ", key, " ", true,
              Words(" words "), U8{1}, U16{2}, U64{3}, -4, 'x', TracedOnly(), std::string(" end"));
    EXPECT_EQ(lines_, Texts{"op mlag view bgp Ethernet1/100 true words 123-4xtraced only end"});
    EXPECT_EQ(records(), lines_);
}

TEST_F(Trace, TwinsAreWordedDifferently) {
    Key const key{Netzo::IntfId("Ethernet1"), 100};
    QOR_TRACE_TWIN(handle_, 1, unit, "handleEdgeVport", (" pvKey: ", key),
                   (" port: ", key.port.shortName(), " vlan: ", key.vlan));
    QOR_TRACE_TWIN(handle_, 1, unit, "only", (), (" record"));
    QOR_TRACE_TWIN(handle_, 1, unit, "only", (" line"), ());
    EXPECT_EQ(lines_, (Texts{"handleEdgeVport pvKey: Ethernet1/100", "only", "only line"}));
    EXPECT_EQ(records(), (Texts{"handleEdgeVport port: Et1 vlan: 100", "only record", "only"}));
}

TEST_F(Trace, RingOnlyHasNoLine) {
    QOR_RING_ONLY(handle_, 5, unit, "addRemoteVportToStatus", " vPort: ", 7u);
    EXPECT_EQ(lines_, Texts{});
    EXPECT_EQ(records(), Texts{"addRemoteVportToStatus vPort: 7"});
}

TEST_F(Trace, LineTellsItsCallSite) {
    struct Seen {
        TraceHandle const* handle;
        U32 level;
        std::string file;
        U32 line;
        std::string function;
        bool operator==(Seen const&) const = default;
    };
    std::vector<Seen> seen;
    traceSinkIs([&](TraceLine const& line) {
        seen.push_back({&line.handle, line.level, std::string(line.file), line.line,
                        std::string(line.function)});
    });
    U32 const line = __LINE__ + 1;
    QOR_TRACE(handle_, 7, unit, "first");
    QOR_TRACE_TWIN(handle_, 0, unit, "second", (1), (2));
    EXPECT_EQ(seen, (std::vector<Seen>{{&handle_, 7, "/src/unit", line, "TestBody"},
                                       {&handle_, 0, "/src/unit", line + 1, "TestBody"}}));
}

TEST_F(Trace, RecordTellsItsCallSite) {
    U32 const line = __LINE__ + 1;
    QOR_TRACE(handle_, 7, unit, "first");
    Lumlog::DecodedRecord const record = Lumlog::Reader(ring_.bytes()).rest().back();
    EXPECT_EQ(record.level, 7u);
    EXPECT_EQ(record.unit, "/src/unit");
    EXPECT_EQ(record.line, line);
}

TEST_F(Trace, RecordIsWrittenWhateverTheLevels) {
    handle_.levelsMaskIs(0);
    QOR_TRACE(handle_, 5, unit, "one");
    handle_.levelIs(5, true);
    QOR_TRACE(handle_, 5, unit, "two");
    QOR_TRACE(handle_, 1, unit, "three");
    EXPECT_EQ(lines_, Texts{"two"});
    EXPECT_EQ(records(), (Texts{"one", "two", "three"}));
}

TEST_F(Trace, LineIsWrittenWithoutARing) {
    Lumlog::RingBuffer::currentIs(nullptr);
    QOR_TRACE(handle_, 5, unit, "one");
    QOR_TRACE_TWIN(handle_, 5, unit, "two", (" line"), (" record"));
    QOR_RING_ONLY(handle_, 5, unit, "three");
    EXPECT_EQ(lines_, (Texts{"one", "two line"}));
    EXPECT_EQ(records(), Texts{});
}

/// The statements of this test, as often as it likes, and how often each piece was asked for.
class TraceEvaluation : public Trace {
protected:
    void trace() {
        QOR_TRACE(handle_, 5, unit, "op", " ", both());
        QOR_TRACE_TWIN(handle_, 5, unit, "op", (" ", line()), (" ", record()));
        QOR_RING_ONLY(handle_, 5, unit, "op", " ", ringOnly());
    }

    U32 both() { return ++counts_[0]; }
    U32 line() { return ++counts_[1]; }
    U32 record() { return ++counts_[2]; }
    U32 ringOnly() { return ++counts_[3]; }

    using Counts = std::vector<U32>;
    Counts counts_ = Counts(4);
};

TEST_F(TraceEvaluation, EvaluatesEachPieceOnce) {
    trace();
    EXPECT_EQ(counts_, (Counts{1, 1, 1, 1}));
}

TEST_F(TraceEvaluation, EvaluatesNothingWhenItIsOff) {
    Lumlog::RingBuffer::currentIs(nullptr);
    handle_.levelIs(5, false);
    trace();
    EXPECT_EQ(counts_, Counts(4));
}

TEST_F(TraceEvaluation, EvaluatesForTheRecordWhenTheLevelIsOff) {
    handle_.levelIs(5, false);
    trace();
    EXPECT_EQ(counts_, (Counts{1, 0, 1, 1}));
}

TEST_F(TraceEvaluation, EvaluatesForTheLineWhenThereIsNoRing) {
    Lumlog::RingBuffer::currentIs(nullptr);
    trace();
    EXPECT_EQ(counts_, (Counts{1, 1, 0, 0}));
}

/// Which message it is shows in the pieces.
TEST_F(TraceEvaluation, EvaluatesAlsoForADisabledMessage) {
    handle_.levelIs(5, false);
    trace();
    for (Lumlog::DecodedRecord const& decoded : Lumlog::Reader(ring_.bytes()).rest()) {
        ring_.messageEnabledIs(decoded.msgId, false);
    }
    trace();
    EXPECT_EQ(counts_, (Counts{2, 0, 2, 2}));
    handle_.levelIs(5, true);
    trace();
    EXPECT_EQ(counts_, (Counts{3, 1, 3, 3}));
    EXPECT_EQ(records(), (Texts{"op 1", "op 1", "op 1"}));
    EXPECT_EQ(lines_, (Texts{"op 3", "op 1"}));
}

TEST_F(Trace, DisablingOneWordingLeavesTheOthersOfItsSite) {
    auto const say = [&](Words which) {
        QOR_TRACE(handle_, 1, unit, "both ", which);
        QOR_TRACE_TWIN(handle_, 1, unit, "twin ", (which), (which));
        QOR_RING_ONLY(handle_, 1, unit, "ring ", which);
    };
    say("one");
    for (Lumlog::DecodedRecord const& decoded : Lumlog::Reader(ring_.bytes()).rest()) {
        ring_.messageEnabledIs(decoded.msgId, false);
    }
    say("one");
    say("two");
    say("two");
    EXPECT_EQ(records(), (Texts{"both one", "twin one", "ring one", //
                                "both two", "twin two", "ring two", //
                                "both two", "twin two", "ring two"}));
    EXPECT_EQ(lines_, (Texts{"both one", "twin one", "both one", "twin one", //
                             "both two", "twin two", "both two", "twin two"}));
}

TEST_F(Trace, HandleIsEvaluatedOnce) {
    int asked = 0;
    auto const handle = [&]() -> TraceHandle& {
        ++asked;
        return handle_;
    };
    QOR_TRACE(handle(), 5, unit, "op");
    EXPECT_EQ(asked, 1);
}

struct VlanKind {
    static constexpr Words handler{"handleVlanVport"};
    static constexpr Words label{" vlan: "};
    using Key = U16;
};
struct IntfKind {
    static constexpr Words handler{"handleEFilterDisableVport"};
    static constexpr Words label{" intf: "};
    using Key = Netzo::IntfId;
};

template <class Kind> void handle(TraceHandle& traceHandle, typename Kind::Key const& key) {
    QOR_TRACE(traceHandle, 1, unit, Kind::handler, Kind::label, key);
}

TEST_F(Trace, EachInstanceOfATemplateHasItsOwnMessage) {
    for (int round = 0; round < 2; ++round) {
        handle<VlanKind>(handle_, 100);
        handle<IntfKind>(handle_, Netzo::IntfId("Ethernet2"));
    }
    EXPECT_EQ(lines_,
              (Texts{"handleVlanVport vlan: 100", "handleEFilterDisableVport intf: Ethernet2",
                     "handleVlanVport vlan: 100", "handleEFilterDisableVport intf: Ethernet2"}));
    EXPECT_EQ(records(), lines_);
    std::vector<Lumlog::DecodedRecord> const decoded = Lumlog::Reader(ring_.bytes()).rest();
    ASSERT_EQ(decoded.size(), 4u);
    EXPECT_EQ(decoded[0].msgId, decoded[2].msgId);
    EXPECT_EQ(decoded[1].msgId, decoded[3].msgId);
    EXPECT_NE(decoded[0].msgId, decoded[1].msgId);
    EXPECT_EQ(decoded[0].line, decoded[1].line);
}

TEST_F(Trace, PieceMayTraceItself) {
    auto const inner = [&]() -> U32 {
        QOR_TRACE(handle_, 1, unit, "inner");
        return 5;
    };
    QOR_TRACE(handle_, 1, unit, "outer ", inner());
    EXPECT_EQ(lines_, (Texts{"inner", "outer 5"}));
    EXPECT_EQ(records(), lines_);
}

TEST_F(Trace, IsAStatement) {
    if (lines_.empty())
        QOR_TRACE(handle_, 1, unit, "then");
    else
        QOR_TRACE(handle_, 1, unit, "else");
    EXPECT_EQ(lines_, Texts{"then"});
}

TEST_F(Trace, HelperEmitsItsLineWhenItIsDestroyed) {
    {
        TraceHelper helper(handle_, 5, "file", 1, "function");
        helper.stream() << "recycleOrFreeVpIndex"
                        << " free  ";
        EXPECT_EQ(lines_, Texts{});
        helper.stream() << true;
    }
    EXPECT_EQ(lines_, Texts{"recycleOrFreeVpIndex free  true"});
}

template <class Piece>
concept Traceable = requires(TraceSite const& site, Piece piece) {
    site.both(static_cast<Piece>(piece));
    site.record(static_cast<Piece>(piece));
    site.line(static_cast<Piece>(piece));
};

TEST(TraceSite, RefusesPointersToText) {
    EXPECT_TRUE(Traceable<char const(&)[4]>);
    EXPECT_TRUE(Traceable<std::string_view>);
    EXPECT_TRUE(Traceable<TracedOnly const&>);
    EXPECT_FALSE(Traceable<char const*>);
    EXPECT_FALSE(Traceable<char(&)[128]>);
}

struct Thrower {};
std::ostream& operator<<(std::ostream&, Thrower const&) {
    throw std::runtime_error("cannot be printed");
}

TEST(TraceDeathTest, ExceptionWhileTracingEndsTheProcess) {
    TraceHandle handle("death", true);
    EXPECT_DEATH(QOR_TRACE(handle, 1, unit, "op", Thrower()), "terminate called");
}

} // namespace
} // namespace Qor
