#pragma once

#include "qor/Assert.h"
#include "qor/Trace.h"

/// The unit's traces and assertions, with its name and its trace handle filled in.
///
/// VP_TRACE(level, operation, pieces...) is one statement for a trace line and its ring-buffer
/// twin; VP_TRACE_TWIN gives the pieces of the two apart, each in parentheses; VP_RING writes the
/// ring-buffer record alone.

namespace VornicCentral {

inline constexpr char const* vpSourceUnit = "/src/VornicL3Shared/VornicL3VpIndexAllocator";

/// Trace levels of the unit, as bit positions of the handle's mask.
inline constexpr U32 entryLevel = 1;    ///< entry of an operation or handler: its name and its key
inline constexpr U32 stepLevel = 5;     ///< each decision and step
inline constexpr U32 handOverLevel = 7; ///< the hand-over of an index to one client

/// The handle "VornicVpIndexAllocator", built on first use with all levels off. Defined here so
/// that a trace that is off costs no call.
inline Qor::TraceHandle& vpTraceHandle() {
    static Qor::TraceHandle handle("VornicVpIndexAllocator", false);
    return handle;
}

} // namespace VornicCentral

#define VP_TRACE(level, ...) QOR_TRACE(vpTraceHandle(), level, vpSourceUnit, __VA_ARGS__)
#define VP_TRACE_TWIN(level, operation, tracePieces, ringPieces)                                   \
    QOR_TRACE_TWIN(vpTraceHandle(), level, vpSourceUnit, operation, tracePieces, ringPieces)
#define VP_RING(level, ...) QOR_RING_ONLY(vpTraceHandle(), level, vpSourceUnit, __VA_ARGS__)
#define VP_ASSERT(condition, text, signature)                                                      \
    QOR_ASSERT_AS(condition, text, vpSourceUnit, signature)
