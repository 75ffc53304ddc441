#include "vxlan/SwTunnelGroupId.h"

#include "pelo/Decimal.h"

#include <limits>
#include <ostream>

namespace Vxlan {

SwTunnelGroupId::SwTunnelGroupId(U32 number)
    : entry_(refcountTable().entries_.take(
          hashOf(number), [number](Entry const& entry) { return entry.number == number; },
          [number] {
              return new Entry{hashOf(number), 1, number};
          })) {}

/// The table is never destroyed: ids with static storage may outlive every other object.
SwTunnelGroupId::RefcountTable& SwTunnelGroupId::refcountTable() {
    static auto* const table = new RefcountTable;
    return *table;
}

U32 SwTunnelGroupId::RefcountTable::count(U32 number) const {
    return entries_.uses(hashOf(number),
                         [number](Entry const& entry) { return entry.number == number; });
}

Pelo::Parsed<SwTunnelGroupId> SwTunnelGroupId::parse(std::string_view text) {
    auto const number = Pelo::parseDecimal(text, std::numeric_limits<U32>::max());
    if (!number) {
        return number.error();
    }
    return SwTunnelGroupId(static_cast<U32>(*number));
}

std::ostream& operator<<(std::ostream& out, SwTunnelGroupId const& group) {
    return out << group.stringValue();
}

} // namespace Vxlan
