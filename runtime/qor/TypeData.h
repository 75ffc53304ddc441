#pragma once

#include "pelo/Export.h"
#include "pelo/Node.h"
#include "pelo/Ptr.h"
#include "qor/FieldData.h"

#include <functional>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Qor {

class TypeModule;

/// The description of an entity type: its attributes, collections and operations in order, and how
/// to construct it.
///
/// One object a type, made by `TypeBuilder`; see there for how a type declares its own. It never
/// changes once it is built, so any thread may read it. Fields and types are looked up by walking.
class VORNIC_RUNTIME_API TypeData {
public:
    struct Constructor {
        std::vector<ArgumentData> arguments;
        std::function<Pelo::Ptr<Pelo::Node>(Arguments)> create;
    };

    TypeData(char const* name, std::string documentation, std::vector<FieldData> fields,
             std::optional<Constructor> constructor)
        : name_(name),
          documentation_(std::move(documentation)),
          fields_(std::move(fields)),
          constructor_(std::move(constructor)) {}
    TypeData(TypeData const&) = delete;
    TypeData& operator=(TypeData const&) = delete;

    /// With its namespaces: "VornicCentral::VpIndexConfigDir".
    char const* name() const noexcept { return name_; }
    /// Without them: "VpIndexConfigDir".
    std::string_view unqualifiedName() const noexcept;

    /// What the type is, in a few words for people; may be empty.
    std::string const& documentation() const noexcept { return documentation_; }

    std::span<FieldData const> fields() const noexcept { return fields_; }

    /// Null when there is none.
    FieldData const* fieldByNumber(Pelo::FieldId number) const noexcept;
    FieldData const* fieldByName(std::string_view name) const noexcept;

    /// Null for a type that cannot be constructed from arguments.
    Constructor const* constructor() const noexcept {
        return constructor_ ? &*constructor_ : nullptr;
    }

    /// The registered type of that name, with its namespaces or, where only one type has it,
    /// without them; null when there is none.
    static TypeData const* find(std::string_view name);
    /// As `find`, but what is not there is refused with `UnknownNameException`.
    static TypeData const& get(std::string_view name);

private:
    char const* name_;
    std::string documentation_;
    std::vector<FieldData> fields_;
    std::optional<Constructor> constructor_;
};

/// Prints the type for reference: its name with the constructor's arguments, then a line a field
/// with number and signature, each with its documentation on a line below.
VORNIC_RUNTIME_API std::ostream& operator<<(std::ostream& out, TypeData const& type);

} // namespace Qor
