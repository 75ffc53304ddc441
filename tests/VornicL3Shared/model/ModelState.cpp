#include "VornicL3Shared/model/ModelState.h"

#include <algorithm>

namespace ModelTest {

bool Reference::has(std::string const& name) const {
    return std::find(names.begin(), names.end(), name) != names.end();
}

void Reference::add(std::string const& name) {
    if (!has(name)) {
        names.push_back(name);
    }
}

void Reference::del(std::string const& name) { std::erase(names, name); }

bool operator==(Reference const& a, Reference const& b) {
    return a.vPort == b.vPort && a.names.size() == b.names.size() &&
           std::all_of(a.names.begin(), a.names.end(),
                       [&](std::string const& name) { return b.has(name); });
}

Allocator* Machine::allocator(std::string const& name) {
    for (auto& [key, allocator] : allocators) {
        if (key == name) {
            return &allocator;
        }
    }
    return nullptr;
}

bool Machine::allocatorHas(std::string const& name) const {
    return std::any_of(allocators.begin(), allocators.end(),
                       [&](auto const& each) { return each.first == name; });
}

} // namespace ModelTest
