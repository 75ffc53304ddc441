#pragma once

#include "qor/Entity.h"
#include "qor/HashMap2018.h"
#include "vpstate/Export.h"
#include "vpstate/Kinds.h"

#include <tuple>

namespace VornicCentral {

/// The base of the five records: one keyed collection per kind of virtual port, each publishing its
/// changes.
///
/// Collections iterate in insertion order and may be changed while they are walked (see
/// `Qor::HashMap2018`). Every mutator changes first and publishes afterwards, with the kind's field
/// number, the key (a `Kind::Key const*`), and the new value (a `V const*`, null after a deletion).
/// Setting a key to the value that it has, and deleting one that is not there, changes and
/// publishes nothing.
///
/// For each collection the record offers, by the kind as a template argument and by the
/// collection's name:
///
///     has<EdgeVport>(key)         edgeVportHas(key)        whether the key is there
///     get<EdgeVport>(key)         edgeVport(key)           its value, or a default value
///     is<EdgeVport>(key, value)   edgeVportIs(key, value)  insert or replace
///     del<EdgeVport>(key)         edgeVportDel(key)        delete; the removed or a default value
///     delAll<EdgeVport>()         edgeVportDelAll()        empty the collection
///     collection<EdgeVport>()     edgeVport()              the collection, to walk and to count
///
/// A collection is emptied in one step when nobody subscribes, and else one by one, so that each
/// removal is published. No more members are removed than there were at first, so it ends whatever
/// the subscribers do; what they insert meanwhile may be left.
///
/// Only an insertion takes memory; one that throws (`std::bad_alloc`) has changed and published
/// nothing. Cost: that of the collection and one call a subscriber. Not thread-safe.
template <class V> class VORNIC_VPSTATE_API VpRecord : public Qor::Entity {
    template <class List> struct CollectionOfEach;
    template <class... Kind> struct CollectionOfEach<std::tuple<Kind...>> {
        using Type = std::tuple<Qor::HashMap2018<typename Kind::Key, V>...>;
    };
    using Collections = typename CollectionOfEach<Kinds>::Type;

public:
    using Value = V;
    template <class Kind> using Collection = Qor::HashMap2018<typename Kind::Key, V>;

    template <class Kind> Collection<Kind> const& collection() const noexcept {
        return std::get<kindOrder<Kind>>(collections_);
    }
    template <class Kind> bool has(typename Kind::Key const& key) const noexcept {
        return collection<Kind>().has(key);
    }

    /// The value of a key where it stands, until the next change of the collection; null when the
    /// key is not there.
    template <class Kind> V const* find(typename Kind::Key const& key) const noexcept {
        auto const* const member = collection<Kind>().lookupNode(key);
        return member == nullptr ? nullptr : &member->value();
    }
    template <class Kind> V get(typename Kind::Key const& key) const {
        V const* const value = find<Kind>(key);
        return value == nullptr ? V() : *value;
    }

    /// `value` must not be a reference into this collection; the key may be one, also in `del`.
    template <class Kind> void is(typename Kind::Key const& key, V const& value) {
        if (!hasSubscribers()) {
            mutableCollection<Kind>().memberIs(key, value);
            return;
        }
        typename Kind::Key const changed(key);
        if (mutableCollection<Kind>().memberIs(changed, value) != Collection<Kind>::Change::none) {
            publishMember(Kind::field, changed, &value);
        }
    }

    template <class Kind> V del(typename Kind::Key const& key) {
        typename Kind::Key const changed(key);
        auto removed = mutableCollection<Kind>().deleteMember(changed);
        if (!removed) {
            return V();
        }
        publishMember(Kind::field, changed, nullptr);
        return *std::move(removed);
    }

    template <class Kind> void delAll() {
        if (!hasSubscribers()) {
            mutableCollection<Kind>().memberDelAll();
            return;
        }
        U32 left = collection<Kind>().memberCount();
        for (typename Collection<Kind>::Iterator it(collection<Kind>()); it && left-- != 0;
             it.advance()) {
            del<Kind>(it.key());
        }
    }

    /// The number of members of all five collections.
    U32 memberCount() const noexcept {
        return std::apply([](auto const&... each) { return (each.memberCount() + ...); },
                          collections_);
    }

#define VPSTATE_COLLECTION(Kind, name)                                                             \
    Collection<Kind> const& name() const noexcept { return collection<Kind>(); }                   \
    V name(Kind::Key const& key) const { return get<Kind>(key); }                                  \
    bool name##Has(Kind::Key const& key) const noexcept { return has<Kind>(key); }                 \
    void name##Is(Kind::Key const& key, V const& value) { is<Kind>(key, value); }                  \
    V name##Del(Kind::Key const& key) { return del<Kind>(key); }                                   \
    void name##DelAll() { delAll<Kind>(); }

    VPSTATE_COLLECTION(RemoteVport, remoteVport)
    VPSTATE_COLLECTION(MlagRemoteVport, mlagRemoteVport)
    VPSTATE_COLLECTION(EdgeVport, edgeVport)
    VPSTATE_COLLECTION(VlanVport, vlanVport)
    VPSTATE_COLLECTION(EFilterDisableVport, eFilterDisableVport)
#undef VPSTATE_COLLECTION

protected:
    using Entity::Entity;

private:
    template <class Kind> Collection<Kind>& mutableCollection() noexcept {
        return std::get<kindOrder<Kind>>(collections_);
    }

    Collections collections_;
};

} // namespace VornicCentral
