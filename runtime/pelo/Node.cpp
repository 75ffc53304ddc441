#include "pelo/Node.h"

namespace Pelo {

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

void Node::lastUserGone() noexcept { delete this; }

} // namespace Pelo
