#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"
#include "pelo/String.h"
#include "pelo/ThreadControl.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

namespace Netzo {

/// An interface, known by its name: a value of 64 bits for a name of any length and content.
///
/// Ids of one name share one counted entry of a process-wide table, which holds the names in use
/// only: the last id of a name takes it out. A copy costs a use count, equality is a comparison of
/// words, and the hash is kept with the name (it is that of `Pelo::String`, the same in every
/// process). Building an id from a name costs one look-up, and an allocation when it is new.
///
/// Default-built, and moved from, it is the id of the empty name. Thread-control rule (see
/// `Pelo::ThreadControl`).
class VORNIC_RUNTIME_API IntfId {
public:
    constexpr IntfId() noexcept = default;
    explicit IntfId(std::string_view name);
    explicit IntfId(Pelo::String const& name); ///< shares the text when the name is new
    explicit IntfId(char const* name) : IntfId(std::string_view(name)) {}
    IntfId(IntfId const& other) noexcept : entry_(other.entry_) {
        if (entry_ != nullptr) {
            Pelo::countInc(entry_->useCount);
        }
    }
    IntfId(IntfId&& other) noexcept : entry_(std::exchange(other.entry_, nullptr)) {}
    ~IntfId() {
        if (entry_ != nullptr && !Pelo::countDecUnlessLast(entry_->useCount)) {
            release(entry_);
        }
    }
    IntfId& operator=(IntfId other) noexcept {
        std::swap(entry_, other.entry_);
        return *this;
    }

    bool empty() const noexcept { return entry_ == nullptr; }

    /// The name, valid as long as any id of it.
    std::string_view name() const noexcept {
        return entry_ == nullptr ? std::string_view() : entry_->name.view();
    }
    std::string stringValue() const { return std::string(name()); }

    /// The first two letters of the name and the text from its first digit on, as `Et1/1` for
    /// `Ethernet1/1`; the whole name when it does not begin with two (ASCII) letters or has no
    /// digit.
    std::string shortName() const;
    /// The short name in two parts that follow each other, without a copy; valid as long as
    /// `name()`.
    std::pair<std::string_view, std::string_view> shortNameParts() const noexcept;

    U64 hash() const noexcept { return entry_ == nullptr ? 0 : entry_->hash; }

    /// Takes any text that is not empty and has no control character (U+0000 to U+001F and U+007F
    /// to U+009F).
    static Pelo::Parsed<IntfId> parse(std::string_view text);

    /// How many names the process holds at this moment.
    static std::size_t namesInUse();

    friend bool operator==(IntfId const& a, IntfId const& b) noexcept {
        return a.entry_ == b.entry_;
    }

private:
    struct Entry {
        U64 hash;
        U32 useCount;
        U32 digits; ///< where the text of the short name goes on; 0 when that is the whole name
        Pelo::String name;
    };
    struct Table;

    static void release(Entry* entry) noexcept;

    Entry* entry_ = nullptr;
};

static_assert(sizeof(IntfId) == sizeof(U64));

VORNIC_RUNTIME_API std::ostream& operator<<(std::ostream& out, IntfId const& intf);

} // namespace Netzo
