#include "import/JsonFile.h"

#include "text/Refusal.h"
#include "text/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
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
        Level& level = levels_.back();
        if (!level.names.insert(name).second) {
            throw Refusal("the name " + inQuotes(name) +
                          " stands twice in one object, expected it once");
        }
        level.name = std::move(name);
        return true;
    }

    bool parse_error(std::size_t position, std::string const&,
                     nlohmann::detail::exception const&) override {
        throw Refusal("no JSON at " + lineAndColumn(text_, position) +
                      ", expected a JSON object or array");
    }

private:
    struct Level {
        Json container;
        std::string name; ///< of the member under way
        std::unordered_set<std::string> names;
    };

    bool open(Json container) {
        levels_.push_back({std::move(container), {}, {}});
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

} // namespace

Json parseJson(std::string_view text) {
    TreeBuilder builder(text);
    Json::sax_parse(text, &builder);
    return builder.takeResult();
}

std::string readFile(std::filesystem::path const& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        throw Refusal(inQuotes(path.string()) + " is a folder, expected a file");
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad()) {
        std::string const reason = errno == 0 ? "" : std::string(" (") + std::strerror(errno) + ")";
        throw Refusal("cannot read " + inQuotes(path.string()) + reason +
                      ", expected a readable file");
    }
    return content;
}

} // namespace VpAgent
