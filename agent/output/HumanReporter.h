#pragma once

#include "output/Output.h"
#include "output/Reporter.h"

namespace VpAgent {

/// Writes for people: results and the events of the multicast entities on standard output; traces,
/// log messages and errors on standard error. A command that has nothing to say says nothing.
class HumanReporter final : public Reporter {
public:
    explicit HumanReporter(Output& output) : output_(output) {}

    void trace(U32 level, std::string_view text) override;
    void log(std::string_view id, U32 severity, std::string_view text) override;
    void multicast(McastEvent const& event) override;
    void done(CommandLine const& line, std::string_view command, Reply const& reply,
              Agent const& agent) override;
    void refused(CommandLine const& line, Refusal const& refusal) override;
    void flush() noexcept override { output_.flush(); }

private:
    Output& output_;
};

/// The line with the place marked below it, both lines behind `indent`:
///
///     request bgp vlan 5000
///                      ^~~~
///
/// Of a line of more than `Limits::quote` bytes that many are shown, around where the place begins,
/// with "..." for what is left out on either side.
std::string markedLine(std::string_view line, Place place, std::string_view indent);

} // namespace VpAgent
