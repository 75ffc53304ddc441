#include "pelo/Node.h"

#include "pelo/Stack.h"

namespace Pelo {
namespace {

/// The nodes that the thread is destroying.
struct Destruction {
    U32 depth = 0;         ///< the nodes within whose destruction we are
    Node* first = nullptr; ///< those that wait until the innermost of them is gone, last come first
};
[[gnu::tls_model("initial-exec")]] constinit thread_local Destruction destruction;

} // namespace

Node::~Node() = default;

U32 Node::useCount() const noexcept {
    return std::atomic_ref<U32>(useCount_).load(std::memory_order_relaxed);
}

void Node::nodeFlagSet(NodeFlag flag, bool on) noexcept {
    auto const bit = static_cast<U32>(flag);
    nodeFlags_ = on ? (nodeFlags_ | bit) : (nodeFlags_ & ~bit);
}

Publisher* Node::publisher() const noexcept { return nullptr; }

Qor::TypeData const* Node::typeData() const { return nullptr; }

/// A node often holds the last use of another one, as in a chain. While there is stack the other
/// goes within the destruction of the first, and then, so that a chain may be of any length, after
/// it.
void Node::lastUserGone() noexcept {
    if (destruction.depth != 0 && Stack::halfUsed()) {
        destruction.first = linkIs(destruction.first);
        return;
    }
    ++destruction.depth;
    delete this;
    while (destruction.first != nullptr) {
        Node* const next = destruction.first;
        destruction.first = next->linkDel();
        delete next;
    }
    --destruction.depth;
}

/// Keeps a pointer to another node, or null, in a node without uses: in the words of the use count
/// and of the flags, which take the place of the pointer's lowest bits.
Node* Node::linkIs(Node* link) noexcept {
    static_assert(alignof(Node) >= flagsRange);
    U64 const word = reinterpret_cast<std::uintptr_t>(link) | nodeFlags_;
    useCount_ = static_cast<U32>(word);
    nodeFlags_ = static_cast<U32>(word >> 32);
    return this;
}

/// Takes the pointer out; the flags are again what they were.
Node* Node::linkDel() noexcept {
    U64 const word = U64{nodeFlags_} << 32 | useCount_;
    useCount_ = 0;
    nodeFlags_ = static_cast<U32>(word % flagsRange);
    return reinterpret_cast<Node*>(static_cast<std::uintptr_t>(word - nodeFlags_));
}

} // namespace Pelo
