#include "agent/ReplayScript.h"

#include <unistd.h>

#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace Bench {

namespace {

constexpr std::size_t clients = 4;

/// The virtual ports as commands name them.
std::vector<std::string> makeVports() {
    std::vector<std::string> vports;
    for (std::size_t at = 0; at < 40000; ++at) {
        vports.push_back("edge Ethernet" + std::to_string(at / 1000 + 1) +
                         "/1:" + std::to_string(at % 1000 + 1));
    }
    for (std::size_t at = 0; at < 8000; ++at) {
        vports.push_back("remote 10.0." + std::to_string(at / 250) + '.' +
                         std::to_string(at % 250 + 1) + '@' + std::to_string(at % 16 + 1000));
    }
    for (std::size_t at = 0; at < 4000; ++at) {
        vports.push_back("vlan " + std::to_string(at + 1));
    }
    for (std::size_t at = 0; at < 200; ++at) {
        vports.push_back("mlag 10.1.0." + std::to_string(at + 1) + "@1");
        vports.push_back("efilter Port-Channel" + std::to_string(at + 1));
    }
    return vports;
}

void writeCommands(std::ostream& script, std::size_t commands) {
    constexpr std::size_t betweenShows = 10000;
    auto const vports = makeVports();
    std::vector<bool> requested(vports.size() * clients);
    std::mt19937_64 random(1); // NOLINT: the same script each time
    for (std::size_t at = 1; at <= commands; ++at) {
        if (at % betweenShows == 0) {
            script << "show table\n";
            continue;
        }
        std::size_t const chosen = random() % requested.size();
        script << (requested[chosen] ? "withdraw" : "request") << " leaf" << chosen % clients << ' '
               << vports[chosen / clients] << '\n';
        requested[chosen].flip();
    }
}

} // namespace

ReplayScript::ReplayScript(std::size_t commands, Unit unit)
    : path_(std::filesystem::temp_directory_path() /
            ("bench-replay-" + std::to_string(::getpid()) + '-' + std::to_string(commands) +
             (unit == Unit::one ? "-unit" : ""))) {
    std::ofstream script(path_);
    script << (unit == Unit::one ? "begin\n" : "") << "start table-size=65535\n";
    for (std::size_t client = 0; client < clients; ++client) {
        script << "client add leaf" << client << '\n';
    }
    writeCommands(script, commands);
    script << (unit == Unit::one ? "commit\n" : "");
    if (!script.flush()) {
        throw std::runtime_error("cannot write " + path_.string());
    }
}

ReplayScript::~ReplayScript() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

} // namespace Bench
