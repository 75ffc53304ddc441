#pragma once

#include "pelo/Integers.h"
#include "pelo/String.h"
#include "vpstate/Export.h"

#include <cstddef>
#include <iosfwd>
#include <string>

namespace VornicCentral {

/// A set of client names in the order in which they were added.
///
/// Up to four names, the usual case, stand in the set itself; more of them in one block of their
/// own. Small sets are searched by walking, larger ones through a hash index, so that membership
/// costs the same for 1,000 names as for 20. Adding or removing a name, or copying the set, costs
/// at most a walk of it. A name that is removed and added again goes last. Sets are equal when they
/// hold the same names, whatever the order.
///
/// Any change ends the validity of iterators. Moved from, a set is empty. Not thread-safe; the
/// names follow the thread-control rule (see `Pelo::ThreadControl`).
class VORNIC_VPSTATE_API VpNames {
public:
    using const_iterator = Pelo::String const*;

    VpNames() noexcept : block_(nullptr) {}
    VpNames(VpNames const& other);
    VpNames(VpNames&& other) noexcept;
    ~VpNames() { clear(); }
    VpNames& operator=(VpNames const& other);
    VpNames& operator=(VpNames&& other) noexcept;

    bool has(Pelo::String const& name) const noexcept { return find(name) != end(); }
    bool add(Pelo::String const& name);             ///< whether it was not there
    bool remove(Pelo::String const& name) noexcept; ///< whether it was there
    void clear() noexcept;

    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    explicit operator bool() const noexcept { return size_ != 0; }

    const_iterator begin() const noexcept;
    const_iterator end() const noexcept { return begin() + size_; }

    /// The same for equal sets, whatever the order. Cost: a walk, over hashes that the names keep.
    U64 hash() const noexcept;

    /// The names in brackets, as `[bgp, mlag]`.
    std::string stringValue() const;

    friend VORNIC_VPSTATE_API bool operator==(VpNames const& a, VpNames const& b) noexcept;

private:
    static constexpr U32 inlineNames = 4;
    struct Block;

    const_iterator find(Pelo::String const& name) const noexcept;
    void moveToBlock();

    union {
        Pelo::String inline_[inlineNames]; ///< unless `inBlock_`; the first `size_` are built
        Block* block_;                     ///< if `inBlock_`; owned
    };
    U32 size_ = 0;
    bool inBlock_ = false;
};

VORNIC_VPSTATE_API std::ostream& operator<<(std::ostream& out, VpNames const& names);

} // namespace VornicCentral
