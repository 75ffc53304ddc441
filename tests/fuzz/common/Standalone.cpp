// Runs a target where there is no libFuzzer: on each file of a corpus, and on a number of random
// changes of each, the same ones for the same seed.
//
//     fuzz_NAME MUTATIONS FOLDER [SEED]
//
// An input that ends the process is kept in the working folder, and named on standard error.

#include "common/Input.h"
#include "support/FileBytes.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the names are the
// sanitizers'
extern "C" {
[[gnu::weak]] void __sanitizer_set_death_callback(void (*callback)());

/// UndefinedBehaviorSanitizer has callbacks of its own in some compilers, and aborts in all.
char const* __ubsan_default_options();
char const* __ubsan_default_options() { return "abort_on_error=1"; }
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace {

constexpr U64 usualSeed = 4711;
constexpr std::size_t largestInput = std::size_t{1} << 16;

std::string const* underWay = nullptr;
std::string keptName; // made before it is needed
pid_t const driver = ::getpid();

void keepInput() {
    if (underWay == nullptr) {
        return;
    }
    int const file = ::open(keptName.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    bool const kept = file >= 0 && ::write(file, underWay->data(), underWay->size()) ==
                                       static_cast<ssize_t>(underWay->size());
    std::fprintf(stderr, "fuzz: failing input%s: %s\n", kept ? "" : " (cannot be written)",
                 keptName.c_str());
    underWay = nullptr;
}

/// The end of a copy of the process, which the target may take for a part of its work, is the end
/// of the process as well.
void onDeath() {
    keepInput();
    if (::getpid() != driver) {
        ::kill(driver, SIGTERM);
    }
}

void onSignal(int signal) {
    onDeath();
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

/// Whatever ends the process: a sanitizer tells its callback, all else is a signal.
void watch() {
    if (__sanitizer_set_death_callback != nullptr) {
        __sanitizer_set_death_callback(onDeath);
        std::signal(SIGABRT, onSignal);
        return;
    }
    for (int const signal : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL}) {
        std::signal(signal, onSignal);
    }
}

/// Changes an input a little, or puts parts of two together.
class Mutator {
public:
    Mutator(std::vector<std::string> const& corpus, U64 seed) : corpus_(corpus), engine_(seed) {}

    std::string mutated(std::string input) {
        for (std::size_t changes = 1 + below(4); changes > 0; --changes) {
            change(input);
        }
        input.resize(std::min(input.size(), largestInput));
        return input;
    }

private:
    // Not a distribution of the standard library, whose numbers differ between libraries.
    std::size_t below(std::size_t bound) { return engine_() % bound; }

    void change(std::string& input) {
        std::size_t const at = below(input.size() + 1);
        std::size_t const size = below(std::min<std::size_t>(input.size() - at, 16) + 1);
        switch (below(7)) {
        case 0:
            input.erase(at, size);
            break;
        case 1:
            input.insert(at, 1, static_cast<char>(below(256)));
            break;
        case 2:
            input.insert(below(input.size() + 1), input.substr(at, size));
            break;
        case 3:
            input.resize(at);
            break;
        case 4:
            input.insert(at, partOfAnother());
            break;
        default:
            if (at < input.size()) {
                input[at] = changed(input[at]);
            }
        }
    }

    char changed(char byte) {
        constexpr std::array<unsigned char, 8> odd{0, 1, 0x7F, 0x80, 0xFF, '"', '\n', '/'};
        switch (below(3)) {
        case 0:
            return static_cast<char>(byte ^ (1 << below(8)));
        case 1:
            return static_cast<char>(odd.at(below(odd.size())));
        default:
            return static_cast<char>(below(256));
        }
    }

    std::string partOfAnother() {
        std::string const& other = corpus_[below(corpus_.size())];
        std::size_t const at = below(other.size() + 1);
        return other.substr(at, below(64));
    }

    std::vector<std::string> const& corpus_;
    std::mt19937_64 engine_;
};

/// A copy of exactly as many bytes, so that the address sanitizer sees a read past the end.
void run(std::string const& input) {
    std::unique_ptr<U8[]> const bytes(new U8[input.size()]);
    std::copy(input.begin(), input.end(), bytes.get());
    underWay = &input;
    LLVMFuzzerTestOneInput(bytes.get(), input.size());
    underWay = nullptr;
}

std::vector<std::string> filesOf(std::filesystem::path const& folder) {
    std::vector<std::filesystem::path> paths;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> contents;
    for (auto const& path : paths) {
        contents.push_back(Support::bytesOf(path));
    }
    return contents;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        std::fprintf(stderr, "usage: %s MUTATIONS FOLDER [SEED]\n", argv[0]);
        return 2;
    }
    auto const corpus = filesOf(argv[2]);
    if (corpus.empty()) {
        std::fprintf(stderr, "fuzz: no files in %s\n", argv[2]);
        return 2;
    }
    keptName = std::filesystem::absolute(argv[0]).filename().string() + ".failing-input";
    watch();
    std::size_t const mutations = std::stoul(argv[1]);
    Mutator mutator(corpus, argc == 4 ? std::stoull(argv[3]) : usualSeed);
    for (std::string const& file : corpus) {
        run(file);
        for (std::size_t count = 0; count < mutations; ++count) {
            run(mutator.mutated(file));
        }
    }
    std::fprintf(stderr, "%zu inputs\n", corpus.size() * (mutations + 1));
    return 0;
}
