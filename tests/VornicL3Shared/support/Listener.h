#pragma once

#include "pelo/Publisher.h"
#include "qor/Entity.h"

#include <functional>
#include <utility>
#include <vector>

namespace Test {

/// One notification as a subscriber sees it.
struct Notification {
    Pelo::FieldId field;
    void const* key;
    void const* value;
};

/// Subscribes to an entity, counts its notifications, and runs a function in each.
class Listener {
public:
    explicit Listener(Qor::Entity const& watched,
                      std::function<void(Notification const&)> react = {})
        : react_(std::move(react)), subscriber_(this, &dispatch) {
        watched.publisher()->subscriberAdd(&subscriber_, false);
    }

    /// The field numbers of the notifications since the last call, in order.
    std::vector<Pelo::FieldId> fields() { return std::exchange(fields_, {}); }

    void leave() { subscriber_.publisher()->subscriberRemove(&subscriber_); }

private:
    static void dispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId field,
                         void const* key, void const* value) noexcept {
        auto& self = subscriber->owner<Listener>();
        self.fields_.push_back(field);
        if (self.react_) {
            self.react_({field, key, value});
        }
    }

    std::function<void(Notification const&)> react_;
    std::vector<Pelo::FieldId> fields_;
    Pelo::Subscriber subscriber_;
};

} // namespace Test
