#pragma once

#include "pelo/CountedTable.h"
#include "pelo/Export.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

namespace Vxlan {

/// A software tunnel group: a number of 32 bits whose users are counted.
///
/// Every id is one user of its group in the process-wide reference-count table; a group leaves the
/// table with its last user. A copy costs a use count and no look-up; building an id from its
/// number costs one look-up. Ids are equal when their numbers are. Default-built it is a user of
/// group 0; moved from it reads as 0 and is nobody's user.
///
/// Its text form is the decimal number, read in that form only. Thread-control rule (see
/// `Pelo::ThreadControl`).
class VORNIC_RUNTIME_API SwTunnelGroupId {
    struct Entry {
        U64 hash;
        U32 useCount;
        U32 number;
    };

public:
    /// The users of every group that has any.
    class RefcountTable {
    public:
        U32 count(U32 number) const;                         ///< the users of a group
        std::size_t size() const { return entries_.size(); } ///< the groups that have users

    private:
        friend class SwTunnelGroupId;

        Pelo::CountedTable<Entry> entries_;
    };

    SwTunnelGroupId() : SwTunnelGroupId(0) {}
    explicit SwTunnelGroupId(U32 number);
    SwTunnelGroupId(SwTunnelGroupId const& other) noexcept : entry_(other.entry_) { refInc(); }
    SwTunnelGroupId(SwTunnelGroupId&& other) noexcept
        : entry_(std::exchange(other.entry_, nullptr)) {}
    ~SwTunnelGroupId() { refDec(); }
    SwTunnelGroupId& operator=(SwTunnelGroupId other) noexcept {
        std::swap(entry_, other.entry_);
        return *this;
    }

    U32 value() const noexcept { return entry_ == nullptr ? 0 : entry_->number; }
    std::string stringValue() const { return std::to_string(value()); }
    U64 hash() const noexcept { return hashOf(value()); }
    static Pelo::Parsed<SwTunnelGroupId> parse(std::string_view text);

    static RefcountTable& refcountTable();

    /// Adds a user of the group that is no id. The use is the caller's, who gives it back with
    /// `refDec` of this id or another one of the group; until then the group stays in the table,
    /// whatever becomes of its ids. An id that is moved from has no group: nothing happens.
    void refInc() const noexcept {
        if (entry_ != nullptr) {
            Pelo::countInc(entry_->useCount);
        }
    }

    /// Gives back one use that `refInc` added. The id's own use is not the caller's to give.
    void refDec() const noexcept {
        if (entry_ != nullptr) {
            refcountTable().entries_.release(entry_);
        }
    }

    friend bool operator==(SwTunnelGroupId const& a, SwTunnelGroupId const& b) noexcept {
        return a.entry_ == b.entry_ || a.value() == b.value();
    }

private:
    static U64 hashOf(U32 number) noexcept { return Pelo::hashMix(number, 0); }

    Entry* entry_; ///< null when moved from
};

VORNIC_RUNTIME_API std::ostream& operator<<(std::ostream& out, SwTunnelGroupId const& group);

} // namespace Vxlan
