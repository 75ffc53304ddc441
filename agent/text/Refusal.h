#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

namespace VpAgent {

/// A stretch of a command line, in bytes. An empty stretch at the line's end says that something is
/// missing there.
struct Place {
    std::size_t at = 0;
    std::size_t length = 0;

    friend bool operator==(Place const&, Place const&) = default;
};

/// Why something that came from outside (a command, an option, a file) is not carried out.
///
/// The message says what was wrong and what was expected. The place, where there is one, is the
/// part of the command line that the message is about. Whoever throws it has changed nothing.
class Refusal : public std::runtime_error {
public:
    explicit Refusal(std::string const& message) : runtime_error(message) {}
    Refusal(std::string const& message, Place place) : runtime_error(message), place_(place) {}

    std::optional<Place> const& place() const noexcept { return place_; }

private:
    std::optional<Place> place_;
};

} // namespace VpAgent
