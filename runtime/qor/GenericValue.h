#pragma once

#include "pelo/Export.h"
#include "pelo/Node.h"
#include "qor/ValueType.h"

#include <any>
#include <concepts>
#include <initializer_list>
#include <iosfwd>
#include <span>
#include <string>
#include <type_traits>
#include <utility>

namespace Qor {

/// The description of `T`.
template <class T> auto valueTypeOf() -> ValueType const&;

namespace Detail {

template <class T> struct Stored {
    using Type = T;
};
template <std::derived_from<Pelo::Node> T> struct Stored<T*> {
    using Type = Pelo::Ptr<T>;
};
template <std::derived_from<Pelo::Node> T> struct Stored<T const*> {
    using Type = Pelo::Ptr<T const>;
};
template <> struct Stored<char const*> {
    using Type = Pelo::String;
};
template <> struct Stored<std::string_view> {
    using Type = Pelo::String;
};

} // namespace Detail

/// The type as which a generic value keeps a `T`: plain values as they are, a plain pointer to a
/// node as a counted one, a text as a `Pelo::String`.
template <class T> using StoredType = typename Detail::Stored<std::decay_t<T>>::Type;

/// A value of any type that attributes, keys, arguments and results have, or nothing.
///
///     Qor::GenericValue const size = Qor::inspectOperation(node, 134, Qor::OpCode::get);
///     U32 const entries = size.as<U32>();
///
/// A value is read as the very type that it was made of, numbers included. The one exception: a
/// `Pelo::Ptr<T>` may be read as a `Pelo::Ptr<T const>`. A pointer to a derived type is not taken
/// for one to its base; whoever makes the value converts it first.
///
/// A copy is a value of its own; a pointer in it holds a use. Cost: what does not fit into a word
/// is allocated, so generic access is for tools rather than for hot paths.
class VORNIC_RUNTIME_API GenericValue {
public:
    GenericValue() = default; ///< nothing

    template <class T> static GenericValue of(T&& value) {
        using Kept = StoredType<T>;
        return {valueTypeOf<Kept>(), std::any(std::in_place_type<Kept>, std::forward<T>(value))};
    }

    bool empty() const noexcept { return type_ == nullptr; }

    /// The type of the value; null for nothing.
    ValueType const* type() const noexcept { return type_; }

    template <class T> bool is() const { return valueTypeOf<T>().accepts(type_); }

    /// The value as a `T`; `ArgumentTypeException` when it is something else.
    template <class T> T as() const {
        if (T const* const value = std::any_cast<T>(&value_)) {
            return *value;
        }
        if constexpr (Detail::PointsToConst<T>::value) {
            using Mutable = typename Detail::PointsToConst<T>::Mutable;
            if (Mutable const* const value = std::any_cast<Mutable>(&value_)) {
                return *value;
            }
        }
        throwOtherType(valueTypeOf<T>());
    }

    /// The text form; empty for nothing.
    std::string text() const;

    /// The entity that the value points to; null when the value is a null pointer or no pointer.
    Pelo::Ptr<Pelo::Node const> node() const;
    /// As `node()`, but null also when the value points to a constant entity.
    Pelo::Ptr<Pelo::Node> mutableNode() const;

    /// Equal values of the same type are equal, and so is nothing to nothing.
    friend VORNIC_RUNTIME_API bool operator==(GenericValue const& a, GenericValue const& b);

private:
    GenericValue(ValueType const& type, std::any value) : type_(&type), value_(std::move(value)) {}

    [[noreturn]] void throwOtherType(ValueType const& wanted) const;

    ValueType const* type_ = nullptr;
    std::any value_;
};

/// Prints the text form; "nothing" for nothing.
VORNIC_RUNTIME_API std::ostream& operator<<(std::ostream& out, GenericValue const& value);

/// The arguments of an access, borrowed for the time of the call: from a vector, a span or a list
/// in braces.
class VORNIC_RUNTIME_API Arguments : public std::span<GenericValue const> {
public:
    using std::span<GenericValue const>::span;
    Arguments() = default;
    Arguments(std::initializer_list<GenericValue> list) noexcept
        : std::span<GenericValue const>(list.begin(), list.size()) {}
};

namespace Detail {

/// The description of a C++ type, made of its traits.
template <class T> class ValueTypeFor final : public ValueType {
public:
    ValueTypeFor()
        : ValueType(ValueTraits<T>::name(), ValueTraits<T>::kind, typeid(T), asConst()) {}

    std::string text(std::any const& value) const override {
        return ValueTraits<T>::text(*std::any_cast<T>(&value));
    }
    bool equal(std::any const& a, std::any const& b) const override {
        return *std::any_cast<T>(&a) == *std::any_cast<T>(&b);
    }
    Pelo::Parsed<GenericValue> parse(std::string_view text) const override {
        Pelo::Parsed<T> const value = ValueTraits<T>::parse(text);
        if (!value) {
            return value.error();
        }
        return GenericValue::of(*value);
    }
    Pelo::Node const* node([[maybe_unused]] std::any const& value) const override {
        if constexpr (ValueTraits<T>::kind == ValueKind::entity) {
            return std::any_cast<T>(&value)->get();
        } else {
            return nullptr;
        }
    }

private:
    static std::type_info const* asConst() {
        if constexpr (PointsToMutable<T>::value) {
            return &typeid(typename PointsToMutable<T>::Const);
        } else {
            return nullptr;
        }
    }
};

} // namespace Detail

template <class T> auto valueTypeOf() -> ValueType const& {
    static Detail::ValueTypeFor<T> const type;
    return type;
}

} // namespace Qor
