#pragma once

#include "output/Output.h"
#include "output/Reporter.h"

namespace VpAgent {

/// Writes each event as one JSON object on a line of standard output.
class JsonReporter final : public Reporter {
public:
    explicit JsonReporter(Output& output) : output_(output) {}

    void trace(U32 level, std::string_view text) override;
    void log(std::string_view id, U32 severity, std::string_view text) override;
    void multicast(McastEvent const& event) override;
    void done(CommandLine const& line, std::string_view command, Reply const& reply,
              Agent const& agent) override;
    void refused(CommandLine const& line, Refusal const& refusal) override;
    void flush() noexcept override { output_.flush(); }

private:
    void endLine();

    Output& output_;
};

} // namespace VpAgent
