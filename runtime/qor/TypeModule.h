#pragma once

#include "pelo/Export.h"
#include "qor/TypeData.h"

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Qor {

/// The types of one library or unit, in the order of their indices; registered as long as the
/// object lives, which they must outlive.
///
/// A library registers its types when it is loaded:
///
///     static Qor::TypeModule const module("Cooling", {&Fan::typeTable()});
///
/// The names of modules are distinct within a process, and so are those of the registered types; a
/// module that breaks this stops the process. Reading is safe from any thread once the libraries
/// are loaded.
class VORNIC_RUNTIME_API TypeModule {
public:
    TypeModule(char const* name, std::initializer_list<TypeData const*> types);
    ~TypeModule();
    TypeModule(TypeModule const&) = delete;
    TypeModule& operator=(TypeModule const&) = delete;

    char const* name() const noexcept { return name_; }
    std::span<TypeData const* const> types() const noexcept { return types_; }

    /// The index of a type within this module; nothing when it is of another one.
    std::optional<std::size_t> indexOf(TypeData const& type) const noexcept;

    /// The registered modules in the order of their registration; valid until one comes or goes.
    static std::span<TypeModule const* const> all() noexcept;
    /// Null when there is none.
    static TypeModule const* find(std::string_view name) noexcept;
    /// The module that a type belongs to; null for a type that is not registered.
    static TypeModule const* of(TypeData const& type) noexcept;

private:
    char const* name_;
    std::vector<TypeData const*> types_;
};

} // namespace Qor
