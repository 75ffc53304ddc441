#pragma once

#include "lumlog/MsgDescriptor.h"
#include "lumlog/Record.h"
#include "lumlog/RingBuffer.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "qor/TraceHandle.h"
#include "qor/TraceHelper.h"
#include "qor/TraceStream.h"

#include <string>
#include <string_view>
#include <type_traits>

/// One statement per trace: it makes the trace line and its twin, a record in the ring buffer.
///
///     QOR_TRACE(vpTrace, 5, unit, "allocVpIndex", " index allocated is: ", index);
///
/// writes the line "allocVpIndex index allocated is: 12" when level 5 of the handle is on, and the
/// record when the process has a current ring buffer, whatever the levels, unless the message is
/// disabled there.
///
/// Text that is known when the program is compiled is a string literal or `Qor::Words`; all other
/// text is `std::string_view`, `std::string` or `Pelo::String`. A plain `char const*` does not
/// compile. The words of a call site are stored once, the first time that it records; a site whose
/// words change has a message for each wording.
///
/// `level` (0 to 63) and `unit` are constants. The pieces are evaluated only when they are needed,
/// and once. While there is a ring buffer they are needed, also for a message that is disabled
/// there: the words among them tell which message it is. An exception while a piece is printed or
/// recorded ends the process. On the event thread only, as handle and ring buffer.
///
/// Cost: one test of one word when neither the level is on nor a ring buffer is there; with a ring
/// buffer some ten to twenty nanoseconds, in which no text is made of any piece that
/// `Lumlog::ArgTraits` knows.
#define QOR_TRACE(handle, level, unit, ...)                                                        \
    QOR_TRACE_SITE(handle, level, unit, qorTraceSite.both(__VA_ARGS__);)

/// As `QOR_TRACE`, for a line and a record that are worded differently; the pieces of each stand in
/// parentheses:
///
///     QOR_TRACE_TWIN(vpTrace, 1, unit, "handleEdgeVport", (" pvKey: ", key),
///                    (" port: ", key.intf().name(), " vlan: ", key.vlan()));
#define QOR_TRACE_TWIN(handle, level, unit, op, tracePieces, ringPieces)                           \
    QOR_TRACE_SITE(handle, level, unit, {                                                          \
        if (qorTraceSite.recordWanted()) {                                                         \
            qorTraceSite.recordAfter(op) ringPieces;                                               \
        }                                                                                          \
        if (qorTraceSite.lineWanted()) {                                                           \
            qorTraceSite.lineAfter(op) tracePieces;                                                \
        }                                                                                          \
    })

/// As `QOR_TRACE`, for a record that has no trace line. The level is only noted in the record.
#define QOR_RING_ONLY(handle, level, unit, ...)                                                    \
    QOR_TRACE_SITE(handle, level, unit, {                                                          \
        if (qorTraceSite.recordWanted()) {                                                         \
            qorTraceSite.record(__VA_ARGS__);                                                      \
        }                                                                                          \
    })

/// The common part of the statements above, for their use only.
#define QOR_TRACE_SITE(handle, level, unit, ...)                                                   \
    do {                                                                                           \
        if (::Qor::TraceHandle const& qorTraceHandle = (handle); qorTraceHandle.wants(level)) {    \
            static constinit ::Lumlog::MsgDescriptor qorTraceDescriptor(unit, __LINE__, level);    \
            ::Qor::TraceSite const qorTraceSite(qorTraceHandle, qorTraceDescriptor, __func__);     \
            __VA_ARGS__                                                                            \
        }                                                                                          \
    } while (false)

namespace Qor {

/// One run through a trace statement: decides who gets it, and writes the record and the line. For
/// the statements above only.
class VORNIC_RUNTIME_API TraceSite {
public:
    TraceSite(TraceHandle const& handle, Lumlog::MsgDescriptor& descriptor,
              char const* function) noexcept
        : handle_(handle),
          descriptor_(descriptor),
          function_(function),
          ring_(Lumlog::RingBuffer::currentIfAny()) {}

    bool recordWanted() const noexcept { return ring_ != nullptr; }
    bool lineWanted() const noexcept { return handle_.isOn(descriptor_.level()); }

    template <Lumlog::Piece... Pieces> void both(Pieces&&... pieces) const noexcept {
        if (recordWanted()) {
            record(pieces...);
        }
        if (lineWanted()) [[unlikely]] {
            line(pieces...);
        }
    }

    template <Lumlog::Piece... Pieces> void record(Pieces&&... pieces) const noexcept {
        Lumlog::record(*ring_, descriptor_, recordable(pieces)...);
    }

    template <Lumlog::Piece... Pieces> void line(Pieces&&... pieces) const noexcept {
        writeLine(handle_, descriptor_, function_, pieces...);
    }

    /// What records, or prints, the operation and then the pieces that it is called with. To be
    /// called at once.
    template <Lumlog::Piece Op> auto recordAfter(Op&& op) const noexcept {
        return [this, &op](auto&&... pieces) noexcept { this->record(op, pieces...); };
    }
    template <Lumlog::Piece Op> auto lineAfter(Op&& op) const noexcept {
        return [this, &op](auto&&... pieces) noexcept { this->line(op, pieces...); };
    }

private:
    template <class... Pieces>
    [[gnu::noinline, gnu::cold]] static void
    writeLine(TraceHandle const& handle, Lumlog::MsgDescriptor const& descriptor,
              char const* function, Pieces&... pieces) noexcept {
        TraceHelper helper(handle, descriptor.level(), descriptor.unit(), descriptor.line(),
                           function);
        (helper.stream() << ... << pieces);
    }

    /// What the ring buffer can take of a piece: the piece, or the text that its printer makes.
    template <class T> static decltype(auto) recordable(T& piece) {
        if constexpr (Lumlog::Recordable<std::remove_const_t<T>>) {
            return (piece);
        } else {
            TraceStream stream;
            stream << piece;
            return std::string(stream.text());
        }
    }

    TraceHandle const& handle_;
    Lumlog::MsgDescriptor& descriptor_;
    char const* function_;
    Lumlog::RingBuffer* ring_;
};

} // namespace Qor
