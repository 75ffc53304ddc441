#include "language/Help.h"

#include "language/CommandTable.h"
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
    "A word with blanks stands in double quotes, with \\\" and \\\\ inside. # starts a comment.";

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
    if (command.arguments[0].type == ArgumentType::view) {
        for (std::string const& name : viewNames()) {
            text += (text.empty() ? "    WHAT: " : ", ") + name;
        }
        text += '\n';
    }
    return text;
}

} // namespace

std::string helpText(Word const* word) {
    if (word == nullptr) {
        return allCommands();
    }
    auto const commands = commandsOf(word->text);
    if (commands.empty()) {
        throw unknownCommand(*word);
    }
    std::string text;
    for (Command const& command : commands) {
        text += command.usage() + "\n    " + std::string(command.does) + '\n' + choices(command);
    }
    text.pop_back();
    return text;
}

} // namespace VpAgent
