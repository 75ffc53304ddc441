#pragma once

#include "pelo/Export.h"
#include "pelo/Node.h"
#include "pelo/Ptr.h"
#include "pelo/Publisher.h"
#include "qor/GenericValue.h"

#include <memory>

namespace Qor {

/// A walk through a collection whose types are not known to the caller.
///
///     for (auto it = Qor::collectionIterator(node, field); it; it.advance()) {
///         std::cout << it.key() << " = " << it.object() << '\n';
///     }
///
/// It is as safe as the collection's own iterator (`HashMap2018`): members may come and go, the
/// current one included. It keeps the owner of the collection alive. Copies share one position, and
/// only they are equal to each other. Cost: some allocations to begin, and a copy of each key or
/// value that is asked for. Not thread-safe.
class VORNIC_RUNTIME_API CollectionIterator {
public:
    /// The position within the collection, in terms of generic values.
    class Walk {
    public:
        virtual ~Walk() = default;
        virtual bool nonNull() const noexcept = 0;
        virtual void advance() noexcept = 0;
        virtual GenericValue key() const = 0;
        virtual GenericValue object() const = 0;
    };

    /// A walk of the collection `field` of `owner`, which may be changed through it unless
    /// `constant`.
    CollectionIterator(Pelo::Node& owner, bool constant, Pelo::FieldId field,
                       std::shared_ptr<Walk> walk);

    /// False at the end of the walk. A walk that stands on a deleted member is not at its end.
    explicit operator bool() const noexcept { return walk_->nonNull(); }
    void advance() noexcept { walk_->advance(); }

    /// The key and the value of the current member; nothing when it has been deleted and at the
    /// end.
    GenericValue key() const { return walk_->key(); }
    GenericValue object() const { return walk_->object(); }

    /// Deletes the current member, as the collection's own delete operation does, and returns what
    /// that returns. Nothing happens when the member has been deleted already and at the end.
    /// Refused as that operation is.
    GenericValue del();

    friend bool operator==(CollectionIterator const& a, CollectionIterator const& b) noexcept {
        return a.walk_ == b.walk_;
    }

private:
    Pelo::Ptr<Pelo::Node> owner_;
    bool constant_;
    Pelo::FieldId field_;
    std::shared_ptr<Walk> walk_; // goes before the owner
};

/// The text form of a walk is that of its current key.
template <> struct ValueTraits<CollectionIterator> {
    static constexpr ValueKind kind = ValueKind::iterator;
    static std::string name() { return "Qor::CollectionIterator"; }
    static std::string text(CollectionIterator const& value) { return value.key().text(); }
    static Pelo::Parsed<CollectionIterator> parse(std::string_view) {
        return Pelo::ParseError{0, "a " + name() + ", which cannot be given as text"};
    }
};

} // namespace Qor
