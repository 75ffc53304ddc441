#pragma once

#include "pelo/Export.h"

#include <cstddef>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

namespace Qor {

/// An enumeration that the platform knows by name: its enumerators, each findable by name and by
/// value.
///
/// An enumeration is described once, by a static object that is registered as long as it lives:
///
///     Qor::EnumType<unsigned int> const colourType("Colour", enumerators);
///
/// The list of enumerators and its texts must outlive the object. Names and values of one
/// enumeration are distinct, and so are the names of the enumerations of a process; a list that
/// breaks this stops the process. Lookup walks the list. Reading is safe from any thread once the
/// libraries are loaded.
template <class Value> class VORNIC_RUNTIME_API EnumType {
public:
    struct Enumerator {
        Value value;
        char const* name;
    };

    EnumType(char const* name, std::span<Enumerator const> enumerators);
    ~EnumType();
    EnumType(EnumType const&) = delete;
    EnumType& operator=(EnumType const&) = delete;

    char const* name() const noexcept { return name_; }
    std::span<Enumerator const> enumerators() const noexcept { return enumerators_; }

    /// The enumerator of a value or a name; null when there is none.
    Enumerator const* find(Value value) const noexcept;
    Enumerator const* find(std::string_view name) const noexcept;

    /// As `find`, but what is not there is refused with `UnknownNameException`.
    Enumerator const& instance(Value value) const;
    Enumerator const& instance(std::string_view name) const;

    /// The enumerator's name. A value that has none reads "NAME(VALUE)", with the enumeration's
    /// name.
    std::string stringValue(Value value) const;
    void print(std::ostream& out, Value value) const;

    /// Reads an enumerator's name at the beginning of [begin, end) and gives the number of
    /// characters that it takes.
    ///
    /// The name reaches to the first character that cannot stand in a name (letters, digits, '_')
    /// or to the end. When it is no enumerator's, the result is 0 and `value` stays as it is.
    std::size_t sequenceToValue(char const* begin, char const* end, Value& value) const noexcept;

    /// The registered enumeration of that name; null when there is none.
    static EnumType const* findType(std::string_view name) noexcept;

private:
    char const* name_;
    std::span<Enumerator const> enumerators_;
};

extern template class EnumType<unsigned int>;

} // namespace Qor
