#pragma once

#include "VornicL3Shared/support/World.h"
#include "qor/GenericValue.h"
#include "qor/TypeData.h"

#include <map>
#include <string>
#include <vector>

namespace Test {

/// A running agent with something in every record, two values of every type that occurs in a
/// table, and an object of every registered type.
class Samples {
public:
    Samples();

    /// Two different values of the type.
    std::vector<Qor::GenericValue> const& of(Qor::ValueType const& type) const {
        return values_.at(type.name());
    }

    /// The first value of each argument's type.
    std::vector<Qor::GenericValue> of(std::vector<Qor::ArgumentData> const& arguments) const;

    /// Nothing, and a value of every type that must not be passed where `type` is wanted.
    std::vector<Qor::GenericValue> wrongFor(Qor::ValueType const& type) const;

    /// The object of that type, which the agent uses where it has one.
    Pelo::Ptr<Pelo::Node> object(Qor::TypeData const& type) const;

    /// The calls that the object of the multicast service has received.
    std::vector<std::string> const& serviceCalls() const noexcept { return serviceCalls_; }

    World world{{.tableSize = 32, .reallocation = true}};

private:
    template <class T> void add(T const& first, T const& second);
    template <class T> void addEntity(Pelo::Ptr<T> const& first, Pelo::Ptr<T> const& second);
    void addPlainValues();
    void addEntities();
    void addMulticast();

    std::vector<std::string> serviceCalls_;
    std::map<std::string, std::vector<Qor::GenericValue>> values_; ///< by the name of the type
    std::map<std::string, Pelo::Ptr<Pelo::Node>> objects_;         ///< by the name of the type
};

} // namespace Test
