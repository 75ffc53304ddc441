#pragma once

#include "VornicL3Shared/Export.h"
#include "pelo/Ptr.h"
#include "pelo/String.h"
#include "qor/Entity.h"
#include "qor/HashMap2018.h"

namespace VornicCentral {

/// What `VpIndexConfigDir` and `VpIndexStatusDir` have in common: a named directory from client
/// name to record.
///
/// The directory holds one use of each record. Taking a record out does not destroy it while others
/// hold it. Every change is published after it was made, under `entriesField`, with the name as key
/// (a `Pelo::String const*`) and the new pointer as value (a `Pelo::Ptr<R> const*`, null after a
/// removal). Entries iterate in insertion order and may be changed while they are walked (see
/// `Qor::HashMap2018`). The name of an entry and that of its record should be the same: nothing
/// checks it.
///
/// Only an insertion takes memory; one that throws (`std::bad_alloc`) has changed and published
/// nothing. Cost: that of the collection and one call a subscriber. Not thread-safe.
template <class R> class VORNICL3SHARED_API VpDirectory : public Qor::Entity {
public:
    using Record = R;
    using Entries = Qor::HashMap2018<Pelo::String, Pelo::Ptr<R>>;

    static constexpr Pelo::FieldId nameField = 130;
    static constexpr Pelo::FieldId entriesField = 131;

protected:
    explicit VpDirectory(Pelo::String const& name) : Entity(name), entries_(1) {}

    Entries const& entries() const noexcept { return entries_; }
    Pelo::Ptr<R> entry(Pelo::String const& name) const {
        auto const* const member = entries_.lookupNode(name);
        return member == nullptr ? nullptr : member->value();
    }
    bool entryHas(Pelo::String const& name) const noexcept { return entries_.has(name); }

    /// Sets, replaces or (with null) removes an entry. The very pointer that is there already
    /// changes nothing; another one is a change even when the two records are equal in content.
    void entryIs(Pelo::String const& name, Pelo::Ptr<R> const& record) {
        if (!record) {
            entryDel(name);
            return;
        }
        Pelo::String const changed = name; // NOLINT: a subscriber may drop the caller's
        Pelo::Ptr<R> const value = record;
        if (entries_.memberIs(changed, value) != Entries::Change::none) {
            publishMember(entriesField, changed, &value);
        }
    }

    /// Removes an entry and returns it; null, and nothing published, when there was none.
    Pelo::Ptr<R> entryDel(Pelo::String const& name) {
        Pelo::String const changed = name; // NOLINT: a subscriber may drop the caller's
        auto removed = entries_.deleteMember(changed);
        if (!removed) {
            return nullptr;
        }
        publishMember(entriesField, changed, nullptr);
        return *std::move(removed);
    }

    /// Removes every entry: in one step when nobody subscribes, else one by one, each published. No
    /// more entries are removed than there were at first, so it ends whatever the subscribers do;
    /// what they insert meanwhile may be left.
    void entryDelAll() {
        if (!hasSubscribers()) {
            entries_.memberDelAll();
            return;
        }
        U32 left = entries_.memberCount();
        for (typename Entries::Iterator it(entries_); it && left-- != 0; it.advance()) {
            entryDel(it.key());
        }
    }

private:
    Entries entries_;
};

} // namespace VornicCentral
