#pragma once

#include "VornicL3Shared/model/multicast/McastStep.h"

#include <array>
#include <optional>
#include <utility>

namespace ModelTest {

/// What the layer-3 multicast records should do, told a second time on plain lists: the interface
/// sets, the database that binds them, and the holder of the group service with its services.
///
/// A step returns all that it shows, line by line: what a listener is told, what a service is asked
/// for, when a service ends, and in the last line the result.
class McastModel {
public:
    /// `givesBackFirst`: a wrong belief, that a former service ends before the listener is told.
    explicit McastModel(bool givesBackFirst = false) : givesBackFirst_(givesBackFirst) {}

    std::string apply(McastStep const& step);
    /// All chips in their order, the allowed interfaces, who is installed, and how many use the
    /// sets.
    std::string state() const;

private:
    void note(std::string const& line) { notes_ += line + "\n"; }
    void told(std::string const& line);
    Intfs const* chip(U8 number) const;
    std::string setChip(McastStep const& step);
    std::string delChip(U8 number);
    std::string install(std::optional<std::size_t> api);
    std::string dropApi(std::size_t api);
    std::string call(McastStep const& step);

    bool givesBackFirst_;
    std::vector<std::pair<U8, Intfs>> chips_;
    Intfs allowed_;
    std::array<bool, mcastApis> held_{}; ///< by their makers
    std::optional<std::size_t> installed_;
    bool listening_ = false;
    std::optional<std::pair<bool, bool>> database_; ///< which of the two sets it has
    std::string notes_;
};

} // namespace ModelTest
