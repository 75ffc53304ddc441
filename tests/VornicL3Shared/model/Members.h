#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace ModelTest {

/// A keyed collection as a plain list: members stand in the order in which their keys were
/// inserted.
///
/// A key that is set again keeps its place, and one that is deleted and inserted again goes last.
template <class K, class V> class Members {
public:
    bool has(K const& key) const { return find(key) != nullptr; }
    V const* find(K const& key) const {
        auto const at = position(members_, key);
        return at == members_.end() ? nullptr : &at->second;
    }
    /// The key's value, or a default one when the key is not there.
    V get(K const& key) const {
        V const* const value = find(key);
        return value == nullptr ? V() : *value;
    }

    /// Whether that changed anything.
    bool is(K const& key, V const& value) {
        auto const at = position(members_, key);
        if (at == members_.end()) {
            members_.emplace_back(key, value);
            return true;
        }
        if (at->second == value) {
            return false;
        }
        at->second = value;
        return true;
    }
    bool del(K const& key) {
        auto const at = position(members_, key);
        if (at == members_.end()) {
            return false;
        }
        members_.erase(at);
        return true;
    }

    std::size_t size() const { return members_.size(); }
    bool empty() const { return members_.empty(); }
    auto begin() const { return members_.begin(); }
    auto end() const { return members_.end(); }

    /// Visits the members in order while the visitor may delete any of them: one that has gone by
    /// then is not visited.
    template <class Visit> void walk(Visit&& visit) const {
        std::vector<K> keys;
        keys.reserve(members_.size());
        for (auto const& [key, value] : members_) {
            keys.push_back(key);
        }
        for (K const& key : keys) {
            if (has(key)) {
                visit(key);
            }
        }
    }

private:
    template <class List> static auto position(List& members, K const& key) {
        auto at = members.begin();
        while (at != members.end() && at->first != key) {
            ++at;
        }
        return at;
    }

    std::vector<std::pair<K, V>> members_;
};

} // namespace ModelTest
