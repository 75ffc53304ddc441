#pragma once

#include "pelo/Node.h"
#include "qor/CollectionIterator.h"
#include "qor/FieldData.h"
#include "qor/HashMap2018.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

/// How accessors of C++ types are called with generic values; for `TypeBuilder` only.
namespace Qor::Detail {

/// The description of what a parameter or result of type `A` is passed as.
template <class A> ValueType const& parameterType() { return valueTypeOf<StoredType<A>>(); }

template <class R> struct Result {
    static ValueType const* type() { return &parameterType<R>(); }
    static GenericValue generic(R&& value) { return GenericValue::of(std::forward<R>(value)); }
};
template <class R> struct Result<std::optional<R>> {
    static ValueType const* type() { return &parameterType<R>(); }
    static GenericValue generic(std::optional<R>&& value) {
        return value ? GenericValue::of(*std::move(value)) : GenericValue();
    }
};
template <> struct Result<void> {
    static ValueType const* type() { return nullptr; }
};

template <class R> ValueType const* resultType() { return Result<R>::type(); }

/// An argument as the parameter type `A` takes it. A plain pointer stays valid as long as `value`,
/// which holds a use.
template <class A> decltype(auto) argumentAs(GenericValue const& value) {
    if constexpr (std::is_pointer_v<A>) {
        static_assert(std::derived_from<std::remove_cv_t<std::remove_pointer_t<A>>, Pelo::Node>);
        return static_cast<A>(value.as<StoredType<A>>().get());
    } else {
        return value.as<StoredType<A>>();
    }
}

/// Calls `function` with generic values for its parameters `A`, and makes one of its result of type
/// `R`.
template <class R, class... A, class Call, std::size_t... I>
GenericValue callWith(Call const& call, Arguments values, std::index_sequence<I...>) {
    if constexpr (std::is_void_v<R>) {
        call(argumentAs<A>(values[I])...);
        return {};
    } else {
        return Result<R>::generic(call(argumentAs<A>(values[I])...));
    }
}

/// The access that calls a member function, or a function of a `T&`, on the target. `T` is constant
/// for one that changes nothing.
template <class T, class R, class... A, class Function> auto memberRun(Function function) {
    return [function](AccessTarget const& target, Arguments values) {
        auto const call = [&](auto&&... arguments) -> R {
            return std::invoke(function, static_cast<T&>(target.node),
                               std::forward<decltype(arguments)>(arguments)...);
        };
        return callWith<R, A...>(call, values, std::index_sequence_for<A...>());
    };
}

template <class R, class... A, std::size_t... I>
auto createRun(Pelo::Ptr<R> (*create)(A...), std::index_sequence<I...>) {
    return [create](Arguments values) -> Pelo::Ptr<Pelo::Node> {
        return create(argumentAs<A>(values[I])...);
    };
}

template <class K, class V> class MapWalk final : public CollectionIterator::Walk {
public:
    explicit MapWalk(HashMap2018<K, V> const& members) : at_(members) {}

    bool nonNull() const noexcept override { return static_cast<bool>(at_); }
    void advance() noexcept override { at_.advance(); }
    GenericValue key() const override {
        auto const* const member = at_.currNodeMaybeStale();
        return member == nullptr ? GenericValue() : GenericValue::of(member->key());
    }
    GenericValue object() const override {
        auto const* const member = at_.currNodeMaybeStale();
        return member == nullptr ? GenericValue() : GenericValue::of(member->value());
    }

private:
    typename HashMap2018<K, V>::Iterator at_;
};

/// The accesses that read a collection, which `members` gives.
template <class T, class K, class V, class Members>
std::vector<FieldAccess> collectionReads(Pelo::FieldId number, ArgumentData const& key,
                                         Members members) {
    using Map = HashMap2018<K, V>;
    auto const of = [members](AccessTarget const& target) -> Map const& {
        return std::invoke(members, static_cast<T const&>(target.node));
    };
    auto const find = [of](AccessTarget const& target, Arguments values) {
        return of(target).lookupNode(values[0].as<K>());
    };
    ValueType const* const value = &valueTypeOf<V>();
    return {
        {OpCode::get,
         false,
         {key},
         value,
         [find](AccessTarget const& target, Arguments values) {
             auto const* const member = find(target, values);
             return GenericValue::of(member == nullptr ? V() : member->value());
         }},
        {OpCode::lookup,
         false,
         {key},
         value,
         [find](AccessTarget const& target, Arguments values) {
             auto const* const member = find(target, values);
             return member == nullptr ? GenericValue() : GenericValue::of(member->value());
         }},
        {OpCode::has,
         false,
         {key},
         &valueTypeOf<bool>(),
         [find](AccessTarget const& target, Arguments values) {
             return GenericValue::of(find(target, values) != nullptr);
         }},
        {OpCode::count,
         false,
         {},
         &valueTypeOf<U32>(),
         [of](AccessTarget const& target, Arguments) {
             return GenericValue::of(U32{of(target).memberCount()});
         }},
        {OpCode::iterate,
         false,
         {},
         &valueTypeOf<CollectionIterator>(),
         [of, number](AccessTarget const& target, Arguments) {
             return GenericValue::of(
                 CollectionIterator(target.node, target.constant, number,
                                    std::make_shared<MapWalk<K, V>>(of(target))));
         }},
    };
}

} // namespace Qor::Detail
