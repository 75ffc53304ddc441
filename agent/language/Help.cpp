#include "language/Help.h"

#include "inspect/Roots.h"
#include "language/CommandTable.h"
#include "language/RingOptions.h"
#include "language/StartSettings.h"
#include "view/Show.h"

namespace VpAgent {

namespace {

constexpr std::string_view forms =
    "\n"
    "NAME is a client, of 1 to 255 bytes. INDEX is 0 to 65535, where 65535 stands for no index.\n"
    "VPORT is a kind and a key:\n"
    "  remote ADDRESS@GROUP      a remote VTEP, as in remote 10.0.0.2@17 or remote 2001:db8::2@17\n"
    "  mlag ADDRESS@GROUP        the same for an MLAG pair\n"
    "  edge INTERFACE:VLAN       a port and a VLAN on it, as in edge Ethernet1/1:100\n"
    "  vlan VLAN                 a VLAN, 1 to 4094\n"
    "  efilter INTERFACE         an interface without egress filtering, as in efilter Ethernet7\n"
    "FAP is a forwarding chip, 0 to 255. INTF is an interface, as in Ethernet1/1.\n"
    "PATH is a root and steps, as in configs/vpIndexConfig/bgp; %2F stands for a slash in a step,\n"
    "and %25 for a percent sign. 'inspect' lists the roots.\n"
    "A word with blanks or a # stands in double quotes, with \\\" and \\\\ inside. Outside of them "
    "#\n"
    "starts a comment, also within a word.";

/// The list's left column is as wide as most usages; longer ones have the line to themselves.
std::string entry(Command const& command) {
    constexpr std::size_t column = 38;
    std::string line = "  " + command.usage();
    line += line.size() + 2 > column ? "\n" + std::string(column, ' ')
                                     : std::string(column - line.size(), ' ');
    return line + std::string(command.does) + '\n';
}

std::string allCommands() {
    std::string text;
    for (Command const& command : commandTable()) {
        text += entry(command);
    }
    return text + std::string(forms);
}

/// What the arguments may be, where their labels do not say it.
std::string choices(Command const& command) {
    std::string text;
    if (command.arguments[0].type == ArgumentType::setting) {
        for (Setting const& setting : settingList()) {
            text += "    " + std::string(setting.name) + ": " + std::string(setting.meaning) + '\n';
        }
    }
    if (command.arguments[0].type == ArgumentType::option) {
        for (RingOption const& option : ringOptionList()) {
            text += "    " + std::string(option.name) + (option.value.empty() ? "" : " ") +
                    std::string(option.value) + ": " + std::string(option.meaning) + '\n';
        }
    }
    if (command.arguments[0].type == ArgumentType::view) {
        for (std::string const& name : viewNames()) {
            text += (text.empty() ? "    WHAT: " : ", ") + name;
        }
        text += '\n';
    }
    if (command.arguments[0].type == ArgumentType::inspected ||
        command.arguments[0].type == ArgumentType::called) {
        text += "    PATH: a root and steps, as in configs/vpIndexConfig/bgp; the roots are\n";
        for (Root const& root : roots()) {
            text += "      " + std::string(root.name) + ": " + std::string(root.what) + '\n';
        }
    }
    return text;
}

/// The commands that one or two words name. Throws `Refusal` when there are none.
std::span<Command const> commandsNamed(std::span<Word const> words) {
    auto const commands = commandsOf(words[0].text);
    if (commands.empty()) {
        throw unknownCommand(words[0]);
    }
    if (words.size() == 1) {
        return commands;
    }
    for (Command const& command : commands) {
        if (!command.second.empty() && command.second == words[1].text) {
            return {&command, 1};
        }
    }
    throw unknownCommand(words[0], words[1]);
}

} // namespace

std::string helpText(std::span<Word const> words) {
    if (words.empty()) {
        return allCommands();
    }
    std::string text;
    for (Command const& command : commandsNamed(words)) {
        text += command.usage() + "\n    " + std::string(command.does) + '\n' + choices(command);
    }
    text.pop_back();
    return text;
}

} // namespace VpAgent
