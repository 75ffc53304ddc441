#pragma once

#include "netzo/IntfId.h"
#include "pelo/Export.h"
#include "pelo/Parsed.h"

#include <cstddef>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace Interface {

/// A set of interfaces, kept and iterated in the byte order of their names, so that equal sets
/// print alike.
///
/// Made for the usual 0 to 64 members: a sorted array. A search compares a handful of names, an
/// insertion or a removal moves the members behind it, equality compares a word a member. Any
/// change ends the validity of iterators; one that throws (`std::bad_alloc`) has changed nothing.
/// Not thread-safe; its ids follow the thread-control rule.
class VORNIC_RUNTIME_API IntfSet {
public:
    using const_iterator = std::vector<Netzo::IntfId>::const_iterator;

    IntfSet() noexcept = default;
    IntfSet(std::initializer_list<Netzo::IntfId> intfs);

    bool insert(Netzo::IntfId intf);       ///< whether it was not there
    bool erase(Netzo::IntfId const& intf); ///< whether it was there
    void clear() noexcept { members_.clear(); }
    bool contains(Netzo::IntfId const& intf) const noexcept;

    std::size_t size() const noexcept { return members_.size(); }
    bool empty() const noexcept { return members_.empty(); }
    const_iterator begin() const noexcept { return members_.begin(); }
    const_iterator end() const noexcept { return members_.end(); }

    /// The names in brackets, as `[Ethernet1, Ethernet2]`. A name that is empty, begins or ends
    /// with a blank, or holds a comma, a closing bracket or a quote stands in double quotes, with
    /// `\"` and `\\` inside.
    std::string stringValue() const;

    /// Reads that form, with the names in any order, also more than once, and with or without
    /// blanks between them. Any name may stand in quotes; control characters are refused.
    static Pelo::Parsed<IntfSet> parse(std::string_view text);

    friend bool operator==(IntfSet const&, IntfSet const&) noexcept = default;

private:
    const_iterator placeOf(Netzo::IntfId const& intf) const noexcept;

    std::vector<Netzo::IntfId> members_;
};

VORNIC_RUNTIME_API std::ostream& operator<<(std::ostream& out, IntfSet const& set);

} // namespace Interface
