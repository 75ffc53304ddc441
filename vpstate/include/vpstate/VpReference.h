#pragma once

#include "pelo/Hash.h"
#include "pelo/String.h"
#include "vpstate/Export.h"
#include "vpstate/VirtualPort.h"
#include "vpstate/VpNames.h"

#include <iosfwd>
#include <string>

namespace VornicCentral {

/// What the reference list keeps for a key: the virtual port that the key holds, and the names of
/// the allocators that request it. Default-built it holds the invalid virtual port and no name;
/// while it is in the list it has at least one name, but for a while after a restart.
///
/// A value: it is read out of the list, changed, and written back. Two are equal when they hold the
/// same virtual port and the same names, whatever the order. The text form is for people:
/// `{vPort: 12, references: [bgp, mlag]}`.
class VORNIC_VPSTATE_API VpReference {
public:
    VpReference() noexcept = default;
    explicit VpReference(VirtualPort vPort) noexcept : vPort_(vPort) {}

    VirtualPort vPort() const noexcept { return vPort_; }
    void vPortIs(VirtualPort vPort) noexcept { vPort_ = vPort; }

    /// The names, in the order in which they were added; in a condition, whether there are any.
    VpNames const& references() const noexcept { return references_; }

    bool referenceHas(Pelo::String const& name) const noexcept { return references_.has(name); }

    /// Adds a name, or with `false` removes it, as every name in the set stands for `true`.
    void referenceIs(Pelo::String const& name, bool present);
    bool referenceDel(Pelo::String const& name) { return references_.remove(name); }
    void referenceDelAll() noexcept { references_.clear(); }

    U64 hash() const noexcept { return Pelo::hashMix(references_.hash(), vPort_.vpIndex()); }
    std::string stringValue() const;

    friend bool operator==(VpReference const& a, VpReference const& b) noexcept {
        return a.vPort_ == b.vPort_ && a.references_ == b.references_;
    }

private:
    VpNames references_;
    VirtualPort vPort_;
};

static_assert(sizeof(VpReference) <= 48);

VORNIC_VPSTATE_API std::ostream& operator<<(std::ostream& out, VpReference const& reference);

} // namespace VornicCentral
