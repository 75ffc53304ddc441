#pragma once

#include "pelo/Export.h"
#include "pelo/Node.h"
#include "pelo/Ptr.h"
#include "pelo/Publisher.h"
#include "pelo/String.h"

namespace Qor {

/// A named node that publishes its changes: the base of the records and directories that agents
/// share.
///
/// Every mutator of an entity makes its change first and publishes it afterwards, so that a
/// subscriber reads the new state; a mutator that changes nothing publishes nothing.
///
/// By convention a type `Fan` has a creator `Fan::FanIs`, and a free function `fanFactory` that
/// calls it. Each call builds another object, also when there is one of that name, and gives its
/// first use to the caller.
///
/// Not thread-safe.
class VORNIC_RUNTIME_API Entity : public Pelo::Node {
public:
    /// The name given at construction; inspection calls it one or the other, as the type declares.
    Pelo::String const& name() const noexcept { return name_; }
    Pelo::String const& nameString() const noexcept { return name_; }

    Pelo::Publisher* publisher() const noexcept final { return &publisher_; }

    /// For a host that keeps entities in a tree to call when it gives this one a parent; the
    /// runtime never does. Does nothing, for types that care to override.
    virtual void handleParent(Entity* parent);

protected:
    explicit Entity(Pelo::String const& name) : name_(name) {}
    ~Entity() override;

    bool hasSubscribers() const noexcept { return publisher_.hasSubscribers(); }

    /// Publishes a change of a plain attribute; `value` is what the type documents.
    void publishAttribute(Pelo::FieldId field, void const* value) {
        publisher_.publishChangeRecursive(field, nullptr, value, nullptr);
    }

    /// Publishes a change of a collection attribute under `key`. The key must outlive the call
    /// whatever subscribers do, so it must not be a reference into the collection; neither may
    /// `value` point there.
    template <class Key>
    void publishMember(Pelo::FieldId field, Key const& key, void const* value) {
        publisher_.publishChangeRecursive(field, &key, value, &Pelo::keysEqual<Key>);
    }

private:
    Pelo::String name_;
    mutable Pelo::Publisher publisher_;
};

/// The field number of `nameString`, the same in every type that declares it.
inline constexpr Pelo::FieldId nameStringField = 154;

} // namespace Qor
