// Everything that a subscriber of any record may do to records, allocators and the state machine,
// in each notification of each change, alone and followed by something else in the next one.

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/References.h"
#include "qor/Sinks.h"
#include "support/Random.h"
#include "support/Sanitizers.h"

#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace {

using VornicCentral::VpIndexAllocator;
using VornicCentral::VpIndexAllocatorDirSm;
using VornicCentral::VpIndexConfig;
using VornicCentral::VpIndexStatus;

/// The objects of the library that are alive, of every type.
U64 liveObjects() {
    return VpIndexAllocatorDirSm::allocationTracker().live() +
           VpIndexAllocator::allocationTracker().live() +
           VpIndexConfig::allocationTracker().live() + VpIndexStatus::allocationTracker().live() +
           VornicCentral::VpReferenceList::allocationTracker().live() +
           VornicCentral::VpInvalidReferenceList::allocationTracker().live() +
           VornicCentral::VxlanBootStatus::allocationTracker().live() +
           VornicCentral::VpIndexConfigDir::allocationTracker().live() +
           VornicCentral::VpIndexStatusDir::allocationTracker().live();
}

/// A world in which bgp holds key 1, evpn holds key 2, the table is full and evpn waits with key 3;
/// nobody has come back for key 4, which waits too. Somebody listens to everything.
template <class K> class Scene : public Test::KindTest<K> {
public:
    using Base = Test::KindTest<K>;
    using Base::handle;
    using Base::sweep;
    using Base::world;

    using Step = std::function<void(Scene&)>;
    struct Named {
        char const* name;
        Step step;
    };

    Scene() {
        world.references->template is<K>(Test::numbered<K>(4).key,
                                         Test::referenceOf(65535, {"former"}));
        this->start({.tableSize = 10, .reallocation = true, .ringSize = 1 << 12}, {"bgp", "evpn"});
        this->request("bgp", 1);
        this->request("evpn", 2);
        this->request("evpn", 3);
        listenToAll();
    }
    void TestBody() override {}

    /// A client that has gone neither requests nor withdraws anything; and nobody withdraws what no
    /// allocator would take notice of, because a key that waits must be requested.
    void request(char const* name, U32 number) {
        if (world.configDir->vpIndexConfigHas(name)) {
            Base::request(name, number);
        }
    }
    void withdraw(char const* name, U32 number) {
        if (!unserved && world.configDir->vpIndexConfigHas(name)) {
            Base::withdraw(name, number);
        }
    }

    /// Whether no key of the client waits, or may.
    bool onlyHoldsKey1(char const* name) const {
        return world.config(name).memberCount() == 1 &&
               world.config(name).template has<K>(Test::numbered<K>(1).key);
    }

    /// Does something that no reactor notices, and no listener. The reactors are told first
    /// afterwards, as before.
    void unnoticed(Step const& step) {
        listeners.clear();
        world.sm->hasNotificationActiveIs(false);
        step(*this);
        world.sm->hasNotificationActiveIs(true);
        listenToAll();
    }

    void listenToAll() {
        auto const listen = [this](Qor::Entity const& entity) {
            listeners.push_back(std::make_unique<Test::Listener>(
                entity, [this](Test::Notification const&) { told(); }));
        };
        for (char const* const name : {"bgp", "evpn"}) {
            if (world.configDir->vpIndexConfigHas(name)) {
                listen(world.config(name));
            }
            listen(world.status(name));
        }
        listen(*world.references);
        listen(*world.waiting);
        listen(*world.configDir);
        listen(*world.statusDir);
    }

    /// Takes care of what happens in the so-manieth notification, if anything.
    void told() {
        U32 const call = calls++;
        for (auto const& [at, step] : std::vector<std::pair<U32, Step>>(cues)) {
            if (at == call) {
                step(*this);
            }
        }
    }

    /// What holds between handlers for clients that all have allocators, and nobody interfered with
    /// them; empty if all of it does.
    std::string fault() const {
        U32 indices = 0;
        std::string found;
        for (typename VornicCentral::VpReferenceList::Collection<K>::Iterator it(
                 world.references->template collection<K>());
             it; it.advance()) {
            indices += it.value().vPort().valid() ? 1u : 0u;
            bool const waits = world.waiting->template has<K>(it.key());
            if (waits == it.value().vPort().valid()) {
                found += " waiting:" + Test::textOf(it.key());
            }
        }
        if (indices + VpIndexAllocatorDirSm::maxSystemSourceVp_ !=
            world.sm->vpBitmap()->numBitsInSetState()) {
            found += " pool";
        }
        for (char const* const name : {"bgp", "evpn"}) {
            VpIndexConfig const& config = world.config(name);
            VpIndexStatus const& status = world.status(name);
            if (config.memberCount() != status.memberCount()) {
                found += std::string(" status of ") + name;
            }
            for (typename VpIndexConfig::Collection<K>::Iterator it(config.collection<K>()); it;
                 it.advance()) {
                auto const reference = world.references->template get<K>(it.key());
                if (!reference.referenceHas(name) || !status.has<K>(it.key()) ||
                    reference.vPort() != status.get<K>(it.key())) {
                    found += " " + Test::textOf(it.key());
                }
            }
        }
        return found;
    }

    std::vector<std::unique_ptr<Test::Listener>> listeners;
    std::vector<std::pair<U32, Step>> cues;
    U32 calls = 0;
    bool interfered = false; ///< not every change may have been handled
    bool unserved = false;   ///< somebody removed what would handle a change
};

