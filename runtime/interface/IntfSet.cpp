#include "interface/IntfSet.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace Interface {

IntfSet::IntfSet(std::initializer_list<Netzo::IntfId> intfs) {
    for (Netzo::IntfId const& intf : intfs) {
        insert(intf);
    }
}

bool IntfSet::insert(Netzo::IntfId intf) {
    auto const place = placeOf(intf);
    if (place != end() && *place == intf) {
        return false;
    }
    members_.insert(place, std::move(intf));
    return true;
}

bool IntfSet::erase(Netzo::IntfId const& intf) {
    auto const place = placeOf(intf);
    if (place == end() || *place != intf) {
        return false;
    }
    members_.erase(place);
    return true;
}

bool IntfSet::contains(Netzo::IntfId const& intf) const noexcept {
    auto const place = placeOf(intf);
    return place != end() && *place == intf;
}

/// Where an interface stands, or would have to.
IntfSet::const_iterator IntfSet::placeOf(Netzo::IntfId const& intf) const noexcept {
    return std::lower_bound(
        begin(), end(), intf,
        [](Netzo::IntfId const& a, Netzo::IntfId const& b) { return a.name() < b.name(); });
}

std::ostream& operator<<(std::ostream& out, IntfSet const& set) { return out << set.stringValue(); }

} // namespace Interface
