#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "pelo/ThreadControl.h"

#include <compare>
#include <cstddef>
#include <iosfwd>
#include <string_view>
#include <utility>

namespace Pelo {

/// Immutable text, shared by its copies and counted; its hash is kept with it.
///
/// Building one from text costs an allocation, a copy of the bytes and their hash; a text of about
/// 4 GiB or more is refused with `std::length_error`. A copy costs a pointer and a use count (see
/// `ThreadControl`); comparing for equality compares the pointers first, then hash and length, and
/// the bytes only when those agree. The empty text, which is also what default-built and moved-from
/// ones hold, needs no storage. The text may hold any byte, NUL included; `data()` is
/// NUL-terminated.
class VORNIC_RUNTIME_API String {
public:
    constexpr String() noexcept = default;
    String(std::string_view text);
    String(char const* text) : String(std::string_view(text)) {}
    String(String const& other) noexcept : rep_(other.rep_) {
        if (rep_ != nullptr) {
            countInc(rep_->useCount);
        }
    }
    String(String&& other) noexcept : rep_(std::exchange(other.rep_, nullptr)) {}
    ~String() {
        if (rep_ != nullptr && countDec(rep_->useCount)) {
            destroy(rep_);
        }
    }
    String& operator=(String other) noexcept {
        std::swap(rep_, other.rep_);
        return *this;
    }

    char const* data() const noexcept { return rep_ == nullptr ? "" : rep_->text(); }
    std::size_t size() const noexcept { return rep_ == nullptr ? 0 : rep_->size; }
    bool empty() const noexcept { return rep_ == nullptr; }
    std::string_view view() const noexcept { return {data(), size()}; }
    operator std::string_view() const noexcept { return view(); }
    U64 hash() const noexcept { return rep_ == nullptr ? 0 : rep_->hash; }

    /// Negative, zero or positive as this text is before, equal to or after `other` in byte order.
    int compare(String const& other) const noexcept { return view().compare(other.view()); }

    friend bool operator==(String const& a, String const& b) noexcept {
        if (a.rep_ == b.rep_) {
            return true;
        }
        return a.hash() == b.hash() && a.view() == b.view();
    }
    friend bool operator==(String const& a, char const* b) noexcept { return a.view() == b; }
    friend bool operator==(String const& a, std::string_view b) noexcept { return a.view() == b; }
    friend std::strong_ordering operator<=>(String const& a, String const& b) noexcept {
        return a.compare(b) <=> 0;
    }

private:
    struct Rep {
        U64 hash;
        U32 useCount;
        U32 size;
        char const* text() const noexcept { return reinterpret_cast<char const*>(this + 1); }
    };
    static void destroy(Rep* rep) noexcept;

    Rep* rep_ = nullptr;
};

VORNIC_RUNTIME_API std::ostream& operator<<(std::ostream& out, String const& text);

} // namespace Pelo
