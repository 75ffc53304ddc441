#include "VornicL3Shared/VornicNetworkGroup.h"

#include <ostream>

namespace VornicCentral {

Qor::EnumType<U32> const& vpNetworkGroupType() {
    static constexpr Qor::EnumType<U32>::Enumerator enumerators[] = {
#define VORNIC_ENUMERATOR(name, value) {value, #name},
        VORNIC_VP_NETWORK_GROUPS(VORNIC_ENUMERATOR)
#undef VORNIC_ENUMERATOR
    };
    static Qor::EnumType<U32> const type("VornicCentral::VpNetworkGroup", enumerators);
    return type;
}

namespace {

/// Registers the enumeration when the library is loaded.
[[maybe_unused]] Qor::EnumType<U32> const& registeredAtLoad = vpNetworkGroupType();

} // namespace

VpNetworkGroup VpNetworkGroupInstance(U32 value) {
    return static_cast<VpNetworkGroup>(vpNetworkGroupType().instance(value).value);
}

VpNetworkGroup VpNetworkGroupInstance(std::string_view name) {
    return static_cast<VpNetworkGroup>(vpNetworkGroupType().instance(name).value);
}

std::string stringValue(VpNetworkGroup group) {
    return vpNetworkGroupType().stringValue(static_cast<U32>(group));
}

std::size_t sequenceToValue(char const* begin, char const* end, VpNetworkGroup& group) {
    U32 value = 0;
    std::size_t const length = vpNetworkGroupType().sequenceToValue(begin, end, value);
    if (length != 0) {
        group = static_cast<VpNetworkGroup>(value);
    }
    return length;
}

std::ostream& operator<<(std::ostream& out, VpNetworkGroup group) {
    vpNetworkGroupType().print(out, static_cast<U32>(group));
    return out;
}

} // namespace VornicCentral
