#pragma once

#include <pelo/Integers.h>
#include <valgrind/callgrind.h>

#include <stdexcept>
#include <string_view>

namespace Operations {

/// Something of which the instructions are counted: `run(count)` prepares all that it needs, and
/// then does the operation `count` times within `counted`.
struct Operation {
    std::string_view name;
    U32 count;
    void (*run)(U32 count);
};

/// Runs `work` and counts its instructions; all else that the program does is not counted.
template <class Work> void counted(Work const& work) {
    CALLGRIND_START_INSTRUMENTATION;
    work();
    CALLGRIND_STOP_INSTRUMENTATION;
}

/// Makes the compiler compute the value.
template <class Value> void keep(Value const& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

/// Ends the program when an operation has not done what is counted as its work.
inline void expect(bool holds, char const* what) {
    if (!holds) {
        throw std::logic_error(what);
    }
}

// collections.cpp
void collectionHit(U32 count);
void collectionMiss(U32 count);
void collectionInsert(U32 count);
void collectionErase(U32 count);
void collectionWalk(U32 count);
void collectionVlanHit(U32 count);

// runtime.cpp
void poolChurn(U32 count);
void notification(U32 count);
void ringRecord(U32 count);
void traceOff(U32 count);

// machine.cpp
void request(U32 count);
void release(U32 count);
void handOver(U32 count);
void startWithReferences(U32 count);

} // namespace Operations