/// A third client appears, if it is not there. A name gets its records once: its allocator would
/// refuse others.
template <class K> void newClient(Scene<K>& scene) {
    auto const config = VornicCentral::vpIndexConfigFactory("ospf");
    config->template is<K>(Test::numbered<K>(1).key, true);
    config->template is<K>(Test::numbered<K>(5).key, true);
    if (!scene.world.statusDir->vpIndexStatusHas("ospf")) {
        scene.world.statusDir->vpIndexStatusIs("ospf", VornicCentral::vpIndexStatusFactory("ospf"));
    }
    if (!scene.world.configDir->vpIndexConfigHas("ospf")) {
        scene.world.configDir->vpIndexConfigIs("ospf", config);
    }
}

template <class K> void lookForWaiting(VpIndexAllocatorDirSm& stateMachine) {
    if constexpr (std::is_same_v<K, VornicCentral::RemoteVport>) {
        stateMachine.handleInvalidRemoteVport();
    } else if constexpr (std::is_same_v<K, VornicCentral::MlagRemoteVport>) {
        stateMachine.handleInvalidMlagRemoteVport();
    } else if constexpr (std::is_same_v<K, VornicCentral::EdgeVport>) {
        stateMachine.handleInvalidEdgeVport();
    } else if constexpr (std::is_same_v<K, VornicCentral::VlanVport>) {
        stateMachine.handleInvalidVlanVport();
    } else {
        stateMachine.handleInvalidEFilterDisableVport();
    }
}

