#pragma once

#include "pelo/NoThrow.h"
#include "pelo/Publisher.h"
#include "qor/HashMap2018.h"
#include "statefile/Writer.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <vector>

namespace VpAgent {

/// The keys of one record that have changed since `clear`, and whether another attribute has.
///
/// For each key it knows whether it was deleted meanwhile: a member that was deleted and inserted
/// again has lost its place. All else is read from the record when it is written, so nested
/// notifications may come in any order.
///
/// Cost: a changed key is filed once, however often it changes.
template <class Record> class RecordChanges {
public:
    /// `onFirst` is called at the first change after a `clear`.
    RecordChanges(Pelo::Ptr<Record> const& record, std::function<void()> onFirst)
        : record_(record), onFirst_(std::move(onFirst)), subscriber_(this, &dispatch) {
        record_->publisher()->subscriberAdd(&subscriber_, false);
    }
    RecordChanges(RecordChanges const&) = delete;
    RecordChanges& operator=(RecordChanges const&) = delete;

    Record const& record() const noexcept { return *record_; }

    /// Whether anything but the five collections changed.
    bool attributesChanged() const noexcept { return attributesChanged_; }

    /// Brings the rows of the changed keys up to date, so that the order of their positions is that
    /// of the collections. `client` is the client whose record this is, if it has one.
    void writeTo(Writer& writer, U64 client) const {
        if (changed_) {
            VornicCentral::forEachKind([&](auto kind) { write<decltype(kind)>(writer, client); });
        }
    }

    void clear() {
        if (changed_) {
            std::apply([](auto&... each) { (each.memberDelAll(), ...); }, keys_);
            attributesChanged_ = false;
            changed_ = false;
        }
    }

private:
    /// Whether the key was deleted since the last `clear`.
    template <class Kind> using Keys = Qor::HashMap2018<typename Kind::Key, bool>;
    template <class> struct KeysOfAll;
    template <class... Kind> struct KeysOfAll<std::tuple<Kind...>> {
        using Type = std::tuple<Keys<Kind>...>;
    };

    static void dispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId field,
                         void const* key, void const* value) noexcept {
        auto& changes = subscriber->owner<RecordChanges>();
        Pelo::runNoThrow([&] { changes.changed(field, key, value == nullptr); });
    }

    void changed(Pelo::FieldId field, void const* key, bool deleted) {
        first();
        bool inCollection = false;
        VornicCentral::forEachKind([&](auto kind) {
            using Kind = decltype(kind);
            if (field == Kind::field) {
                file<Kind>(*static_cast<typename Kind::Key const*>(key), deleted);
                inCollection = true;
            }
        });
        attributesChanged_ = attributesChanged_ || !inCollection;
    }

    template <class Kind> void file(typename Kind::Key const& key, bool deleted) {
        Keys<Kind>& keys = std::get<VornicCentral::kindOrder<Kind>>(keys_);
        if (deleted) {
            keys.newMember(key, true);
        } else if (!keys.has(key)) {
            keys.newMember(key, false);
        }
    }

    void first() {
        if (!changed_) {
            changed_ = true;
            onFirst_();
        }
    }

    template <class Kind> void write(Writer& writer, U64 client) const {
        auto const& members = record_->template collection<Kind>();
        std::vector<typename Record::template Collection<Kind>::Member const*> present;
        Keys<Kind> const& keys = std::get<VornicCentral::kindOrder<Kind>>(keys_);
        for (typename Keys<Kind>::Iterator it(keys); it; it.advance()) {
            auto const* const member = members.lookupNode(it.key());
            if (member == nullptr || it.value()) {
                writer.erase<Record, Kind>(client, it.key());
            }
            if (member != nullptr) {
                present.push_back(member);
            }
        }
        // Members stand in one array, in the order of the collection.
        std::sort(present.begin(), present.end(), std::less<>());
        for (auto const* const member : present) {
            writer.write<Record, Kind>(client, member->key(), member->value());
        }
    }

    Pelo::Ptr<Record> record_;
    std::function<void()> onFirst_;
    typename KeysOfAll<VornicCentral::Kinds>::Type keys_;
    bool changed_ = false;
    bool attributesChanged_ = false;
    Pelo::Subscriber subscriber_;
};

} // namespace VpAgent
