#include "agent/KeptAgent.h"
#include "agent/RunVpagent.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace VpAgentTest {
namespace {

using namespace VornicCentral;
using VpAgent::Client;
using VpAgent::Database;

/// Changes a database at random, in a small world so that keys and names come back.
class RandomChanges {
public:
    explicit RandomChanges(unsigned seed) : random_(seed) {}

    void change(Database& database) {
        switch (below(12)) {
        case 0:
            database.add(name());
            break;
        case 1:
            if (Client const* const client = database.find(name())) {
                database.remove(*client);
            }
            break;
        case 2:
            retire(database);
            break;
        default:
            changeRecord(database);
        }
    }

    unsigned below(unsigned bound) {
        return std::uniform_int_distribution<unsigned>(0, bound - 1)(random_);
    }

private:
    std::string name() {
        return std::string(1, static_cast<char>('a' + below(5))) + " \xC3\xA9'\"";
    }

    void retire(Database& database) {
        if (Client const* const client = database.find(name());
            client != nullptr && below(3) == 0) {
            database.remove(*client);
            database.forget(*client);
        }
    }

    void changeRecord(Database& database) {
        Client const* const client = database.find(name());
        switch (below(5)) {
        case 0:
            if (client != nullptr) {
                changeKey(*client->config, true);
            }
            break;
        case 1:
            if (client != nullptr) {
                changeKey(*client->status, vPort());
                client->status->vpAllocRequestsInc(below(3));
                client->status->vpTableSizeIs(below(100));
            }
            break;
        case 2:
            changeKey(*database.references(), reference());
            break;
        case 3:
            changeKey(*database.waiting(), true);
            break;
        default:
            changeKey(*database.boot(), vPort());
        }
    }

    VirtualPort vPort() { return VirtualPort(static_cast<U16>(below(65536))); }

    VpReference reference() {
        VpReference reference(vPort());
        for (unsigned names = below(7); names != 0; --names) {
            reference.referenceIs(Pelo::String(name()), true);
        }
        return reference;
    }

    template <class Record> void changeKey(Record& record, typename Record::Value const& value) {
        unsigned const order = below(kindCount);
        forEachKind([&](auto kind) {
            using Kind = decltype(kind);
            if (VornicCentral::kindOrder<Kind> != order) {
                return;
            }
            auto const key = keyOf(kind);
            unsigned const what = below(40);
            if (what == 0) {
                record.template delAll<Kind>();
            } else if (what < 16) {
                record.template del<Kind>(key);
            } else {
                record.template is<Kind>(key, value);
            }
        });
    }

    template <class Kind> typename Kind::Key keyOf(Kind) {
        static char const* const addresses[] = {"10.0.0.1@1", "10.0.0.1@2", "2001:db8::1@1",
                                                "10.0.0.1@4294967295/1/255"};
        static char const* const interfaces[] = {"Ethernet1/1", "Port 7", "\xE2\x82\xAC", "x:9"};
        std::string text;
        if constexpr (std::is_same_v<typename Kind::Key, RemoteVtepKey>) {
            text = addresses[below(4)];
        } else if constexpr (std::is_same_v<typename Kind::Key, Bridging::VlanId>) {
            text = std::to_string(below(6) * 819);
        } else {
            text = interfaces[below(4)];
            text += std::is_same_v<typename Kind::Key, PortVlanKey> ? ":" + std::to_string(below(3))
                                                                    : "";
        }
        return *Kind::Key::parse(text);
    }

    std::mt19937 random_;
};

class StateFileOrder : public testing::TestWithParam<unsigned> {};

TEST_P(StateFileOrder, SurvivesAnyChangesOfAnyCommit) {
    TemporaryFolder const folder;
    auto const path = folder.path() / "state";
    RandomChanges changes(GetParam());
    auto kept = std::make_unique<KeptAgent>(path);
    for (int round = 0; round < 60; ++round) {
        for (unsigned count = changes.below(25); count != 0; --count) {
            changes.change(kept->database());
        }
        kept->commit();
        if (changes.below(2) == 0) {
            std::string const before = kept->content();
            kept = nullptr;
            kept = std::make_unique<KeptAgent>(path);
            ASSERT_EQ(kept->content(), before) << "round " << round;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, StateFileOrder, testing::Range(1u, 13u));

Bridging::VlanId vlanId(int number) { return Bridging::VlanId(static_cast<U16>(number)); }

TEST(StateFile, PutsAKeyThatCameBackWithinOneCommitLast) {
    TemporaryFolder const folder;
    auto const path = folder.path() / "state";
    {
        KeptAgent kept(path);
        auto& waiting = *kept.database().waiting();
        for (int const vlan : {1, 2, 3, 4}) {
            waiting.vlanVportIs(vlanId(vlan), true);
        }
        kept.commit();
        for (int const vlan : {3, 1}) {
            waiting.vlanVportDel(vlanId(vlan));
        }
        for (int const vlan : {1, 5, 3}) {
            waiting.vlanVportIs(vlanId(vlan), true);
        }
        kept.commit();
    }
    KeptAgent kept(path);
    std::string order;
    VpAgent::forEachMember(kept.database().waiting()->vlanVport(),
                           [&](auto key, bool) { order += key.stringValue(); });
    EXPECT_EQ(order, "24153");
}

TEST(StateFile, DropsWhatWasNotCommitted) {
    TemporaryFolder const folder;
    auto const path = folder.path() / "state";
    std::string before;
    {
        KeptAgent kept(path);
        kept.database().add("a");
        kept.commit();
        before = kept.content();
        kept.database().add("b");
    }
    EXPECT_EQ(KeptAgent(path).content(), before);
}

TEST(StateFile, GivesAClientThatReturnedItsConfigBackAndARetiredOneNothing) {
    TemporaryFolder const folder;
    auto const path = folder.path() / "state";
    Bridging::VlanId const vlan(7);
    {
        KeptAgent kept(path);
        for (char const* const name : {"a", "b"}) {
            Client const& client = kept.database().add(name);
            client.config->vlanVportIs(vlan, true);
            client.status->vlanVportIs(vlan, VirtualPort(9));
        }
        kept.commit();
        kept.database().remove(*kept.database().find("a"));
        kept.database().remove(*kept.database().find("b"));
        kept.database().forget(*kept.database().find("b"));
        kept.commit();
    }
    KeptAgent kept(path);
    EXPECT_EQ(kept.database().find("b"), nullptr);
    EXPECT_TRUE(kept.database().add("a").config->vlanVportHas(vlan));
    EXPECT_FALSE(kept.database().add("b").config->vlanVportHas(vlan));
    EXPECT_FALSE(kept.database().add("b").status->vlanVportHas(vlan));
}

TEST(StateFile, WritesNothingWhenNothingChanged) {
    TemporaryFolder const folder;
    auto const path = folder.path() / "state";
    KeptAgent kept(path);
    kept.database().add("a");
    kept.commit();
    std::string const log = bytesOf(path.string() + "-wal");
    kept.commit();
    kept.database().add("a");
    kept.commit();
    EXPECT_EQ(bytesOf(path.string() + "-wal"), log);
    EXPECT_GT(log.size(), 4096u);
}

} // namespace
} // namespace VpAgentTest
