#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace VpAgent {

/// A list of what could stand somewhere, the last one joined with "or": `add, remove or retire`.
class Alternatives {
public:
    /// Of more than `limit` words the rest is only counted: `10, 11 or one of 3,982 more`.
    explicit Alternatives(std::size_t limit = static_cast<std::size_t>(-1)) : limit_(limit) {}

    void add(std::string_view word);
    bool empty() const noexcept { return count_ == 0; }
    std::string text() const;

private:
    std::size_t limit_;
    std::size_t count_ = 0;
    std::string text_;
    std::string last_;
};

} // namespace VpAgent
