#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "qor/Assert.h"
#include "qor/Words.h"

#include <array>
#include <cstddef>
#include <span>

namespace Lumlog {

/// The constant part of the records of one call site: source unit, line, level, the format, which
/// is one code letter (see `lumlog/Args.h`) for each piece, and the literal pieces.
///
/// A call site owns one with static storage. It gets its format, its literal pieces and a message
/// number, which is the same in all ring buffers of the process, when it records for the first
/// time. Should a call site record other literal pieces later on, it gets another descriptor for
/// them, which is kept for the life of the process.
///
/// Not thread-safe: used on the event thread only, like the rings.
class VORNIC_RUNTIME_API MsgDescriptor {
public:
    static constexpr std::size_t maxWords = 16; ///< literal pieces of a call site
    static constexpr U32 maxMessages = 1u << 16;
    static constexpr U32 noMsgId = 0xFFFFFFFFu;

    /// The unit must outlive the descriptor, as a literal does.
    constexpr MsgDescriptor(char const* unit, U32 line, U32 level) noexcept
        : unit_(unit), line_(line), level_(level) {}

    char const* unit() const noexcept { return unit_; }
    U32 line() const noexcept { return line_; }
    U32 level() const noexcept { return level_; }
    char const* format() const noexcept { return format_; }
    std::span<Qor::Words const> words() const noexcept { return {words_.data(), wordCount_}; }

    /// The number of the message, or `noMsgId`.
    U32 msgIdOrNone() const noexcept { return static_cast<U32>(msgId_); }

    /// The number of the message, from 0 on; it must have been assigned.
    U32 msgId() const noexcept {
        QOR_ASSERT(msgId_ >= 0);
        return static_cast<U32>(msgId_);
    }

    /// Whether the literal pieces are the same objects as those that the descriptor keeps; when
    /// they are not, they may still be the same text.
    template <std::size_t N>
    bool hasSameWords(std::array<Qor::Words, N> const& words) const noexcept {
        static_assert(N <= maxWords, "a call site has too many literal pieces");
        for (std::size_t at = 0; at < N; ++at) {
            if (words[at].data() != words_[at].data()) {
                return false;
            }
        }
        return true;
    }

    /// The descriptor of this call site that has these words, which gets a message number if it has
    /// none yet: this one, if it has no words so far or the same, or a further one. `format` must
    /// outlive the descriptor. The numbers count from 0; a process that needs more than
    /// `maxMessages` fails an assertion. When it throws (`std::bad_alloc`) nothing has changed.
    MsgDescriptor& withWords(char const* format, std::span<Qor::Words const> words);

private:
    void assign(char const* format, std::span<Qor::Words const> words);

    char const* unit_;
    U32 line_;
    U32 level_;
    int msgId_ = -1;
    U32 wordCount_ = 0;
    char const* format_ = "";
    MsgDescriptor* next_ = nullptr; ///< the next wording of the same call site
    std::array<Qor::Words, maxWords> words_{};
};

} // namespace Lumlog
