#pragma once

#include <cstddef>
#include <filesystem>

namespace Bench {

/// A script of a day at four leaf agents, in a file that lives as long as this does.
///
/// A start, four clients, and then `commands` commands: each requests or withdraws one of about
/// 52,000 virtual ports of all kinds for one of the clients, whichever the client did not do last;
/// about half of all is requested in the long run, much of it by more than one client. Every
/// 10,000th command is a `show table`. With `unit` all of it stands between `begin` and `commit`.
/// The same numbers give the same script.
class ReplayScript {
public:
    enum class Unit { none, one };

    ReplayScript(std::size_t commands, Unit unit);
    ~ReplayScript();
    ReplayScript(ReplayScript const&) = delete;
    ReplayScript& operator=(ReplayScript const&) = delete;

    std::filesystem::path const& path() const noexcept { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace Bench
