#pragma once

#include "pelo/Decimal.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"
#include "pelo/Ptr.h"
#include "pelo/String.h"

#include <concepts>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <typeinfo>

namespace Pelo {
class Node;
}

namespace Qor {

/// What a value is to somebody who shows it.
enum class ValueKind {
    boolean,
    number,
    text,     ///< everything else that has a text form
    entity,   ///< a counted pointer to a node, or null
    iterator, ///< the position of a walk through a collection
};

/// The name of a C++ type as its source spells it, with its namespaces.
VORNIC_RUNTIME_API std::string sourceName(std::type_info const& type);

/// Takes "true" and "false".
VORNIC_RUNTIME_API Pelo::Parsed<bool> parseBool(std::string_view text);

/// "TYPE", or "TYPE \"NAME\"" for an entity that has a name; "null" for a null pointer.
VORNIC_RUNTIME_API std::string entityText(Pelo::Node const* node);

/// How generic access deals with values of type `T`: its name, its kind, its text form and how it
/// is read from text.
///
/// The general form suits every type that can be copied, compared and streamed. Texts are read by
/// `T::parse(std::string_view) -> Pelo::Parsed<T>`; where that is missing, no text is a `T`.
template <class T> struct ValueTraits {
    static constexpr ValueKind kind = ValueKind::text;

    static std::string name() { return sourceName(typeid(T)); }
    static std::string text(T const& value) {
        std::ostringstream out;
        out.exceptions(std::ios::badbit); // or it swallows those of the printer and cuts the text
        out << value;
        return std::move(out).str();
    }
    static Pelo::Parsed<T> parse([[maybe_unused]] std::string_view text) {
        if constexpr (requires {
                          { T::parse(text) } -> std::convertible_to<Pelo::Parsed<T>>;
                      }) {
            return T::parse(text);
        } else {
            return Pelo::ParseError{0, "a " + name() + ", which cannot be given as text"};
        }
    }
};

template <> struct ValueTraits<bool> {
    static constexpr ValueKind kind = ValueKind::boolean;
    static std::string name() { return "bool"; }
    static std::string text(bool value) { return value ? "true" : "false"; }
    static Pelo::Parsed<bool> parse(std::string_view text) { return parseBool(text); }
};

/// The traits of the unsigned integers.
template <class T> struct NumberTraits {
    static constexpr ValueKind kind = ValueKind::number;
    static std::string name() { return "U" + std::to_string(std::numeric_limits<T>::digits); }
    static std::string text(T value) { return std::to_string(value); }
    static Pelo::Parsed<T> parse(std::string_view text) {
        Pelo::Parsed<U64> const number = Pelo::parseDecimal(text, std::numeric_limits<T>::max());
        if (!number) {
            return number.error();
        }
        return static_cast<T>(*number);
    }
};
template <> struct ValueTraits<U8> : NumberTraits<U8> {};
template <> struct ValueTraits<U16> : NumberTraits<U16> {};
template <> struct ValueTraits<U32> : NumberTraits<U32> {};
template <> struct ValueTraits<U64> : NumberTraits<U64> {};

template <> struct ValueTraits<Pelo::String> {
    static constexpr ValueKind kind = ValueKind::text;
    static std::string name() { return "Pelo::String"; }
    static std::string text(Pelo::String const& value) { return std::string(value.view()); }
    static Pelo::Parsed<Pelo::String> parse(std::string_view text) { return Pelo::String(text); }
};

template <class T> struct ValueTraits<Pelo::Ptr<T>> {
    static constexpr ValueKind kind = ValueKind::entity;
    static std::string name() { return sourceName(typeid(Pelo::Ptr<T>)); }
    static std::string text(Pelo::Ptr<T> const& value) { return entityText(value.get()); }
    static Pelo::Parsed<Pelo::Ptr<T>> parse(std::string_view) {
        return Pelo::ParseError{0, "a " + name() + ", which cannot be given as text"};
    }
};

} // namespace Qor
