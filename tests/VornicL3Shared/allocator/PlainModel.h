#pragma once

#include "VornicL3Shared/allocator/KindTest.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Test {

/// What the allocators are to do, said as plainly as possible: lists in the order of insertion,
/// searched by walking. A key is a kind, by its order, and a number; `state()` is the text of
/// `World::state`.
class PlainModel {
    static constexpr U32 none = 65535;

    /// A member of a list, its number first.
    template <class List> static auto find(List& list, U32 number) {
        return std::find_if(list.begin(), list.end(),
                            [&](auto const& member) { return member.first == number; });
    }

public:
    explicit PlainModel(Settings const& settings)
        : settings_(settings), used_(settings.tableSize, false) {
        std::fill_n(used_.begin(), 8, true);
    }

    void client(std::string const& name) { clients_.push_back({name, {}, {}}); }

    void request(std::size_t client, std::size_t kind, U32 number) {
        auto& [name, status, counters] = clients_[client];
        if (find(status[kind], number) != status[kind].end()) {
            return;
        }
        auto reference = find(references_[kind], number);
        if (reference == references_[kind].end()) {
            U32 const index = allocate(kind == 0 && settings_.remoteLow);
            ++(index == none ? counters.failures : counters.requests);
            references_[kind].emplace_back(number, Reference{index, {}});
            reference = references_[kind].end() - 1;
            if (index == none && settings_.reallocation) {
                waiting_[kind].push_back(number);
            }
        }
        reference->second.users.push_back(name);
        status[kind].emplace_back(number, reference->second.index);
    }

    void withdraw(std::size_t client, std::size_t kind, U32 number) {
        auto& [name, status, counters] = clients_[client];
        auto const held = find(status[kind], number);
        if (held == status[kind].end()) {
            return;
        }
        U32 const index = held->second;
        status[kind].erase(held);
        counters.frees += index == none ? 0 : 1;
        auto const reference = find(references_[kind], number);
        std::erase(reference->second.users, name);
        if (reference->second.users.empty()) {
            references_[kind].erase(reference);
            std::erase(waiting_[kind], number);
            release(index);
        }
    }

    std::string state() const {
        std::string text = "pool " + pool() + "\n";
        for (auto const& each : clients_) {
            text += "config " + each.name + ":" +
                    listed(
                        each.status, [](auto const& member) { return member.first; },
                        [](auto const&) { return std::string(); }) +
                    "\n";
        }
        for (auto const& each : clients_) {
            text += "status " + each.name + ":" +
                    listed(
                        each.status, [](auto const& member) { return member.first; },
                        [](auto const& member) { return "=" + std::to_string(member.second); }) +
                    each.counters.text() + " size=" + std::to_string(settings_.tableSize) + "\n";
        }
        text += "references:" + listed(
                                    references_, [](auto const& member) { return member.first; },
                                    [](auto const& member) { return member.second.text(); });
        text += "\nwaiting:" +
                listed(
                    waiting_, [](U32 number) { return number; }, [](U32) { return std::string(); });
        return text + "\nboot:\n";
    }

private:
    struct Counters {
        U32 requests = 0;
        U32 failures = 0;
        U32 frees = 0;
        std::string text() const {
            return " requests=" + std::to_string(requests) +
                   " failures=" + std::to_string(failures) + " frees=" + std::to_string(frees);
        }
    };
    struct Reference {
        U32 index;
        std::vector<std::string> users;
        std::string text() const {
            std::string names;
            for (auto const& user : users) {
                names += (names.empty() ? "" : " ") + user;
            }
            return "=" + std::to_string(index) + "[" + names + "]";
        }
    };
    template <class Member>
    using PerKind = std::array<std::vector<Member>, VornicCentral::kindCount>;
    struct Client {
        std::string name;
        PerKind<std::pair<U32, U32>> status; ///< a client holds what it requests
        Counters counters;
    };

    U32 allocate(bool low) {
        U32 const size = settings_.tableSize;
        for (U32 step = 0; step < size; ++step) {
            U32 const index = low ? step : size - 1 - step;
            if (!used_[index]) {
                used_[index] = true;
                return index;
            }
        }
        return none;
    }

    void release(U32 index) {
        if (index == none) {
            return;
        }
        for (std::size_t const kind : {3u, 0u, 1u, 2u, 4u}) { // VLANs before all others
            if (!waiting_[kind].empty()) {
                handOver(kind, waiting_[kind].front(), index);
                waiting_[kind].erase(waiting_[kind].begin());
                return;
            }
        }
        used_[index] = false;
    }
    void handOver(std::size_t kind, U32 number, U32 index) {
        find(references_[kind], number)->second.index = index;
        for (auto& each : clients_) {
            auto const held = find(each.status[kind], number);
            if (held != each.status[kind].end()) {
                held->second = index;
            }
        }
    }

    std::string pool() const {
        std::string text = std::to_string(used_.size()) + ":";
        for (std::size_t at = 0; at < used_.size(); ++at) {
            if (!used_[at]) {
                continue;
            }
            std::size_t const first = at;
            while (at + 1 < used_.size() && used_[at + 1]) {
                ++at;
            }
            text += " " + std::to_string(first) + (at == first ? "" : "-" + std::to_string(at));
        }
        return text;
    }

    template <class Lists, class Number, class Value>
    static std::string listed(Lists const& lists, Number number, Value value) {
        std::string text;
        VornicCentral::forEachKind([&](auto kind) {
            using Kind = decltype(kind);
            std::string members;
            for (auto const& member : lists[VornicCentral::kindOrder<Kind>]) {
                members += (members.empty() ? "" : " ") +
                           textOf(numbered<Kind>(number(member)).key) + value(member);
            }
            text += members.empty() ? "" : " " + std::string(Kind::word) + "{" + members + "}";
        });
        return text;
    }

    Settings settings_;
    std::vector<bool> used_;
    std::vector<Client> clients_;
    PerKind<std::pair<U32, Reference>> references_;
    PerKind<U32> waiting_;
};

} // namespace Test
