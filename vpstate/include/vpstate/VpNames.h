#pragma once

#include "pelo/Integers.h"
#include "pelo/String.h"
#include "vpstate/Export.h"

#include <cstddef>
#include <cstring>
#include <iosfwd>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace VornicCentral {

/// A set of client names in the order in which they were added.
///
/// Up to four names, the usual case, stand in the set itself; more of them in one block, which
/// copies of the set share until one of them is changed, and which the set keeps when names go.
/// Small sets are searched by walking, larger ones through a hash index, so that membership costs
/// the same for 1,000 names as for 20. A copy costs a use count a name, and one in all for names in
/// a block; adding or removing a name costs at most a walk of the set. A name that is removed and
/// added again goes last. Sets are equal when they hold the same names, whatever the order.
///
/// Any change ends the validity of iterators; one that throws (`std::bad_alloc`) has changed
/// nothing. Moved from, a set is empty. Not thread-safe; the names, and what copies share, follow
/// the thread-control rule (see `Pelo::ThreadControl`).
class VORNIC_VPSTATE_API VpNames {
public:
    using const_iterator = Pelo::String const*;

    VpNames() noexcept : block_(nullptr) {}
    VpNames(VpNames const& other) noexcept : size_(other.size_), inBlock_(other.inBlock_) {
        if (inBlock_) [[unlikely]] {
            block_ = shared(other.block_);
        } else {
            std::uninitialized_copy_n(other.inline_, size_, inline_);
        }
    }
    VpNames(VpNames&& other) noexcept
        : size_(std::exchange(other.size_, 0)), inBlock_(std::exchange(other.inBlock_, false)) {
        std::memcpy(static_cast<void*>(inline_), static_cast<void const*>(other.inline_),
                    sizeof inline_); // a name is a pointer that does not mind where it stands
    }
    ~VpNames() { clear(); }
    VpNames& operator=(VpNames const& other) noexcept { return *this = VpNames(other); }
    VpNames& operator=(VpNames&& other) noexcept {
        if (this != &other) {
            clear();
            new (this) VpNames(std::move(other));
        }
        return *this;
    }

    bool has(Pelo::String const& name) const noexcept { return find(name) != end(); }
    bool add(Pelo::String const& name);    ///< whether it was not there
    bool remove(Pelo::String const& name); ///< whether it was there
    void clear() noexcept {
        if (inBlock_) [[unlikely]] {
            release(block_);
        } else {
            std::destroy_n(inline_, size_);
        }
        size_ = 0;
        inBlock_ = false;
    }

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

    static Block* shared(Block* block) noexcept; ///< takes a use
    static void release(Block* block) noexcept;  ///< gives one back
    const_iterator find(Pelo::String const& name) const noexcept;
    void moveToBlock();
    void unshare(); ///< makes the block one that nobody else uses

    union {
        Pelo::String inline_[inlineNames]; ///< unless `inBlock_`; the first `size_` are built
        Block* block_;                     ///< if `inBlock_`; shared with copies of the set
    };
    U32 size_ = 0;
    bool inBlock_ = false;
};

VORNIC_VPSTATE_API std::ostream& operator<<(std::ostream& out, VpNames const& names);

} // namespace VornicCentral
