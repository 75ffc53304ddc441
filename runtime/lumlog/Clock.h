#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

namespace Lumlog {

/// The time in nanoseconds since 1970 (UTC), cheap enough to be read for every record.
///
/// It counts the processor's ticks where they are known to run at one rate in every state of the
/// processor, and turns them to time with a rate that it measures itself against the system's
/// clocks: about once a second at most, a reading costs a few system calls. Elsewhere every reading
/// asks the system's clock. A reading is within some microseconds of the system's clock, follows a
/// change of the system's time within seconds, and may then go back.
///
/// One thread at a time.
class VORNIC_RUNTIME_API Clock {
public:
    Clock() noexcept;

    U64 now() noexcept {
#if defined(__x86_64__)
        U64 const elapsed = __builtin_ia32_rdtsc() - anchorTicks_;
        if (elapsed < validTicks_) [[likely]] {
            return anchorTime_ + (elapsed * nanosecondsPerTick_ >> 32);
        }
#endif
        return anchored();
    }

private:
    U64 anchored() noexcept;

    U64 anchorTicks_ = 0;        ///< the reading that `anchorTime_` belongs to
    U64 anchorTime_ = 0;         ///< nanoseconds since 1970
    U64 nanosecondsPerTick_ = 0; ///< a fraction, times 2^32
    U64 validTicks_ = 0; ///< for how long after the anchor the rate is used; 0 while there is none
    U64 firstTicks_ = 0; ///< where the measurement of the rate began
    U64 firstTime_ = 0;  ///< on the steady clock
    bool ticksAreSteady_ = false;
};

} // namespace Lumlog
