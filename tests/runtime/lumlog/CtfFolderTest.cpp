#include "RingFixture.h"
#include "lumlog/CtfWriter.h"
#include "support/FileBytes.h"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <system_error>

namespace Lumlog {
namespace {

namespace fs = std::filesystem;

/// This process may have no more of a resource while the object lives.
class Limit {
public:
    Limit(decltype(RLIMIT_FSIZE) resource, rlim_t atMost) : resource_(resource) {
        ::getrlimit(resource_, &former_);
        rlimit const limit{atMost, former_.rlim_max};
        ::setrlimit(resource_, &limit);
    }
    ~Limit() { ::setrlimit(resource_, &former_); }
    Limit(Limit const&) = delete;
    Limit& operator=(Limit const&) = delete;

private:
    decltype(RLIMIT_FSIZE) resource_;
    rlimit former_{};
};

/// No file of this process may become larger while the object lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
        : formerHandler_(std::signal(SIGXFSZ, SIG_IGN)), limit_(RLIMIT_FSIZE, bytes) {}
    ~FileSizeLimit() { std::signal(SIGXFSZ, formerHandler_); }
    FileSizeLimit(FileSizeLimit const&) = delete;
    FileSizeLimit& operator=(FileSizeLimit const&) = delete;

private:
    void (*formerHandler_)(int);
    Limit limit_;
};

class CtfFolder : public RingTest {
protected:
    CtfFolder() {
        fs::remove_all(folder_);
        fs::create_directory(folder_);
        write("n", 1);
    }
    ~CtfFolder() override { fs::remove_all(folder_); }

    CtfWriter trace() const {
        Reader reader(ring_.bytes());
        return CtfWriter(reader);
    }

    /// Why the trace could not be written to a folder; empty when it was written.
    std::error_code failure(fs::path const& name) const {
        try {
            trace().write(folder_ / name);
        } catch (fs::filesystem_error const& error) {
            return error.code();
        }
        return {};
    }

    /// All that is in the test's folder: files with their contents, folders with "(folder)".
    std::map<std::string, std::string> content() const {
        std::map<std::string, std::string> all;
        for (fs::directory_entry const& entry : fs::recursive_directory_iterator(folder_)) {
            all[fs::relative(entry.path(), folder_).string()] =
                entry.is_directory() ? "(folder)" : Support::bytesOf(entry.path());
        }
        return all;
    }
    using Content = std::map<std::string, std::string>;

    fs::path folder_ = testing::TempDir() + "lumlog-ctf-" + std::to_string(::getpid());
};

TEST_F(CtfFolder, IsMadeWithTheTwoFilesOfTheTrace) {
    EXPECT_EQ(failure("trace"), std::error_code());
    EXPECT_EQ(content(), (Content{{"trace", "(folder)"},
                                  {"trace/metadata", trace().metadata()},
                                  {"trace/stream", trace().stream()}}));
}

/// A folder without metadata is no trace, so one that is cut short is none.
TEST_F(CtfFolder, GetsItsMetadataLast) {
    fs::path const place = folder_ / "trace";
    fs::create_directory(place);
    int const watch = ::inotify_init1(IN_NONBLOCK);
    ASSERT_NE(::inotify_add_watch(watch, place.c_str(), IN_CREATE), -1);
    EXPECT_EQ(failure("trace"), std::error_code());
    alignas(inotify_event) std::array<char, 4096> events;
    auto const size = ::read(watch, events.data(), events.size());
    ::close(watch);
    std::vector<std::string> made;
    for (char const* at = events.data(); at < events.data() + size;) {
        auto const* const event = reinterpret_cast<inotify_event const*>(at);
        made.emplace_back(event->name);
        at += sizeof *event + event->len;
    }
    EXPECT_EQ(made, (std::vector<std::string>{"stream", "metadata"}));
}

TEST_F(CtfFolder, MayBeThereWhenItIsEmpty) {
    fs::create_directory(folder_ / "trace");
    EXPECT_EQ(failure("trace/"), std::error_code());
    EXPECT_EQ(content().size(), 3u);
}

TEST_F(CtfFolder, IsLeftAloneWhenItIsNotEmpty) {
    fs::create_directory(folder_ / "trace");
    std::ofstream(folder_ / "trace" / "note") << "mine";
    EXPECT_EQ(failure("trace"), std::errc::directory_not_empty);
    EXPECT_EQ(content(), (Content{{"trace", "(folder)"}, {"trace/note", "mine"}}));
}

TEST_F(CtfFolder, IsNotMadeInAFolderThatIsNotThere) {
    EXPECT_EQ(failure("missing/trace"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(content(), Content{});
}

TEST_F(CtfFolder, IsNotMadeOfAFile) {
    std::ofstream(folder_ / "trace") << "mine";
    EXPECT_TRUE(failure("trace"));
    EXPECT_EQ(content(), (Content{{"trace", "mine"}}));
}

/// The stream fits below each limit but the first, the metadata below none.
TEST_F(CtfFolder, LeavesNothingBehindWhenWritingFails) {
    std::size_t const stream = trace().stream().size();
    for (std::size_t const limit : {stream - 1, stream, trace().metadata().size() - 1}) {
        FileSizeLimit const atMost(limit);
        EXPECT_EQ(failure("trace"), std::errc::file_too_large) << limit;
        EXPECT_EQ(content(), Content{}) << limit;
    }
    fs::create_directory(folder_ / "empty");
    FileSizeLimit const atMost(stream);
    EXPECT_EQ(failure("empty"), std::errc::file_too_large);
    EXPECT_EQ(content(), (Content{{"empty", "(folder)"}}));
}

/// Of a file of some pages the beginning is written before the end is known.
TEST_F(CtfFolder, LeavesNothingOfALargeFileWhoseWritingFails) {
    for (U32 count = 0; count < 1000; ++count) {
        write("some text", count);
    }
    ASSERT_GT(trace().stream().size(), 8192u);
    FileSizeLimit const atMost(4096);
    EXPECT_EQ(failure("trace"), std::errc::file_too_large);
    EXPECT_EQ(content(), Content{});
}

TEST_F(CtfFolder, LeavesNothingBehindWhenNoFileCanBeOpened) {
    // The first time that a sanitizer meets an object's type it opens files itself.
    EXPECT_EQ(failure("missing/trace"), std::errc::no_such_file_or_directory);
    int const next = ::dup(STDIN_FILENO);
    ASSERT_GE(next, 0);
    ::close(next);
    {
        Limit const noFiles(RLIMIT_NOFILE, static_cast<rlim_t>(next));
        EXPECT_EQ(failure("trace"), std::errc::too_many_files_open);
    }
    EXPECT_EQ(content(), Content{});
}

} // namespace
} // namespace Lumlog
