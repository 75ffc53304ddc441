#pragma once

#include "runtime/qor/MapKeys.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace Support {

/// A collection of the keys 1, 2, 3, ... that are changed while walks are under way.
class WalkedMap : public testing::Test {
protected:
    using Map = Qor::HashMap2018<U32, int>;
    using Numbers = std::vector<U32>;

    explicit WalkedMap(U32 count = 5) {
        for (U32 key = 1; key <= count; ++key) {
            insert(key);
        }
    }
    void insert(U32 key) { map->newMember(key, static_cast<int>(key)); }
    void remove(U32 key) { map->deleteMember(key); }

    /// The keys that a walk visits when `at(key)` is called on each.
    Numbers visited(std::function<void(U32)> const& at) {
        Numbers keys;
        for (Map::Iterator it(*map); it; it.advance()) {
            U32 const key = it.key();
            keys.push_back(key);
            at(key);
            if (keys.size() > 2000) {
                ADD_FAILURE() << "the walk does not end";
                break;
            }
        }
        return keys;
    }
    Numbers keys() const {
        Numbers numbers;
        for (auto const& [key, value] : membersOf(*map)) {
            numbers.push_back(key);
        }
        return numbers;
    }

    std::unique_ptr<Map> map = std::make_unique<Map>();
};

} // namespace Support
