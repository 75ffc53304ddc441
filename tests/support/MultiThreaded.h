#pragma once

#include "pelo/ThreadControl.h"

namespace Support {

/// Switches the thread-control flag on for its life. Threads are started and joined within it.
class MultiThreaded {
public:
    MultiThreaded() { Pelo::ThreadControl::multiThreadedIs(true); }
    ~MultiThreaded() { Pelo::ThreadControl::multiThreadedIs(false); }
    MultiThreaded(MultiThreaded const&) = delete;
    MultiThreaded& operator=(MultiThreaded const&) = delete;
};

} // namespace Support