/// What the outside does, and the owner.
template <class K> std::vector<typename Scene<K>::Named> changes() {
    using S = Scene<K>;
    return {
        {"a held key is shared", [](S& s) { s.request("bgp", 2); }},
        {"a waiting key is shared", [](S& s) { s.request("bgp", 3); }},
        {"a new key waits", [](S& s) { s.request("bgp", 5); }},
        {"a stale key is requested", [](S& s) { s.request("bgp", 4); }},
        {"an index is handed over", [](S& s) { s.withdraw("bgp", 1); }},
        {"a client withdraws and hands over to itself", [](S& s) { s.withdraw("evpn", 2); }},
        {"a waiting key is withdrawn", [](S& s) { s.withdraw("evpn", 3); }},
        {"a client appears", [](S& s) { newClient<K>(s); }},
        {"a client goes", [](S& s) { s.world.configDir->vpIndexConfigDel("bgp"); }},
        {"a config is emptied", [](S& s) { s.world.config("evpn").template delAll<K>(); }},
        {"stale entries are cleared", [](S& s) { s.world.sm->clearStaleEntries(); }},
        {"the owner sweeps",
         [](S& s) {
             s.unnoticed([](S& t) { t.request("bgp", 5); });
             s.sweep("bgp");
         }},
        {"the owner handles a key",
         [](S& s) {
             s.unnoticed([](S& t) { t.withdraw("evpn", 2); });
             s.handle("evpn", 2);
         }},
        {"the owner asks for the clients",
         [](S& s) {
             s.unnoticed(newClient<K>);
             s.world.sm->handleVpIndexConfig();
         }},
        {"the owner makes an allocator",
         [](S& s) {
             s.unnoticed(newClient<K>);
             auto const& sm = s.world.sm;
             sm->vpIndexAllocatorIs(sm.get(), sm->vpIndexConfigDir()->vpIndexConfig("ospf"),
                                    sm->vpIndexStatusDir()->vpIndexStatus("ospf"),
                                    sm->vpReference(), false);
         }},
        {"the owner initializes an allocator by name",
         [](S& s) {
             s.unnoticed([](S& t) { t.request("bgp", 5); });
             Pelo::Ptr<VpIndexAllocator> const allocator = s.world.sm->vpIndexAllocator("bgp");
             allocator->handleInitialized();
         }},
        {"the owner looks for waiting keys",
         [](S& s) {
             s.unnoticed([](S& t) { t.world.waiting->template delAll<K>(); });
             lookForWaiting<K>(*s.world.sm);
         }},
        {"the owner releases an index",
         [](S& s) {
             s.unnoticed([](S& t) {
                 t.withdraw("bgp", 1);
                 t.world.references->template del<K>(Test::numbered<K>(1).key);
                 t.world.status("bgp").template del<K>(Test::numbered<K>(1).key);
             });
             s.world.sm->recycleOrFreeVpIndex(9);
         }},
        {"the state machine starts anew",
         [](S& s) {
             s.interfered = true; // a client without an allocator as yet withdraws unheard
             s.world.start();
         }},
        {"the state machine goes", [](S& s) { s.world.stop(); }},
    };
}

/// What a subscriber does.
template <class K> std::vector<typename Scene<K>::Named> reactions() {
    using S = Scene<K>;
    auto const interfere = [](auto const& step) {
        return [step](S& s) {
            s.interfered = true;
            s.unserved = true;
            step(s);
        };
    };
    return {
        {"requests a key", [](S& s) { s.request("bgp", 6); }},
        {"requests a held key", [](S& s) { s.request("evpn", 1); }},
        {"withdraws the held key", [](S& s) { s.withdraw("bgp", 1); }},
        {"withdraws the waiting key", [](S& s) { s.withdraw("evpn", 3); }},
        {"makes a client", [](S& s) { newClient<K>(s); }},
        {"clears stale entries",
         [](S& s) {
             if (s.world.sm) {
                 s.world.sm->clearStaleEntries();
             }
         }},
        {"subscribes to everything", [](S& s) { s.listenToAll(); }},
        {"destroys every listener", [](S& s) { s.listeners.clear(); }},
        {"drops the state machine", interfere([](S& s) { s.world.stop(); })},
        {"drops an allocator", interfere([](S& s) {
             if (s.world.sm) {
                 s.world.sm->vpIndexAllocatorDel("bgp");
             }
         })},
        {"drops every allocator", interfere([](S& s) {
             if (s.world.sm) {
                 s.world.sm->vpIndexAllocatorDelAll();
             }
         })},
        {"drops the other client's allocator and config", interfere([](S& s) {
             if (s.world.sm) {
                 s.world.sm->vpIndexAllocatorDel("bgp");
             }
             if (s.world.configDir->vpIndexConfigHas("bgp") && s.onlyHoldsKey1("bgp")) {
                 s.world.configDir->vpIndexConfigDel("bgp");
             }
         })},
        {"switches the reactors off and on", interfere([](S& s) {
             if (s.world.sm) {
                 s.world.sm->hasNotificationActiveIs(false);
                 s.world.sm->hasNotificationActiveIs(true);
             }
         })},
        {"runs another state machine",
         [](S&) {
             Scene<K> other;
             other.withdraw("bgp", 1);
             EXPECT_EQ(other.fault(), "");
         }},
    };
}

