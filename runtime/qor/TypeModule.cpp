#include "qor/TypeModule.h"

#include "qor/Assert.h"

#include <algorithm>

namespace Qor {

namespace {

std::vector<TypeModule const*>& registered() {
    static std::vector<TypeModule const*> modules;
    return modules;
}

/// Whether a registered type has exactly this name.
bool typeNameTaken(std::string_view name) {
    TypeData const* const type = TypeData::find(name);
    return type != nullptr && type->name() == name;
}

} // namespace

TypeModule::TypeModule(char const* name, std::initializer_list<TypeData const*> types)
    : name_(name), types_(types) {
    QOR_ASSERT(find(name) == nullptr);
    for (TypeData const* const type : types_) {
        QOR_ASSERT(!typeNameTaken(type->name()));
        auto const sameName = [type](TypeData const* t) {
            return std::string_view(t->name()) == type->name();
        };
        QOR_ASSERT(std::count_if(types_.begin(), types_.end(), sameName) == 1);
    }
    registered().push_back(this);
}

TypeModule::~TypeModule() { std::erase(registered(), this); }

std::optional<std::size_t> TypeModule::indexOf(TypeData const& type) const noexcept {
    auto const at = std::find(types_.begin(), types_.end(), &type);
    if (at == types_.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(at - types_.begin());
}

std::span<TypeModule const* const> TypeModule::all() noexcept { return registered(); }

TypeModule const* TypeModule::find(std::string_view name) noexcept {
    for (TypeModule const* const module : all()) {
        if (module->name_ == name) {
            return module;
        }
    }
    return nullptr;
}

TypeModule const* TypeModule::of(TypeData const& type) noexcept {
    for (TypeModule const* const module : all()) {
        if (module->indexOf(type)) {
            return module;
        }
    }
    return nullptr;
}

} // namespace Qor
