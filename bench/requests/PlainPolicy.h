#pragma once

#include "pelo/Integers.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Bench {

/// An interface by its name, and a VLAN on it.
class NamedKey {
public:
    NamedKey(std::string intf, U16 vlan) : intf_(std::move(intf)), vlan_(vlan) {}

    std::string const& intf() const noexcept { return intf_; }
    U16 vlan() const noexcept { return vlan_; }

    /// The short name of the interface, as "Et" and "1/1" of "Ethernet1/1".
    std::string_view letters() const noexcept { return std::string_view(intf_).substr(0, 2); }
    std::string_view digits() const noexcept {
        auto const digit =
            std::find_if(intf_.begin(), intf_.end(), [](char c) { return c >= '0' && c <= '9'; });
        return std::string_view(intf_).substr(static_cast<std::size_t>(digit - intf_.begin()));
    }

    friend bool operator==(NamedKey const&, NamedKey const&) = default;

private:
    std::string intf_;
    U16 vlan_;
};

/// The standard library alone: hash maps, a tree of names, a tree of free indices, and text streams
/// for the records.
struct PlainPolicy {
    using Key = NamedKey;

    struct Hash {
        std::size_t operator()(NamedKey const& key) const noexcept {
            return std::hash<std::string>()(key.intf()) ^ (std::size_t{key.vlan()} << 1);
        }
    };
    template <class K, class V> using Map = std::unordered_map<K, V, Hash>;
    using Names = std::set<std::string>;

    class Pool {
    public:
        explicit Pool(U32 size) {
            for (U32 index = 0; index < size; ++index) {
                free_.insert(free_.end(), index);
            }
        }
        bool full() const noexcept { return free_.empty(); }
        bool mark(U32 index) { return free_.erase(index) != 0; }
        U32 takeHighest() {
            auto const highest = std::prev(free_.end());
            U32 const index = *highest;
            free_.erase(highest);
            return index;
        }
        void free(U32 index) { free_.insert(index); }

    private:
        std::set<U32> free_;
    };

    /// A ring of texts, each with its time and its place in the program.
    class Recorder {
    public:
        void isOn(bool on) noexcept { on_ = on; }

        template <U32 line, U32 level, class... Pieces> void write(Pieces const&... pieces) {
            if (!on_) {
                return;
            }
            std::ostringstream text;
            (text << ... << pieces);
            ring_[next_] = {std::chrono::system_clock::now(), level, line, std::move(text).str()};
            next_ = (next_ + 1) % ring_.size();
        }

    private:
        struct Record {
            std::chrono::system_clock::time_point time;
            U32 level = 0;
            U32 line = 0;
            std::string text;
        };
        static constexpr std::size_t size = std::size_t{1} << 14;

        bool on_ = true;
        std::size_t next_ = 0;
        std::vector<Record> ring_ = std::vector<Record>(size);
    };
};

} // namespace Bench
