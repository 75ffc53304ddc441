// What a keyed handler says, to the trace and to the ring buffer, from the entry to the end.

#include "VornicL3Shared/allocator/KeyedTraceWords.h"
#include "VornicL3Shared/allocator/KindTest.h"

namespace {

using Test::Lines;

/// The kind that a test tries, and whether reallocation is on.
template <class K, bool on> struct Mode {
    using Kind = K;
    static constexpr bool reallocation = on;
};

using Modes =
    testing::Types<Mode<VornicCentral::RemoteVport, false>, Mode<VornicCentral::RemoteVport, true>,
                   Mode<VornicCentral::MlagRemoteVport, false>,
                   Mode<VornicCentral::MlagRemoteVport, true>,
                   Mode<VornicCentral::EdgeVport, false>, Mode<VornicCentral::EdgeVport, true>,
                   Mode<VornicCentral::VlanVport, false>, Mode<VornicCentral::VlanVport, true>,
                   Mode<VornicCentral::EFilterDisableVport, false>,
                   Mode<VornicCentral::EFilterDisableVport, true>>;

struct ModeNames {
    template <class M> static std::string GetName(int) {
        return std::string(M::Kind::word) + (M::reallocation ? "_reallocating" : "");
    }
};

std::string joined(Lines const& traces, Lines const& ring) {
    std::string text = "trace:\n";
    for (auto const& line : traces) {
        text += line + "\n";
    }
    text += "ring:\n";
    for (auto const& line : ring) {
        text += line + "\n";
    }
    return text;
}

/// The lines that are expected, told in the words of one kind.
template <class M> class Story {
public:
    std::string text() const { return joined(traces_, ring_); }

    /// A line that the trace and the ring buffer show alike.
    Story& line(std::string const& text) { return twin(text, text); }

    /// The entry of the handler for a key that somebody holds, with this index, or that nobody
    /// does.
    Story& entryHeld(U16 vpIndex) {
        return line(Words::vtep)
            .twin(Words::entry, Words::ringEntry)
            .line(with(Words::lookup, vpIndex));
    }
    Story& entryNew() {
        return line(Words::vtep).twin(Words::entry, Words::ringEntry).line(Words::failedLookup);
    }
    Story& sweep() { return line(Words::sweep); }
    Story& addition() { return line(Words::addition); }
    Story& existing() { return line(Words::existing); }
    Story& allocating() { return line(Words::allocating); }
    Story& allocated(U16 vpIndex) { return line(with(Words::allocated, vpIndex)); }
    Story& deletion() { return twin(Words::deletion, Words::ringDeletion); }
    Story& freeing(U16 vpIndex) { return line(with(Words::freeing, vpIndex)); }
    Story& recycling() { return M::reallocation ? line("1 recycleOrFreeVpIndex") : *this; }
    /// The end of an addition, up to the write of the status.
    Story& settled(U16 vpIndex) {
        twin(with(Words::settled, vpIndex), with(Words::ringSettled, vpIndex));
        return twin("", with(Words::ringStatus, vpIndex));
    }
    /// What the state machine says when it sees a reference that was written with this index.
    Story& referenceWritten(U16 vpIndex) {
        twin(Words::reference, Words::ringReference);
        if (M::reallocation) {
            bool const valid = vpIndex != VornicCentral::invalidVpIndex;
            line(with(Words::changed, vpIndex));
            line(with(valid ? Words::settles : Words::waits, vpIndex));
        }
        return *this;
    }
    Story& referenceDeleted() {
        twin(Words::reference, Words::ringReference);
        return M::reallocation ? line(Words::gone) : *this;
    }

private:
    using Words = Test::KeyedTraceWords<typename M::Kind>;

    Story& twin(std::string const& trace, std::string const& ring) {
        append(traces_, trace);
        append(ring_, ring);
        return *this;
    }
    static std::string with(std::string text, U16 vpIndex) {
        auto const at = text.find('#');
        return at == std::string::npos ? text : text.replace(at, 1, std::to_string(vpIndex));
    }
    static void append(Lines& lines, std::string const& line) {
        if (!line.empty()) {
            lines.push_back(line);
        }
    }

    Lines traces_;
    Lines ring_;
};

template <class M> class KeyedTrace : public Test::KindTest<typename M::Kind> {
protected:
    /// Starts with the clients bgp and evpn; after `before`, only what `act` causes is reported.
    template <class Before, class Act> std::string told(U32 tableSize, Before before, Act act) {
        this->start({.tableSize = tableSize, .reallocation = M::reallocation}, {"bgp", "evpn"});
        before();
        this->world.capture.forget();
        act();
        auto const traces = this->world.capture.traces();
        return joined(traces, this->world.capture.ring());
    }
    static void nothing() {}

    Story<M> story;
};
TYPED_TEST_SUITE(KeyedTrace, Modes, ModeNames);

TYPED_TEST(KeyedTrace, Addition) {
    auto const told = this->told(16, this->nothing, [this] { this->request("bgp", 1); });
    this->story.entryNew()
        .addition()
        .allocating()
        .line("5 allocVpIndex index allocated is: 15")
        .allocated(15)
        .settled(15)
        .referenceWritten(15);
    EXPECT_EQ(told, this->story.text());
}

TYPED_TEST(KeyedTrace, AdditionOfAKeyThatAnotherClientHolds) {
    auto const told = this->told(
        16, [this] { this->request("evpn", 1); }, [this] { this->request("bgp", 1); });
    this->story.entryHeld(15).addition().existing().settled(15).referenceWritten(15);
    EXPECT_EQ(told, this->story.text());
}

TYPED_TEST(KeyedTrace, RepeatedAddition) {
    auto const told = this->told(
        16, [this] { this->request("bgp", 1); }, [this] { this->handle("bgp", 1); });
    this->story.entryHeld(15).addition().existing().settled(15);
    EXPECT_EQ(told, this->story.text());
}

TYPED_TEST(KeyedTrace, AdditionWithTheTableFull) {
    auto const told = this->told(8, this->nothing, [this] { this->request("bgp", 1); });
    this->story.entryNew()
        .addition()
        .allocating()
        .line("5 allocVpIndex VpIndex full return invalidVirtualPort")
        .settled(65535)
        .referenceWritten(65535);
    EXPECT_EQ(told, this->story.text());
}

TYPED_TEST(KeyedTrace, AdditionOfAWaitingKey) {
    auto const told = this->told(
        8, [this] { this->request("evpn", 1); }, [this] { this->request("bgp", 1); });
    this->story.entryHeld(65535).addition().existing().settled(65535).referenceWritten(65535);
    EXPECT_EQ(told, this->story.text());
}

TYPED_TEST(KeyedTrace, WithdrawalByOneOfTwo) {
    auto const told = this->told(
        16,
        [this] {
            this->request("evpn", 1);
            this->request("bgp", 1);
        },
        [this] { this->withdraw("bgp", 1); });
    this->story.entryHeld(15).deletion().referenceWritten(15);
    EXPECT_EQ(told, this->story.text());
}

TYPED_TEST(KeyedTrace, WithdrawalByTheLast) {
    auto const told = this->told(
        16, [this] { this->request("bgp", 1); }, [this] { this->withdraw("bgp", 1); });
    this->story.entryHeld(15).deletion().freeing(15).referenceDeleted().recycling().line(
        "5 freeVpIndex index freed is: 15");
    EXPECT_EQ(told, this->story.text());
}

TYPED_TEST(KeyedTrace, WithdrawalOfAWaitingKeyByTheLast) {
    auto const told = this->told(
        8, [this] { this->request("bgp", 1); }, [this] { this->withdraw("bgp", 1); });
    this->story.entryHeld(65535).deletion().freeing(65535).referenceDeleted().recycling();
    EXPECT_EQ(told, this->story.text());
}

TYPED_TEST(KeyedTrace, WithdrawalOfAKeyThatNobodyHolds) {
    auto const told = this->told(16, this->nothing, [this] { this->handle("bgp", 1); });
    this->story.entryNew().deletion().freeing(65535).recycling();
    EXPECT_EQ(told, this->story.text());
}

TYPED_TEST(KeyedTrace, WithdrawalOfAKeyThatOnlyAnotherClientHolds) {
    auto const told = this->told(
        16, [this] { this->request("evpn", 1); }, [this] { this->handle("bgp", 1); });
    this->story.entryHeld(15).deletion();
    EXPECT_EQ(told, this->story.text());
}

TYPED_TEST(KeyedTrace, SweepOfNoKeysAndOfOne) {
    auto const told = this->told(
        16, [this] { this->request("bgp", 1); },
        [this] {
            this->sweep("evpn");
            this->sweep("bgp");
        });
    this->story.sweep().sweep();
    this->story.entryHeld(15).addition().existing().settled(15);
    EXPECT_EQ(told, this->story.text());
}

} // namespace
