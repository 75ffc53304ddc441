#include "qor/EnumType.h"

#include "qor/Assert.h"
#include "qor/Exceptions.h"

#include <algorithm>
#include <ostream>
#include <vector>

namespace Qor {

namespace {

template <class Value> std::vector<EnumType<Value> const*>& registeredTypes() {
    static std::vector<EnumType<Value> const*> types;
    return types;
}

bool standsInNames(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

} // namespace

template <class Value>
EnumType<Value>::EnumType(char const* name, std::span<Enumerator const> enumerators)
    : name_(name), enumerators_(enumerators) {
    QOR_ASSERT(findType(name) == nullptr);
    for (Enumerator const& enumerator : enumerators_) {
        QOR_ASSERT(find(enumerator.value) == &enumerator);
        QOR_ASSERT(find(enumerator.name) == &enumerator);
    }
    registeredTypes<Value>().push_back(this);
}

template <class Value> EnumType<Value>::~EnumType() { std::erase(registeredTypes<Value>(), this); }

template <class Value> auto EnumType<Value>::find(Value value) const noexcept -> Enumerator const* {
    auto const at = std::find_if(enumerators_.begin(), enumerators_.end(),
                                 [&](Enumerator const& e) { return e.value == value; });
    return at == enumerators_.end() ? nullptr : &*at;
}

template <class Value>
auto EnumType<Value>::find(std::string_view name) const noexcept -> Enumerator const* {
    auto const at = std::find_if(enumerators_.begin(), enumerators_.end(),
                                 [&](Enumerator const& e) { return e.name == name; });
    return at == enumerators_.end() ? nullptr : &*at;
}

template <class Value> auto EnumType<Value>::instance(Value value) const -> Enumerator const& {
    Enumerator const* const enumerator = find(value);
    if (enumerator == nullptr) {
        throwUnknownName(name_, std::to_string(value));
    }
    return *enumerator;
}

template <class Value>
auto EnumType<Value>::instance(std::string_view name) const -> Enumerator const& {
    Enumerator const* const enumerator = find(name);
    if (enumerator == nullptr) {
        throwUnknownName(name_, std::string(name));
    }
    return *enumerator;
}

template <class Value> std::string EnumType<Value>::stringValue(Value value) const {
    Enumerator const* const enumerator = find(value);
    if (enumerator == nullptr) {
        return std::string(name_) + "(" + std::to_string(value) + ")";
    }
    return enumerator->name;
}

template <class Value> void EnumType<Value>::print(std::ostream& out, Value value) const {
    out << stringValue(value);
}

template <class Value>
std::size_t EnumType<Value>::sequenceToValue(char const* begin, char const* end,
                                             Value& value) const noexcept {
    char const* const nameEnd = std::find_if_not(begin, end, standsInNames);
    Enumerator const* const enumerator = find(std::string_view(begin, nameEnd));
    if (enumerator == nullptr) {
        return 0;
    }
    value = enumerator->value;
    return static_cast<std::size_t>(nameEnd - begin);
}

template <class Value>
EnumType<Value> const* EnumType<Value>::findType(std::string_view name) noexcept {
    for (EnumType const* type : registeredTypes<Value>()) {
        if (type->name_ == name) {
            return type;
        }
    }
    return nullptr;
}

template class EnumType<unsigned int>;

} // namespace Qor
