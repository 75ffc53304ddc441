#include "import/JsonFile.h"

#include "Limits.h"
#include "statefile/OwnFiles.h"
#include "text/Refusal.h"
#include "text/Utf8.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unordered_set>
#include <utility>
#include <vector>

namespace VpAgent {

namespace {

/// `byte` counts from 1, as the parser does.
std::string lineAndColumn(std::string_view text, std::size_t byte) {
    std::string_view const before = text.substr(0, byte == 0 ? 0 : std::min(byte - 1, text.size()));
    auto const line = std::count(before.begin(), before.end(), '\n') + 1;
    std::size_t const start = before.rfind('\n') + 1; // npos + 1 is 0
    return "line " + std::to_string(line) + ", column " +
           std::to_string(utf8Length(before.substr(start)) + 1);
}

/// Where a text that is JSON up to there opens one container too many; counts from 1 as well.
std::size_t tooDeepAt(std::string_view text) {
    std::size_t depth = 0;
    bool quoted = false;
    std::size_t at = 0;
    for (; at < text.size() && depth <= Limits::jsonDepth; ++at) {
        char const c = text[at];
        if (quoted) {
            at += c == '\\' ? 1 : 0;
            quoted = c != '"';
        } else if (c == '[' || c == '{') {
            ++depth;
        } else if (c == ']' || c == '}') {
            --depth;
        } else {
            quoted = c == '"';
        }
    }
    return at;
}

/// Builds the tree from the parser's events. The containers under way stand on a stack, the
/// innermost last.
class TreeBuilder : public nlohmann::json_sax<Json> {
public:
    explicit TreeBuilder(std::string_view text) : text_(text) {}

    Json takeResult() { return std::move(result_); }

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(value); }
    bool number_unsigned(number_unsigned_t value) override { return add(value); }
    bool number_float(number_float_t value, string_t const&) override { return add(value); }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(Json::object()); }
    bool start_array(std::size_t) override { return open(Json::array()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override {
        levels_.back().name = std::move(name);
        return true;
    }

    bool parse_error(std::size_t position, std::string const&,
                     nlohmann::detail::exception const&) override {
        refuse(position);
    }

    [[noreturn]] void refuse(std::size_t position) const {
        throw Refusal("no JSON at " + lineAndColumn(text_, position) +
                      ", expected a JSON object or array");
    }

private:
    struct Level {
        Json container;
        std::string name; ///< of the member under way
    };

    bool open(Json container) {
        if (levels_.size() == Limits::jsonDepth) {
            throw Refusal("nested too deep at " + lineAndColumn(text_, tooDeepAt(text_)) +
                          ", expected at most " + std::to_string(Limits::jsonDepth) +
                          " objects and arrays within each other");
        }
        levels_.push_back({std::move(container), {}});
        return true;
    }

    bool close() {
        Json complete = std::move(levels_.back().container);
        levels_.pop_back();
        return add(std::move(complete));
    }

    bool add(Json value) {
        if (levels_.empty()) {
            result_ = std::move(value);
            return true;
        }
        Level& level = levels_.back();
        if (level.container.is_array()) {
            level.container.push_back(std::move(value));
        } else {
            // Behind the others, without the search that a member's insertion by name costs.
            level.container.get_ref<Json::object_t&>().emplace_back(std::move(level.name),
                                                                    std::move(value));
        }
        return true;
    }

    std::string_view text_;
    std::vector<Level> levels_;
    Json result_;
};

[[noreturn]] void refuseFile(std::filesystem::path const& path, std::string const& reason) {
    throw Refusal("cannot read " + inQuotes(path.string()) + " (" + reason +
                  "), expected a readable file");
}

/// A file that is open for reading. Opening does not wait for the other end of a pipe.
class OpenedFile {
public:
    explicit OpenedFile(std::filesystem::path const& path)
        : path_(path), descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        if (descriptor_ < 0) {
            refuseFile(path_, std::strerror(errno));
        }
    }
    ~OpenedFile() { ::close(descriptor_); }
    OpenedFile(OpenedFile const&) = delete;
    OpenedFile& operator=(OpenedFile const&) = delete;

    bool isRegular() const {
        struct stat about {};
        return ::fstat(descriptor_, &about) == 0 && S_ISREG(about.st_mode);
    }

    /// Reads on, behind what is in `content`. False at the end of the file.
    bool readOn(std::string& content) const {
        constexpr std::size_t chunk = std::size_t{64} * 1024;
        std::size_t const before = content.size();
        content.resize(before + chunk);
        ssize_t count = 0;
        do {
            count = ::read(descriptor_, content.data() + before, chunk);
        } while (count < 0 && errno == EINTR);
        if (count < 0) {
            refuseFile(path_, std::strerror(errno));
        }
        content.resize(before + static_cast<std::size_t>(count));
        return count > 0;
    }

private:
    std::filesystem::path const& path_;
    int descriptor_;
};

} // namespace

Json parseJson(std::string_view text) {
    TreeBuilder builder(text);
    Json::sax_parse(text, &builder);
    std::size_t const nul = text.find('\0'); // which the parser takes for the end of the text
    if (nul != std::string_view::npos) {
        builder.refuse(nul + 1);
    }
    return builder.takeResult();
}

void checkNames(Json const& object, bool (*counts)(std::string_view name)) {
    std::unordered_set<std::string_view> names;
    for (auto const& [name, value] : object.items()) {
        if (counts(name) && !names.insert(name).second) {
            throw Refusal("the name " + inQuotes(name) +
                          " stands twice in one object, expected it once");
        }
    }
}

std::string readFile(std::filesystem::path const& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        throw Refusal(inQuotes(path.string()) + " is a folder, expected a file");
    }
    if (isStateFile(path)) {
        refuseFile(path, belongsToStateFile);
    }
    OpenedFile const file(path);
    if (!file.isRegular()) { // a pipe or a device may never end
        refuseFile(path, "not a regular file");
    }
    std::string content;
    while (file.readOn(content)) {
        if (content.size() > Limits::importFile) { // a size that is told may be another one by then
            refuseFile(path, "more than " + std::to_string(Limits::importFile) + " bytes");
        }
    }
    return content;
}

} // namespace VpAgent
