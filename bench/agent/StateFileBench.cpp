// What a command adds when the database is kept in a file: one request, committed with a full sync,
// beside a small and a large database.

#include "Case.h"
#include "requests/OurWorld.h"
#include "state/Agent.h"
#include "statefile/StateFile.h"

#include <filesystem>
#include <string>

namespace {

VornicCentral::PortVlanKey edgeKey(U32 at) {
    return Bench::OurWorld<VornicCentral::EdgeVport>::key(at);
}

/// Hears nothing.
class NoReporter final : public VpAgent::Reporter {
public:
    void trace(U32, std::string_view) override {}
    void log(std::string_view, U32, std::string_view) override {}
    void multicast(VpAgent::McastEvent const&) override {}
    void done(VpAgent::CommandLine const&, std::string_view, VpAgent::Reply const&,
              VpAgent::Agent const&) override {}
    void refused(VpAgent::CommandLine const&, VpAgent::Refusal const&) override {}
    void flush() noexcept override {}
};

/// A folder beside the running program, so that the file is on the disk that is built on.
std::filesystem::path freshFolder() {
    auto folder = std::filesystem::current_path() / "bench-state";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder;
}

/// One request or withdrawal and its commit while `held` virtual ports are held.
void commitOneRequest(benchmark::State& state, U32 held) {
    auto const folder = freshFolder();
    {
        NoReporter reporter;
        VpAgent::Agent agent(reporter, {});
        auto const file = VpAgent::StateFile::open(folder / "state", agent.database);
        auto const& client = agent.database.add("bgp");
        for (U32 at = 0; at < held; ++at) {
            client.config->edgeVportIs(edgeKey(at), true);
        }
        agent.machine.start({.tableSize = 65535});
        file->commit();
        bool wanted = true;
        for (auto _ : state) {
            if (wanted) {
                client.config->edgeVportIs(edgeKey(held), true);
            } else {
                client.config->edgeVportDel(edgeKey(held));
            }
            wanted = !wanted;
            file->commit();
        }
    }
    std::filesystem::remove_all(folder);
    state.SetItemsProcessed(state.iterations());
}

[[maybe_unused]] bool const added = [] {
    for (U32 const held : {100u, 10000u, 60000u}) {
        Bench::addCase("commitOneRequest", "ours", std::to_string(held),
                       [held](benchmark::State& state) { commitOneRequest(state, held); })
            ->UseRealTime()
            ->Unit(benchmark::kMicrosecond);
    }
    return true;
}();

} // namespace
