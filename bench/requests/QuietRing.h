#pragma once

#include "lumlog/RingBuffer.h"

#include <string>

namespace Bench {

/// For its life the process has no current ring: for setups, which are not measured.
class QuietRing {
public:
    QuietRing() : ring_(Lumlog::RingBuffer::current()) { Lumlog::RingBuffer::currentIs(nullptr); }
    ~QuietRing() { Lumlog::RingBuffer::currentIs(ring_); }
    QuietRing(QuietRing const&) = delete;
    QuietRing& operator=(QuietRing const&) = delete;

private:
    Lumlog::RingBuffer* ring_;
};

} // namespace Bench
