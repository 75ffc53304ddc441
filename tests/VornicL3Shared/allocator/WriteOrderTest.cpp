// The order of the writes of one handler, as those who watch the records see them.

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/Listener.h"

#include <map>
#include <memory>
#include <vector>

namespace {

using Test::Lines;
using Test::Notification;
using VornicCentral::VirtualPort;
using VornicCentral::VpReference;

/// Watches all records from before the start, and writes down each change with the pool as it is at
/// that moment: "bgp <1>=15, pool 16: 0-7 15", "references <1> gone, pool ...".
template <class K> class WriteOrder : public Test::KindTest<K> {
protected:
    void start(Test::Settings const& settings, std::initializer_list<char const*> clients) {
        for (char const* const name : clients) {
            this->world.client(name);
            watch(name, this->world.status(name), text<VirtualPort>);
        }
        watch("references", *this->world.references, text<VpReference>);
        watch("waiting", *this->world.waiting, text<bool>);
        this->world.settings = settings;
        this->world.start();
        events_.clear();
    }

    /// What has been written since the last call, in texts with the holes of `filled`.
    Lines written() { return std::exchange(events_, {}); }
    Lines expected(Lines lines) const {
        for (auto& line : lines) {
            line = this->filled(line);
        }
        return lines;
    }

private:
    using ValueText = std::string (*)(void const*);

    template <class V> static std::string text(void const* value) {
        V const& written = *static_cast<V const*>(value);
        if constexpr (std::is_same_v<V, VirtualPort>) {
            return "=" + Test::textOf(written);
        } else if constexpr (std::is_same_v<V, VpReference>) {
            return "=" + Test::textOf(written.vPort()) + written.references().stringValue();
        } else {
            return "";
        }
    }

    void watch(std::string const& record, Qor::Entity const& entity, ValueText valueText) {
        auto const note = [this, record, valueText](Notification const& notification) {
            events_.push_back(record + " " + change(notification, valueText) + ", pool " +
                              this->world.pool());
        };
        listeners_.push_back(std::make_unique<Test::Listener>(entity, note));
    }
    static std::string change(Notification const& notification, ValueText valueText) {
        static std::map<Pelo::FieldId, std::string> const counters{
            {263, "requests"}, {264, "failures"}, {265, "frees"}, {266, "size"}};
        if (auto const counter = counters.find(notification.field); counter != counters.end()) {
            return counter->second + "=" +
                   std::to_string(*static_cast<U32 const*>(notification.value));
        }
        EXPECT_EQ(notification.field, K::field);
        auto const& key = *static_cast<typename K::Key const*>(notification.key);
        return Test::textOf(key) +
               (notification.value == nullptr ? " gone" : valueText(notification.value));
    }

    Lines events_;
    std::vector<std::unique_ptr<Test::Listener>> listeners_;
};
TYPED_TEST_SUITE(WriteOrder, Test::AllKinds, Test::KindNames);

TYPED_TEST(WriteOrder, CountsAnAdditionThenWritesTheStatusAndLastTheReference) {
    this->start({}, {"bgp"});
    this->request("bgp", 1);
    EXPECT_EQ(this->written(),
              this->expected({"bgp requests=1, pool 16: 0-7 15", "bgp <1>=15, pool 16: 0-7 15",
                              "references <1>=15[bgp], pool 16: 0-7 15"}));
}

TYPED_TEST(WriteOrder, WritesASharedKeyIntoTheStatusAndThenTheReference) {
    this->start({}, {"bgp", "evpn"});
    this->request("bgp", 1);
    this->written();
    this->request("evpn", 1);
    EXPECT_EQ(this->written(), this->expected({"evpn <1>=15, pool 16: 0-7 15",
                                               "references <1>=15[bgp, evpn], pool 16: 0-7 15"}));
}

TYPED_TEST(WriteOrder, WritesNothingForAKeyThatIsRequestedAgain) {
    this->start({}, {"bgp"});
    this->request("bgp", 1);
    this->written();
    this->handle("bgp", 1);
    EXPECT_EQ(this->written(), Lines{});
}

TYPED_TEST(WriteOrder, CountsAFailureThenWritesTheInvalidIndexAndLastMakesTheKeyWait) {
    this->start({.tableSize = 8, .reallocation = true}, {"bgp"});
    this->request("bgp", 1);
    EXPECT_EQ(
        this->written(),
        this->expected({"bgp failures=1, pool 8: 0-7", "bgp <1>=65535, pool 8: 0-7",
                        "references <1>=65535[bgp], pool 8: 0-7", "waiting <1>, pool 8: 0-7"}));
}

TYPED_TEST(WriteOrder, TakesTheNameOfOneOfTwoOutOfTheReferenceFirst) {
    this->start({}, {"bgp", "evpn"});
    this->request("bgp", 1);
    this->request("evpn", 1);
    this->written();
    this->withdraw("bgp", 1);
    EXPECT_EQ(this->written(),
              this->expected({"references <1>=15[evpn], pool 16: 0-7 15",
                              "bgp <1> gone, pool 16: 0-7 15", "bgp frees=1, pool 16: 0-7 15"}));
}

TYPED_TEST(WriteOrder, DeletesTheReferenceThenFreesThenDeletesTheStatusAndLastCounts) {
    this->start({}, {"bgp"});
    this->request("bgp", 1);
    this->written();
    this->withdraw("bgp", 1);
    EXPECT_EQ(this->written(),
              this->expected({"references <1> gone, pool 16: 0-7 15", "bgp <1> gone, pool 16: 0-7",
                              "bgp frees=1, pool 16: 0-7"}));
}

TYPED_TEST(WriteOrder, IsTheSameWhenNobodyWaitsForTheIndex) {
    this->start({.reallocation = true}, {"bgp"});
    this->request("bgp", 1);
    this->written();
    this->withdraw("bgp", 1);
    EXPECT_EQ(this->written(),
              this->expected({"references <1> gone, pool 16: 0-7 15", "bgp <1> gone, pool 16: 0-7",
                              "bgp frees=1, pool 16: 0-7"}));
}

TYPED_TEST(WriteOrder, HandsTheIndexOverBetweenTheReferenceAndTheStatus) {
    this->start({.tableSize = 9, .reallocation = true}, {"bgp", "evpn"});
    this->request("bgp", 1);
    this->request("evpn", 2);
    this->written();
    this->withdraw("bgp", 1);
    EXPECT_EQ(
        this->written(),
        this->expected({"references <1> gone, pool 9: 0-8", "evpn <2>=8, pool 9: 0-8",
                        "references <2>=8[evpn], pool 9: 0-8", "waiting <2> gone, pool 9: 0-8",
                        "bgp <1> gone, pool 9: 0-8", "bgp frees=1, pool 9: 0-8"}));
}

TYPED_TEST(WriteOrder, DoesNotCountTheReleaseOfAWaitingKey) {
    this->start({.tableSize = 8, .reallocation = true}, {"bgp"});
    this->request("bgp", 1);
    this->written();
    this->withdraw("bgp", 1);
    EXPECT_EQ(this->written(),
              this->expected({"references <1> gone, pool 8: 0-7", "waiting <1> gone, pool 8: 0-7",
                              "bgp <1> gone, pool 8: 0-7"}));
}

TYPED_TEST(WriteOrder, WritesNothingForAKeyThatTheClientDoesNotHold) {
    this->start({}, {"bgp", "evpn"});
    this->request("evpn", 1);
    this->written();
    this->handle("bgp", 1);
    this->handle("bgp", 2);
    EXPECT_EQ(this->written(), Lines{});
}

TYPED_TEST(WriteOrder, WritesTheTableSizeBeforeTheFirstKey) {
    this->start({}, {"bgp"});
    this->request("bgp", 1);
    this->world.stop();
    this->world.status("bgp").vpTableSizeIs(0);
    this->world.references->template delAll<TypeParam>();
    this->world.status("bgp").template delAll<TypeParam>();
    this->written();
    this->world.start();
    EXPECT_EQ(this->written(), this->expected({"bgp size=16, pool none", //
                                               "bgp requests=2, pool none", "bgp <1>=15, pool none",
                                               "references <1>=15[bgp], pool none"}));
}

} // namespace
