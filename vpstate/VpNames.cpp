#include "vpstate/VpNames.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

namespace VornicCentral {
namespace {

/// Up to this many names a walk is at least as fast as a search of the index.
constexpr std::size_t walkedNames = 16;

constexpr U32 noName = 0xFFFFFFFF;

} // namespace

/// The names of a set that outgrew the inline ones, and of its copies. It changes only while one
/// set uses it. Once the names are too many to be walked there is an index of their positions by
/// hash: open addressing, at most half full.
struct VpNames::Block {
    U32 useCount = 1; ///< the sets that share the block
    std::vector<Pelo::String> names;
    std::vector<U32> index;

    bool indexed() const noexcept { return !index.empty(); }

    /// The place in the index of a name, or where it would go.
    std::size_t place(Pelo::String const& name) const noexcept {
        std::size_t at = name.hash() & (index.size() - 1);
        while (index[at] != noName && !(names[index[at]] == name)) {
            at = (at + 1) & (index.size() - 1);
        }
        return at;
    }

    /// Files every name anew, if there is an index; it keeps its size.
    void fileAll() noexcept {
        if (!indexed()) {
            return;
        }
        std::fill(index.begin(), index.end(), noName);
        for (U32 at = 0; at < names.size(); ++at) {
            index[place(names[at])] = at;
        }
    }

    /// Adds a name that is not there. When memory runs out nothing has changed.
    void add(Pelo::String const& name) {
        std::size_t const size = names.size() + 1;
        if (size > walkedNames && size * 2 > index.size()) {
            std::vector<U32> larger(std::max<std::size_t>(64, index.size() * 2));
            names.push_back(name);
            index.swap(larger);
            fileAll();
            return;
        }
        names.push_back(name);
        if (indexed()) {
            index[place(name)] = static_cast<U32>(names.size() - 1);
        }
    }

    void remove(std::size_t at) noexcept {
        names.erase(names.begin() + static_cast<std::ptrdiff_t>(at));
        if (names.size() <= walkedNames) {
            index.clear();
        } else if (index.size() > 8 * names.size()) { // so that filing anew is a walk of the names
            index.resize(index.size() / 2);
        }
        fileAll();
    }
};

VpNames::Block* VpNames::shared(Block* block) noexcept {
    Pelo::countInc(block->useCount);
    return block;
}

void VpNames::release(Block* block) noexcept {
    if (Pelo::countDec(block->useCount)) {
        delete block;
    }
}

VpNames::const_iterator VpNames::begin() const noexcept {
    return inBlock_ ? block_->names.data() : inline_;
}

VpNames::const_iterator VpNames::find(Pelo::String const& name) const noexcept {
    if (inBlock_ && block_->indexed()) {
        U32 const at = block_->index[block_->place(name)];
        return at == noName ? end() : begin() + at;
    }
    return std::find(begin(), end(), name);
}

bool VpNames::add(Pelo::String const& name) {
    if (has(name)) {
        return false;
    }
    if (!inBlock_ && size_ < inlineNames) {
        new (&inline_[size_]) Pelo::String(name);
    } else {
        if (!inBlock_) {
            moveToBlock();
        } else {
            unshare();
        }
        block_->add(name);
    }
    ++size_;
    return true;
}

void VpNames::moveToBlock() {
    auto block = std::make_unique<Block>();
    block->names.reserve(std::size_t{2} * inlineNames);
    block->names.assign(begin(), end());
    std::destroy_n(inline_, size_);
    block_ = block.release();
    inBlock_ = true;
}

/// The copy has room for a name more, because most often one is added to it.
void VpNames::unshare() {
    if (std::atomic_ref<U32>(block_->useCount).load(std::memory_order_acquire) == 1) {
        return;
    }
    auto own = std::make_unique<Block>();
    own->names.reserve(block_->names.size() + 1);
    own->names.assign(block_->names.begin(), block_->names.end());
    own->index = block_->index;
    release(block_);
    block_ = own.release();
}

bool VpNames::remove(Pelo::String const& name) {
    const_iterator const found = find(name);
    if (found == end()) {
        return false;
    }
    auto const at = static_cast<std::size_t>(found - begin());
    if (inBlock_) {
        unshare();
        block_->remove(at);
    } else {
        std::move(inline_ + at + 1, inline_ + size_, inline_ + at);
        std::destroy_at(&inline_[size_ - 1]);
    }
    --size_;
    return true;
}

U64 VpNames::hash() const noexcept {
    U64 sum = size_;
    for (Pelo::String const& name : *this) {
        sum += name.hash();
    }
    return sum;
}

std::string VpNames::stringValue() const {
    std::string text = "[";
    for (Pelo::String const& name : *this) {
        text += &name == begin() ? "" : ", ";
        text += name.view();
    }
    return text + "]";
}

bool operator==(VpNames const& a, VpNames const& b) noexcept {
    if (a.begin() == b.begin()) { // of one block
        return true;
    }
    return a.size_ == b.size_ &&
           std::all_of(a.begin(), a.end(), [&](Pelo::String const& name) { return b.has(name); });
}

std::ostream& operator<<(std::ostream& out, VpNames const& names) {
    return out << names.stringValue();
}

} // namespace VornicCentral
