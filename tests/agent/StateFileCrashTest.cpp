#include "agent/FaultyDisk.h"
#include "agent/KeptAgent.h"
#include "agent/RunVpagent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace VpAgentTest {
namespace {

namespace fs = std::filesystem;
using Operation = FaultyDisk::Operation;

/// The state file as a kill at one moment would leave it, and what may be found in it then.
struct Moment {
    std::string file;
    std::string log;
    bool logIsThere;
    std::size_t acknowledged; ///< of the contents that the life went through
};

/// A life of a state file of which every moment is kept at which it changes.
class StateFileCrash : public testing::Test {
protected:
    StateFileCrash() : path_(folder_.path() / "state"), log_(path_.string() + "-wal") {}

    /// Keeps the moment before each operation of these kinds from now on.
    void keepMoments(bool syncsOnly) {
        disk_.before([this, syncsOnly](Operation operation) {
            if (operation == Operation::sync || (operation == Operation::change && !syncsOnly)) {
                moments_.push_back(
                    {bytesOf(path_), bytesOf(log_), fs::exists(log_), contents_.size()});
            }
        });
    }

    void open() {
        kept_ = std::make_unique<KeptAgent>(path_);
        contents_.push_back(kept_->content());
    }

    /// Commits after so many more requests, of so many pages each.
    void commit(int requests, std::size_t pages = 0) {
        VpAgent::Client const& client =
            kept_->database().add("client " + std::to_string(contents_.size()));
        for (int each = 1; each <= requests; ++each) {
            std::string const name = std::string(4096 * pages, 'x') + std::to_string(each);
            client.config->eFilterDisableVportIs(Netzo::IntfId(name), true);
        }
        kept_->commit();
        contents_.push_back(kept_->content());
    }

    /// What tells a log from the one before it in the same file.
    std::string salts() const { return bytesOf(log_).substr(16, 8); }

    void close() { kept_ = nullptr; }

    /// Every moment is taken, with what was acknowledged before it or the commit under way.
    void expectThatAllAreTaken() {
        disk_.before(nullptr);
        for (std::size_t at = 0; at < moments_.size(); ++at) {
            SCOPED_TRACE("moment " + std::to_string(at) + " of " + std::to_string(moments_.size()));
            Moment const& moment = moments_[at];
            TemporaryFolder const folder;
            fs::path const path = folder.write("state", moment.file);
            if (moment.logIsThere) {
                folder.write("state-wal", moment.log);
            }
            Opened const opened = openedFile(path);
            EXPECT_EQ(opened.refusal, "");
            auto const first = contents_.begin() + static_cast<std::ptrdiff_t>(moment.acknowledged);
            auto const last = std::min(first + 1, contents_.end());
            EXPECT_NE(std::find(moment.acknowledged == 0 ? first : first - 1, last, opened.content),
                      last);
            ASSERT_FALSE(HasFailure());
        }
    }

    FaultyDisk disk_;
    TemporaryFolder folder_;
    fs::path path_;
    fs::path log_;
    std::unique_ptr<KeptAgent> kept_;
    std::vector<std::string> contents_;
    std::vector<Moment> moments_;
};

TEST_F(StateFileCrash, AtAnyMomentOfTwoRunsLosesNothing) {
    open();
    keepMoments(false);
    commit(30);
    commit(3);
    close();
    open();
    commit(5);
    close();
    EXPECT_GT(moments_.size(), 40u);
    expectThatAllAreTaken();
}

TEST_F(StateFileCrash, InARunThatFollowsOneCutOffAtItsBeginningLosesNothing) {
    open();
    commit(3);
    close();
    keepMoments(false);
    open();
    disk_.before(nullptr);
    std::vector<Moment> const beginnings = std::exchange(moments_, {});
    EXPECT_GT(beginnings.size(), 8u);
    for (std::size_t at = beginnings.size() / 2; at < beginnings.size(); ++at) { // with the mark
        Moment const& beginning = beginnings[at];
        close();
        folder_.write("state", beginning.file);
        fs::remove(log_);
        if (beginning.logIsThere) {
            folder_.write("state-wal", beginning.log);
        }
        keepMoments(false);
        open();
        expectThatAllAreTaken();
        moments_.clear();
    }
}

/// The log is brought into the file while the run goes on.
TEST_F(StateFileCrash, AroundALongLogLosesNothing) {
    open();
    std::string const first = salts();
    while (salts() == first && contents_.size() < 40) {
        commit(10, 8);
        if (moments_.empty() && fs::file_size(log_) > 950 * 4096) {
            keepMoments(true);
        }
    }
    EXPECT_NE(salts(), first);
    commit(1);
    TemporaryFolder const another;
    EXPECT_NE(openedFile(another.write("state", bytesOf(path_))).refusal, ""); // without its log
    close();
    EXPECT_GT(moments_.size(), 8u);
    expectThatAllAreTaken();
}

} // namespace
} // namespace VpAgentTest
