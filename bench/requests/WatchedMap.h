#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace Bench {

/// A map that tells its watchers which key changed, after the change; setting what is there already
/// is no change. What the records of the library are, over a map of `Policy`.
template <class Policy, class Value> class WatchedMap {
public:
    using Key = typename Policy::Key;
    using Members = typename Policy::template Map<Key, Value>;
    using Watcher = std::function<void(Key const&)>;

    Members const& members() const noexcept { return members_; }
    Value const* find(Key const& key) const {
        auto const found = members_.find(key);
        return found == members_.end() ? nullptr : &found->second;
    }
    bool has(Key const& key) const { return members_.find(key) != members_.end(); }

    void watch(Watcher watcher) { watchers_.push_back(std::move(watcher)); }
    void watchersDel() noexcept { watchers_.clear(); }

    void set(Key const& key, Value const& value) {
        auto const [at, inserted] = members_.try_emplace(key, value);
        if (!inserted) {
            if (at->second == value) {
                return;
            }
            at->second = value;
        }
        publish(key);
    }
    void erase(Key const& key) {
        if (members_.erase(key) != 0) {
            publish(key);
        }
    }

private:
    void publish(Key const& key) const {
        for (Watcher const& watcher : watchers_) {
            watcher(key);
        }
    }

    Members members_;
    std::vector<Watcher> watchers_;
};

} // namespace Bench
