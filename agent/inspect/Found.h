#pragma once

#include "inspect/Path.h"
#include "pelo/Node.h"
#include "pelo/Ptr.h"
#include "qor/FieldData.h"

#include <span>

namespace VpAgent {

class Agent;

/// What a path leads to: an entity, a collection of one, or a value.
///
/// Whatever is reached through a pointer to a constant is constant.
class Found {
public:
    /// The entity that a pointer points to; null when the pointer is.
    static Found entity(Qor::GenericValue const& pointer, bool throughConstant = false);

    /// One step further: an attribute or a collection of the entity, a member of the collection, or
    /// nothing behind a value. Throws `Refusal` with the place of the step, for a null pointer too.
    Found next(Step const& step, Word const& word) const;

    /// Set for an entity and for a collection, whose entity it is.
    Pelo::Node const* node() const noexcept { return node_.get(); }
    /// Null but for a collection.
    Qor::FieldData const* collection() const noexcept { return collection_; }
    /// Nothing but for a value.
    Qor::GenericValue const& value() const noexcept { return value_; }

    bool isEntity() const noexcept { return node_ && collection_ == nullptr; }

    /// Whether the entity must not be changed.
    bool constant() const noexcept { return constant_; }
    /// The entity, which is not constant.
    Pelo::Node& mutableNode() const { return const_cast<Pelo::Node&>(*node_); }

private:
    Found fieldOf(Step const& step, Word const& word) const;
    Found memberOf(Step const& step, Word const& word) const;
    Found valueAt(Qor::GenericValue const& value, Step const& step, Word const& word) const;

    Pelo::Ptr<Pelo::Node const> node_;
    bool constant_ = false;
    Qor::FieldData const* collection_ = nullptr;
    Qor::GenericValue value_;
};

/// Follows steps, the first of which is a root; there is at least one. Throws `Refusal` with the
/// place of the first step that leads nowhere, and the names that could stand there.
Found follow(Agent const& agent, std::span<Step const> steps, Word const& word);

} // namespace VpAgent
