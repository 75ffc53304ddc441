#pragma once

#include "requests/Names.h"
#include "requests/Program.h"
#include "requests/QuietRing.h"

#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Bench {

/// What the cases do with a world, done by a program of `Policy`; see `OurWorld`.
template <class Policy> class ProgramWorld {
public:
    using Key = typename Policy::Key;

    static Key key(U32 at) { return {interfaceName(at), vlanNumber(at)}; }

    explicit ProgramWorld(U32 clients) : program_(tableEntries) {
        for (U32 at = 0; at < clients; ++at) {
            clients_.push_back(&program_.clientAdd(clientName(at)));
        }
        program_.start();
    }

    void request(Key const& key, U32 client = 0) { clients_[client]->config.set(key, true); }
    void withdraw(Key const& key, U32 client = 0) { clients_[client]->config.erase(key); }
    void shareBetween(Key const& key, std::vector<std::string> const& names) {
        typename Policy::Names clients(names.begin(), names.end());
        program_.references().set(key, {firstShared, std::move(clients)});
    }

    void start() { program_.start(); }
    void stop() { program_.stop(); }

    /// For setups, whose records nobody reads.
    template <class Work> void unrecorded(Work const& work) {
        if constexpr (requires { program_.recorder().isOn(false); }) {
            program_.recorder().isOn(false);
            work();
            program_.recorder().isOn(true);
        } else {
            QuietRing const quiet;
            work();
        }
    }

private:
    Program<Policy> program_;
    std::vector<typename Program<Policy>::Client*> clients_;
};

} // namespace Bench
