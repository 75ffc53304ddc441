#pragma once

#include <deque>
#include <functional>
#include <utility>

namespace VornicCentral {

/// Lets handlers run one after the other.
///
/// A handler writes several records, and a subscriber of one of them may change a config within
/// that write. The reactor of the config then finds a handler running that has written only some of
/// its records: it leaves the change here, and the change is handled as soon as the running handler
/// is done. So every handler finds records that agree.
///
/// Cost: the test of one flag, unless something is left. Not thread-safe.
class HandlerTurns {
public:
    /// Whether a handler is running.
    bool running() const noexcept { return running_; }

    /// Runs a handler, and then what was left meanwhile, in the order in which it came. Within a
    /// handler, another one is run at once, as a part of it. After a handler that throws, the rest
    /// stays for the next turn.
    template <class Handler> void run(Handler const& handler) {
        if (running_) {
            handler();
            return;
        }
        Turn const turn(running_);
        handler();
        while (!left_.empty()) {
            auto const next = std::move(left_.front());
            left_.pop_front();
            next();
        }
    }

    /// Leaves a handler to whoever is running; it keeps alive what it needs.
    void leave(std::function<void()> handler) { left_.push_back(std::move(handler)); }

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

    bool running_ = false;
    std::deque<std::function<void()>> left_;
};

} // namespace VornicCentral
