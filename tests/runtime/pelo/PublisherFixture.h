#pragma once

#include "runtime/pelo/Reactor.h"

#include <gtest/gtest.h>

namespace Support {

/// A publisher, and three who may subscribe.
class PublisherFixture : public testing::Test {
protected:
    void add(Reactor& reactor, bool atFront = false) {
        publisher.subscriberAdd(&reactor.subscriber, atFront);
    }
    void remove(Reactor& reactor) { publisher.subscriberRemove(&reactor.subscriber); }

    /// What the subscribers hear of one change under `key`.
    Calls heard(int key) {
        calls.clear();
        publish(publisher, 131, key);
        return calls;
    }

    Calls calls;
    Pelo::Publisher publisher;
    Reactor a{calls, "a"};
    Reactor b{calls, "b"};
    Reactor c{calls, "c"};
};

} // namespace Support
