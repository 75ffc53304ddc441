#include "vpstate/VpReference.h"

#include <ostream>

namespace VornicCentral {

void VpReference::referenceIs(Pelo::String const& name, bool present) {
    if (present) {
        references_.add(name);
    } else {
        references_.remove(name);
    }
}

std::string VpReference::stringValue() const {
    return "{vPort: " + vPort_.stringValue() + ", references: " + references_.stringValue() + '}';
}

std::ostream& operator<<(std::ostream& out, VpReference const& reference) {
    return out << reference.stringValue();
}

} // namespace VornicCentral
