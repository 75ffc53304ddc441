#pragma once

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/Listener.h"

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Test {

/// A subscriber acts within the first notification of the kind's collection that it sees; then the
/// whole state is compared.
template <class K> class ReentrancyTestBase : public KindTest<K> {
protected:
    using Act = std::function<void()>;

    void atFirst(Qor::Entity const& watched, Act const& act) {
        auto const react = [act, done = false](Notification const& notification) mutable {
            if (notification.field == K::field && !std::exchange(done, true)) {
                act();
            }
        };
        listeners.push_back(std::make_unique<Listener>(watched, react));
    }
    void atFirstStatus(char const* name, Act const& act) { atFirst(this->world.status(name), act); }
    void atFirstReference(Act const& act) { atFirst(*this->world.references, act); }
    void atFirstWaiting(Act const& act) { atFirst(*this->world.waiting, act); }

    /// Starts anew with these clients and lets bgp request key 1; `act` happens when its status is
    /// written.
    void requestAnd(Act const& act, std::initializer_list<char const*> clients = {"bgp"}) {
        this->start({}, clients);
        atFirstStatus("bgp", act);
        this->request("bgp", 1);
    }
    /// Starts anew: key 1 holds the only index, for bgp, and evpn waits with key 2.
    void letOneWait() {
        this->start({.tableSize = 9, .reallocation = true}, {"bgp", "evpn"});
        this->request("bgp", 1);
        this->request("evpn", 2);
        this->world.capture.forget();
    }

    /// Drops the last pointer to the state machine, within a handler's notification. It stays, and
    /// watches the references, until the handler is done.
    void dropStateMachine() {
        auto const watchers = [this] {
            return this->world.references->publisher()->subscriberCount();
        };
        U32 const before = watchers();
        this->world.stop();
        EXPECT_EQ(watchers(), before);
        watchersLeft_ = before - 1;
    }
    /// That a dropped state machine went in the end.
    void expectGone() const {
        EXPECT_EQ(this->world.references->publisher()->subscriberCount(), watchersLeft_);
    }

    void expectState(std::string const& text) const {
        EXPECT_EQ(this->state(), this->filled(text));
    }
    /// The same, and that the library finds it in order.
    void expectSound(std::string const& text) const {
        expectState(text);
        this->world.sm->verify();
    }

    std::vector<std::unique_ptr<Listener>> listeners;

private:
    U32 watchersLeft_ = 0;
};

} // namespace Test
