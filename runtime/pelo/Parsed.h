#pragma once

#include "pelo/Export.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace Pelo {

/// Why a text is not the value that it should be: where in the text, and what was expected there.
struct VORNIC_RUNTIME_API ParseError {
    std::size_t at = 0;   ///< offset in bytes of the first byte that does not fit
    std::string expected; ///< in words that follow "expected ", as "a number from 0 to 65535"
};

/// The outcome of reading a value from text: the value, or why there is none.
template <class T> class Parsed {
public:
    Parsed(T value) : value_(std::move(value)) {}
    Parsed(ParseError error) : error_(std::move(error)) {}

    explicit operator bool() const noexcept { return value_.has_value(); }

    /// The value, which must be there: nothing is checked.
    T const& operator*() const& noexcept { return *value_; }
    T&& operator*() && noexcept { return std::move(*value_); }
    T const* operator->() const noexcept { return &*value_; }

    /// Meaningful only when there is no value.
    ParseError const& error() const noexcept { return error_; }

    /// The same error for a text that begins `offset` bytes into a larger one.
    ParseError errorWithin(std::size_t offset) const {
        return {error_.at + offset, error_.expected};
    }

private:
    std::optional<T> value_;
    ParseError error_;
};

} // namespace Pelo
