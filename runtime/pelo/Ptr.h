#pragma once

#include "pelo/Slab.h"

#include <cstddef>
#include <type_traits>
#include <utility>

namespace Pelo {

/// Counted pointer to a node: each non-null `Ptr` holds one use. Null is allowed.
///
/// A `Ptr` built from a plain pointer takes a use of its own; `adopt` takes over a use that the
/// caller holds (that of a node just built). Copies follow the thread-control rule; one `Ptr`
/// object is for one thread at a time.
template <class T> class Ptr {
public:
    constexpr Ptr() noexcept = default;
    constexpr Ptr(std::nullptr_t) noexcept {}
    explicit Ptr(T* node) noexcept : node_(node) { take(); }
    Ptr(Ptr const& other) noexcept : node_(other.node_) { take(); }
    Ptr(Ptr&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}

    template <class U>
        requires std::is_convertible_v<U*, T*>
    Ptr(Ptr<U> const& other) noexcept : node_(other.get()) {
        take();
    }
    template <class U>
        requires std::is_convertible_v<U*, T*>
    Ptr(Ptr<U>&& other) noexcept : node_(other.detach()) {}

    ~Ptr() { release(); }

    Ptr& operator=(Ptr other) noexcept {
        std::swap(node_, other.node_);
        return *this;
    }

    /// A pointer that takes over one use which the caller holds.
    static Ptr adopt(T* node) noexcept {
        Ptr result;
        result.node_ = node;
        return result;
    }

    /// Gives the pointer's use to the caller and becomes null.
    T* detach() noexcept { return std::exchange(node_, nullptr); }

    T* get() const noexcept { return node_; }
    T& operator*() const noexcept { return *node_; }
    T* operator->() const noexcept { return node_; }
    explicit operator bool() const noexcept { return node_ != nullptr; }

    friend bool operator==(Ptr const& a, Ptr const& b) noexcept { return a.node_ == b.node_; }
    friend bool operator==(Ptr const& a, T const* b) noexcept { return a.node_ == b; }
    friend bool operator==(Ptr const& a, std::nullptr_t) noexcept { return a.node_ == nullptr; }

private:
    void take() const noexcept {
        if (node_ != nullptr) {
            node_->incUse();
        }
    }
    void release() const noexcept {
        if (node_ != nullptr) {
            node_->decUseImpl();
        }
    }

    T* node_ = nullptr;
};

/// Builds a node, in slab storage if its type is `SlabAllocated`, and returns the pointer that owns
/// its first use. A constructor that throws leaves nothing behind.
template <class T, class... Args> Ptr<T> newNode(Args&&... args) {
    if constexpr (InSlab<T>) {
        return Ptr<T>::adopt(new (NodeSize{sizeof(T)}) T(std::forward<Args>(args)...));
    } else {
        return Ptr<T>::adopt(new T(std::forward<Args>(args)...));
    }
}

} // namespace Pelo
