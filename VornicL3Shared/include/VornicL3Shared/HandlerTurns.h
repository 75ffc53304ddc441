#pragma once

#include "VornicL3Shared/Export.h"
#include "pelo/NoThrow.h"

#include <deque>
#include <functional>
#include <utility>

namespace VornicCentral {

/// Lets handlers run one after the other.
///
/// A handler writes several records, and a subscriber of one of them may change a config within
/// that write. The reactor of the config then finds a handler running that has written only some of
/// its records: it leaves the change here, and the change is handled as soon as the running handler
/// is done. What needs records that agree with the configs, as the release of an index does, is
/// left until no change is left. So every handler finds records that agree.
///
/// Cost: the test of one flag, unless something is left. Not thread-safe.
class VORNICL3SHARED_API HandlerTurns {
public:
    /// Whether a handler is running.
    bool running() const noexcept { return running_; }
    /// Whether a handler is running and something waits until it is done.
    bool somethingLeft() const noexcept {
        return running_ && !(left_.empty() && releases_.empty());
    }

    /// Runs a handler, and then what was left meanwhile: changes in the order in which they came,
    /// and, when there are none, releases in theirs. Within a handler, another one is run at once,
    /// as a part of it. After a handler that throws, the rest stays for the next turn.
    template <class Handler> void run(Handler const& handler) {
        if (running_) {
            handler();
            return;
        }
        Turn const turn(running_);
        handler();
        while (runNext(left_) || runNext(releases_)) {
        }
    }

    /// Leaves a change of `owner`, or a release, to whoever is running (when nobody is, it waits
    /// until somebody runs); the handler keeps alive what it needs, but not the owner of the turns,
    /// which would then outlive everybody else when no turn follows. Like a reactor it must not
    /// throw (see `Pelo::runNoThrow`): whoever runs it did not ask for it.
    template <class Handler> void leave(void const* owner, Handler handler) {
        push(left_, owner, std::move(handler));
    }
    template <class Handler> void leaveRelease(Handler handler) {
        push(releases_, nullptr, std::move(handler));
    }

    /// Drops what an owner has left, because its construction failed.
    void forget(void const* owner) noexcept {
        std::erase_if(left_, [owner](Left const& left) { return left.owner == owner; });
    }

private:
    class Turn {
    public:
        explicit Turn(bool& running) noexcept : running_(running) { running_ = true; }
        ~Turn() { running_ = false; }
        Turn(Turn const&) = delete;
        Turn& operator=(Turn const&) = delete;

    private:
        bool& running_;
    };

    struct Left {
        void const* owner;
        std::function<void()> handler;
    };
    using Queue = std::deque<Left>;

    template <class Handler> static void push(Queue& queue, void const* owner, Handler handler) {
        queue.push_back({owner, std::move(handler)});
    }

    /// Runs the first of a queue; false when there is none.
    static bool runNext(Queue& queue) {
        if (queue.empty()) {
            return false;
        }
        auto const next = std::move(queue.front().handler);
        queue.pop_front();
        Pelo::runNoThrow(next);
        return true;
    }

    bool running_ = false;
    Queue left_;
    Queue releases_;
};

} // namespace VornicCentral
