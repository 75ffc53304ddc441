#include "Options.h"

#include "pelo/Decimal.h"
#include "qor/TraceHandle.h"
#include "text/Utf8.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <sstream>

namespace VpAgent {

namespace {

constexpr char const* description =
    "vpagent plays the agent of a leaf switch: clients request virtual ports, and the allocator\n"
    "gives each its index in the VP table. Commands come from the scripts in turn, from standard\n"
    "input for '-' and without a script, and with a prompt when that is a terminal. 'help' there\n"
    "lists them.\n";

constexpr char const* statuses =
    "Exit status: 0; 1 when a verify failed; 2 for a wrong option, an unreadable script or\n"
    "a failed command.";

void addSettings(CLI::App& app, StartSettings& defaults) {
    for (Setting const& setting : settingList()) {
        auto const read = [&defaults, &setting](CLI::results_t const& values) {
            if (auto const fault = setting.set(defaults, values[0])) {
                throw CLI::ValidationError("--" + std::string(setting.name),
                                           "bad value \"" + values[0] + "\", expected " +
                                               fault->expected);
            }
            return true;
        };
        std::string const name = "--" + std::string(setting.name);
        app.add_option(name, read, "default of start: " + std::string(setting.meaning))
            ->type_name(std::string(setting.values))
            ->expected(1)
            ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    }
}

void addTrace(CLI::App& app, U64& levels) {
    auto const read = [&levels](CLI::results_t const& values) {
        auto const mask = parseTraceLevels(values[0]);
        if (!mask) {
            throw CLI::ValidationError("--trace",
                                       "bad levels \"" + values[0] +
                                           "\", expected levels from 0 to 63 as in 1,5,7, or all");
        }
        levels = *mask;
        return true;
    };
    app.add_option("--trace", read,
                   "show the trace lines of these levels, as in 1,5,7 (all: every level)")
        ->type_name("LEVELS")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
}

/// The scripts as they were given. Read from the option's results, since the library takes a word
/// in brackets or braces for a list when it is to fill a vector; an option that is not one takes so
/// many words as it needs at least, here all of them.
CLI::Option* addScripts(CLI::App& app) {
    constexpr int all = CLI::detail::expected_max_vector_size;
    auto const keep = [](CLI::results_t const&) { return true; };
    return app.add_option("SCRIPT", keep, "files of commands")
        ->type_name("")
        ->expected(all, all)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

} // namespace

std::variant<Options, int> readOptions(int argc, char const* const* argv) {
    Options options;
    CLI::App app(description, "vpagent");
    app.set_help_flag("-h,--help", "print this and exit");
    app.set_version_flag("--version", "vpagent " VPAGENT_VERSION, "print the version and exit");
    app.add_flag("--json", options.json,
                 "print every output as one JSON object on a line of its own")
        ->disable_flag_override();
    app.add_flag("--keep-going", options.keepGoing, "carry on after a command that failed")
        ->disable_flag_override();
    addTrace(app, options.traceLevels);
    addSettings(app, options.defaults);
    app.add_option("--state", options.stateFile,
                   "keep the database in this file, so that it outlives the program")
        ->type_name("FILE")
        ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    CLI::Option const* const scripts = addScripts(app);
    app.footer(statuses);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        std::ostringstream complaint; // which repeats what was given
        bool const told = app.exit(error, std::cout, complaint) == 0 && std::cout.flush();
        std::cerr << printableLines(complaint.str());
        return told ? 0 : failureStatus;
    }
    options.scripts = scripts->results();
    return options;
}

std::optional<U64> parseTraceLevels(std::string_view text) {
    if (text == "all") {
        return ~U64{0};
    }
    U64 mask = 0;
    for (;;) {
        std::size_t const comma = text.find(',');
        auto const level =
            Pelo::parseDecimal(text.substr(0, comma), Qor::TraceHandle::levelCount - 1);
        if (!level) {
            return std::nullopt;
        }
        mask |= U64{1} << *level;
        if (comma == std::string_view::npos) {
            return mask;
        }
        text.remove_prefix(comma + 1);
    }
}

} // namespace VpAgent
