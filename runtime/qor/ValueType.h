#pragma once

#include "pelo/Export.h"
#include "pelo/Parsed.h"
#include "qor/ValueTraits.h"

#include <any>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace Qor {

class GenericValue;

/// The description of a type of values, as generic access needs it; one object a C++ type, made of
/// its `ValueTraits`.
class VORNIC_RUNTIME_API ValueType {
public:
    ValueType(ValueType const&) = delete;
    ValueType& operator=(ValueType const&) = delete;

    std::string const& name() const noexcept { return name_; }
    ValueKind kind() const noexcept { return kind_; }

    /// Whether a value of type `given` (null: nothing) can be passed where this type is wanted: it
    /// is of this very type, or a `Pelo::Ptr<T>` where a `Pelo::Ptr<T const>` is wanted.
    bool accepts(ValueType const* given) const noexcept;

    /// Whether it is a type of pointers through which the entity can be changed.
    bool pointsToMutable() const noexcept { return asConst_ != nullptr; }

    friend bool operator==(ValueType const& a, ValueType const& b) noexcept {
        return a.id_ == b.id_;
    }

    /// Reads a value of this type from the whole of a text.
    virtual Pelo::Parsed<GenericValue> parse(std::string_view text) const = 0;

protected:
    ValueType(std::string name, ValueKind kind, std::type_info const& id,
              std::type_info const* asConst)
        : name_(std::move(name)), kind_(kind), id_(id), asConst_(asConst) {}
    virtual ~ValueType() = default;

private:
    friend class GenericValue;
    friend VORNIC_RUNTIME_API bool operator==(GenericValue const& a, GenericValue const& b);

    // For values that are of this very type.
    virtual std::string text(std::any const& value) const = 0;
    virtual bool equal(std::any const& a, std::any const& b) const = 0;
    virtual Pelo::Node const* node(std::any const& value) const = 0;

    std::string name_;
    ValueKind kind_;
    std::type_info const& id_;
    std::type_info const*
        asConst_; ///< of the pointer to constant, for a pointer to something mutable
};

namespace Detail {

template <class T> struct PointsToConst : std::false_type {};
template <class T> struct PointsToConst<Pelo::Ptr<T const>> : std::true_type {
    using Mutable = Pelo::Ptr<T>;
};

template <class T> struct PointsToMutable : std::false_type {};
template <class T>
    requires(!std::is_const_v<T>)
struct PointsToMutable<Pelo::Ptr<T>> : std::true_type {
    using Const = Pelo::Ptr<T const>;
};

} // namespace Detail

} // namespace Qor
