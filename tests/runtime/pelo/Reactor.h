#pragma once

#include "pelo/Publisher.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Support {

/// What reactors were told, in order.
using Calls = std::vector<std::string>;

/// Hears of changes under keys that are numbers: writes down `NAME FIELD.KEY=VALUE` and then does
/// what the test wants. An attribute without a key and a deletion print as `FIELD` without them.
class Reactor {
public:
    using Action = std::function<void()>;

    Reactor(Calls& calls, std::string name, Action action = {})
        : subscriber(this, &Reactor::dispatch),
          calls_(calls),
          name_(std::move(name)),
          action_(std::move(action)) {}

    Pelo::Subscriber subscriber;

private:
    static void dispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId field,
                         void const* key, void const* value) noexcept {
        auto const& self = subscriber->owner<Reactor>();
        self.calls_.push_back(self.name_ + ' ' + std::to_string(field) + printed(".", key) +
                              printed("=", value));
        if (Action const action = self.action_) { // a copy: the reactor may be destroyed
            action();
        }
    }

    static std::string printed(char const* before, void const* number) {
        return number == nullptr ? std::string()
                                 : before + std::to_string(*static_cast<int const*>(number));
    }

    Calls& calls_;
    std::string name_;
    Action action_;
};

/// Publishes a change under a number.
inline void publish(Pelo::Publisher& publisher, Pelo::FieldId field, int key) {
    publisher.publishChangeRecursive(field, &key, nullptr, &Pelo::keysEqual<int>);
}

} // namespace Support
