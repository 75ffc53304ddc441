#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "pelo/ThreadControl.h"

namespace Qor {
class TypeData;
}

namespace Pelo {

class Publisher;

/// The flags that every node carries.
enum class NodeFlag : U32 {
    notificationActive = 1u << 0, ///< the node's reactors are switched on
    zombie = 1u << 1,             ///< the node's reactors ignore every notification
};

/// The base of everything that is shared by counted pointers: a use count and a word of flags.
///
/// A node is built with one use, which belongs to whoever built it; `Ptr` takes it over with
/// `Ptr::adopt`. When the last use is given back, `lastUserGone` destroys the object; from then on
/// nobody may take a use, its destructor included. Nodes are neither copied nor moved.
///
/// Nodes that hold the last uses of each other, a chain or a tree of any depth, need no more than
/// half of the stack to go: beyond that, a node whose last use is given back within the destruction
/// of another is destroyed after that one, before the outermost `decUseImpl` returns.
///
/// Use counts follow the thread-control rule (see `ThreadControl`); everything else is for one
/// thread at a time.
///
/// The order of the virtual functions is part of the binary interface, so they stand first:
/// destructor, `lastUserGone`, `publisher`, `typeData`.
class VORNIC_RUNTIME_API Node {
protected:
    Node() noexcept = default;
    virtual ~Node();

    /// Runs when the last use is given back; destroys the object.
    virtual void lastUserGone() noexcept;

public:
    /// The node's own publisher; null for a node that publishes nothing, which is the default.
    /// Whoever may read a node may subscribe to it, so a pointer to const is enough.
    virtual Publisher* publisher() const noexcept;

    /// The description of the node's attributes and operations; null for a type that offers none
    /// (the default).
    virtual Qor::TypeData const* typeData() const;

    Node(Node const&) = delete;
    Node& operator=(Node const&) = delete;

    void incUse() const noexcept { countInc(useCount_); }
    /// Gives back one use. When it was the last, the object is gone afterwards (or, deep within the
    /// destruction of others, soon).
    void decUseImpl() const noexcept {
        if (countDec(useCount_)) {
            const_cast<Node*>(this)->lastUserGone();
        }
    }
    /// The number of uses at this moment; for tests and inspection, since another thread may change
    /// it at once.
    U32 useCount() const noexcept;

    bool nodeFlag(NodeFlag flag) const noexcept {
        return (nodeFlags_ & static_cast<U32>(flag)) != 0;
    }
    void nodeFlagSet(NodeFlag flag, bool on) noexcept;

    /// Sets or clears the zombie flag. A node that is a zombie is on its way out, or is changing
    /// its subscriptions.
    void markAndSweepFlagSet(bool on) noexcept { nodeFlagSet(NodeFlag::zombie, on); }
    bool isZombie() const noexcept { return nodeFlag(NodeFlag::zombie); }

private:
    static constexpr U32 flagsRange = 4; ///< above every combination of flags

    Node* linkIs(Node* link) noexcept;
    Node* linkDel() noexcept;

    mutable U32 useCount_ = 1;
    U32 nodeFlags_ = 0;
};

} // namespace Pelo
