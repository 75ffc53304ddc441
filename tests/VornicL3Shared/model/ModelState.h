#pragma once

#include "VornicL3Shared/model/Members.h"
#include "VornicL3Shared/model/Universe.h"

#include <optional>
#include <string>
#include <vector>

/// What there is in the model's world. All of it is plain values, so that a copy of the state is a
/// way back.
namespace ModelTest {

using Lines = std::vector<std::string>;
using Names = std::vector<std::string>;

inline constexpr U32 invalidIndex = 65535;

/// One of the five records' contents: a collection for each kind.
template <class V> struct Record {
    std::array<Members<Key, V>, kindCount> kinds;
    Members<Key, V>& operator[](Kind kind) { return kinds[static_cast<std::size_t>(kind)]; }
    Members<Key, V> const& operator[](Kind kind) const {
        return kinds[static_cast<std::size_t>(kind)];
    }
    std::size_t count() const {
        std::size_t sum = 0;
        for (auto const& members : kinds) {
            sum += members.size();
        }
        return sum;
    }
};

/// The value of a key that is requested or waits. Whatever it is, only that the key is there
/// counts.
struct Flag {
    bool on = false;
    friend bool operator==(Flag, Flag) = default;
};

/// The index 65535 is the invalid one.
struct VPort {
    U32 index = invalidIndex;
    friend bool operator==(VPort, VPort) = default;
};

struct Reference {
    VPort vPort;
    Names names; ///< in the order in which they were added

    bool has(std::string const& name) const;
    void add(std::string const& name);
    void del(std::string const& name);
    /// The names are a set: their order makes no difference.
    friend bool operator==(Reference const& a, Reference const& b);
};

struct Config {
    std::string name;
    Record<Flag> keys;
};

struct Status {
    std::string name;
    Record<VPort> vports;
    U32 requests = 0;
    U32 failures = 0;
    U32 frees = 0;
    U32 size = 0;
};

/// Records have an identity, which is their number: another record of the same name is another one.
using RecordId = std::size_t;

/// Whom an allocator works for.
struct Client {
    RecordId config = 0;
    RecordId status = 0;
};

struct Allocator {
    Client client;
    bool vfiForwarding = false;
    bool active = true;
    bool zombie = false;
};

struct Settings {
    U32 tableSize = 16;
    bool reallocation = false;
    bool remoteLow = false;
    bool vfiForwarding = false;
    bool capabilities = true; ///< whether there is such a record
    bool configDir = true;    ///< whether there is one
};

struct Pool {
    U32 id = 0;
    bool initialState = false;
    std::vector<bool> bits;
};

/// The state machine.
struct Machine {
    Settings settings;
    std::optional<Pool> pool;
    std::vector<std::pair<std::string, Allocator>> allocators;
    bool subscribed = true;
    bool active = false;
    bool zombie = false;
    bool initialized = false;

    Allocator* allocator(std::string const& name);
    bool allocatorHas(std::string const& name) const;
};

struct State {
    std::vector<Config> configs;
    std::vector<Status> statuses;
    Members<std::string, RecordId> configDir;
    Members<std::string, RecordId> statusDir;
    /// The config that a client writes to, in the directory or not.
    Members<std::string, RecordId> ownConfig;
    Record<Reference> references;
    Record<Flag> waiting;
    Record<VPort> boot;
    std::optional<Machine> machine;
};

/// The whole state in the form in which the tests print the library's.
std::string textOf(State const& state);

/// A member's value in that form, as `=15[bgp mlag]`.
std::string valueText(Flag value);
std::string valueText(VPort value);
std::string valueText(Reference const& value);

} // namespace ModelTest
