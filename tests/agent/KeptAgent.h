#pragma once

#include "state/Agent.h"
#include "statefile/StateFile.h"
#include "support/FileBytes.h"

#include <filesystem>
#include <memory>
#include <string>

namespace VpAgentTest {

/// Hears nothing.
class QuietReporter final : public VpAgent::Reporter {
public:
    void trace(U32, std::string_view) override {}
    void log(std::string_view, U32, std::string_view) override {}
    void multicast(VpAgent::McastEvent const&) override {}
    void done(VpAgent::CommandLine const&, std::string_view, VpAgent::Reply const&,
              VpAgent::Agent const&) override {}
    void refused(VpAgent::CommandLine const&, VpAgent::Refusal const&) override {}
    void flush() noexcept override {}
};

/// A database that is kept in a state file.
class KeptAgent {
public:
    /// Throws `Refusal` when the file is refused.
    explicit KeptAgent(std::filesystem::path const& path)
        : agent(reporter_, {}), file(VpAgent::StateFile::open(path, agent.database)) {}

    VpAgent::Database& database() { return agent.database; }
    void commit() { file->commit(); }

    /// Everything that a state file has to keep, as one text.
    std::string content() const;

private:
    QuietReporter reporter_;

public:
    VpAgent::Agent agent;
    std::unique_ptr<VpAgent::StateFile> file;
};

/// The same of a database that is in memory only.
std::string contentOf(VpAgent::Agent const& agent);

/// What came of opening a file: why it was refused, or what it holds.
struct Opened {
    std::string refusal; ///< empty when it was not refused
    std::string content;
};

Opened openedFile(std::filesystem::path const& path);

using Support::bytesOf;

} // namespace VpAgentTest