/// Tells which trial is under way when an assertion ends the process.
class TrialName {
public:
    TrialName() {
        Qor::assertionSinkIs([this](Qor::AssertionFailure const& failure) {
            std::cerr << text << ": " << failure.text << '\n';
        });
    }
    ~TrialName() { Qor::assertionSinkIs({}); }
    TrialName(TrialName const&) = delete;
    TrialName& operator=(TrialName const&) = delete;
    std::string text;
};

template <class K> class ReentryMatrix : public testing::Test {
protected:
    using S = Scene<K>;
    using Named = typename S::Named;

    /// Runs one change with what happens within it; gives the number of its notifications.
    U32 run(Named const& change, std::vector<std::pair<U32, Named>> const& within) {
        trial_.text = change.name;
        std::optional<S> scene(std::in_place);
        for (auto const& [call, reaction] : within) {
            trial_.text += "; at " + std::to_string(call) + " " + reaction.name;
            scene->cues.emplace_back(call, reaction.step);
        }
        SCOPED_TRACE(trial_.text);
        U64 const before = liveBefore_;
        change.step(*scene);
        U32 const calls = scene->calls;
        scene->cues.clear();
        if (!scene->interfered && scene->world.sm &&
            scene->world.configDir->vpIndexConfigHas("bgp")) {
            EXPECT_EQ(scene->fault(), "");
        }
        scene.reset();
        EXPECT_EQ(liveObjects(), before);
        return calls;
    }

    U64 liveBefore_ = liveObjects();
    TrialName trial_;
};
TYPED_TEST_SUITE(ReentryMatrix, Test::AllKinds, Test::KindNames);

TYPED_TEST(ReentryMatrix, AnythingAfterAnythingLeavesWhatIsPromised) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    auto const allChanges = changes<TypeParam>();
    auto const allReactions = reactions<TypeParam>();
    for (U32 round = 0; round < 150 && !this->HasFailure(); ++round) {
        auto const& change = allChanges[random.below(static_cast<U32>(allChanges.size()))];
        std::vector<std::pair<U32, typename Scene<TypeParam>::Named>> within;
        for (U32 cue = 0; cue < 3; ++cue) {
            U32 const reaction = random.below(static_cast<U32>(allReactions.size()));
            within.emplace_back(random.below(8), allReactions[reaction]);
        }
        this->run(change, within);
    }
}

/// All of it, for a remote kind and one that is not: the others have the same code.
using TwoKinds = testing::Types<VornicCentral::RemoteVport, VornicCentral::VlanVport>;
template <class K> class WholeReentryMatrix : public ReentryMatrix<K> {};
TYPED_TEST_SUITE(WholeReentryMatrix, TwoKinds, Test::KindNames);

TYPED_TEST(WholeReentryMatrix, AnythingWithinAnyNotificationLeavesWhatIsPromised) {
    constexpr U32 step = Support::threadSanitizer() ? 4 : 1; // there is no second thread
    U32 trials = 0;
    for (auto const& change : changes<TypeParam>()) {
        U32 const calls = this->run(change, {});
        for (auto const& reaction : reactions<TypeParam>()) {
            for (U32 call = 0; call < calls && !this->HasFailure(); call += step) {
                this->run(change, {{call, reaction}});
                ++trials;
            }
        }
    }
    EXPECT_GT(trials, 600u / step);
}

} // namespace
