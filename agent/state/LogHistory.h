#pragma once

#include "pelo/Integers.h"

#include <deque>
#include <string>
#include <string_view>

namespace VpAgent {

/// The log messages of this run that are worth looking back to: the last 1,000, and how many there
/// were.
class LogHistory {
public:
    static constexpr std::size_t room = 1000;

    struct Message {
        U64 number = 0; ///< the first of the run is 1
        std::string id;
        U32 severity = 0;
        std::string text;
    };

    void add(std::string_view id, U32 severity, std::string_view text) {
        if (messages_.size() == room) {
            messages_.pop_front();
        }
        messages_.push_back({++count_, std::string(id), severity, std::string(text)});
    }

    /// The oldest first.
    std::deque<Message> const& messages() const noexcept { return messages_; }
    U64 count() const noexcept { return count_; }

private:
    std::deque<Message> messages_;
    U64 count_ = 0;
};

} // namespace VpAgent
