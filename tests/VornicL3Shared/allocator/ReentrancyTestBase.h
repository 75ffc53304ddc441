#pragma once

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/Listener.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace Test {

/// A subscriber acts within the first notification of the kind's collection that it sees.
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

    std::vector<std::unique_ptr<Listener>> listeners;
};
} // namespace Test
