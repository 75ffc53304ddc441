#include "qor/GenericValue.h"

#include "qor/Exceptions.h"

#include <ostream>

namespace Qor {

bool ValueType::accepts(ValueType const* given) const noexcept {
    return given != nullptr &&
           (given->id_ == id_ || (given->asConst_ != nullptr && *given->asConst_ == id_));
}

std::string GenericValue::text() const { return empty() ? std::string() : type_->text(value_); }

Pelo::Ptr<Pelo::Node const> GenericValue::node() const {
    return Pelo::Ptr<Pelo::Node const>(empty() ? nullptr : type_->node(value_));
}

Pelo::Ptr<Pelo::Node> GenericValue::mutableNode() const {
    if (empty() || !type_->pointsToMutable()) {
        return nullptr;
    }
    // The value was made of a pointer to a mutable entity.
    return Pelo::Ptr<Pelo::Node>(const_cast<Pelo::Node*>(type_->node(value_)));
}

void GenericValue::throwOtherType(ValueType const& wanted) const {
    std::string const given = empty() ? "nothing" : "a " + type_->name() + " " + text();
    throw ArgumentTypeException(wanted.name(), "value",
                                "expected a " + wanted.name() + ", got " + given);
}

bool operator==(GenericValue const& a, GenericValue const& b) {
    if (a.empty() || b.empty()) {
        return a.empty() && b.empty();
    }
    return *a.type_ == *b.type_ && a.type_->equal(a.value_, b.value_);
}

std::ostream& operator<<(std::ostream& out, GenericValue const& value) {
    return out << (value.empty() ? "nothing" : value.text());
}

} // namespace Qor
