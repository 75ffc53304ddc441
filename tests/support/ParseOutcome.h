#pragma once

#include <sstream>
#include <string>
#include <string_view>

namespace Support {

/// What `T::parse` makes of a text: the value as it prints, or "at PLACE: expected WHAT".
template <class T> std::string parseOutcome(std::string_view text) {
    auto const parsed = T::parse(text);
    std::ostringstream out;
    if (parsed) {
        out << *parsed;
    } else {
        out << "at " << parsed.error().at << ": expected " << parsed.error().expected;
    }
    return out.str();
}

/// What a value prints to a stream.
template <class T> std::string printed(T const& value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

} // namespace Support
