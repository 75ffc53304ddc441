#include "language/RingOptions.h"

#include "language/Parse.h"
#include "pelo/Decimal.h"
#include "text/Utf8.h"

#include <algorithm>
#include <array>
#include <vector>

namespace VpAgent {

namespace {

constexpr U64 mostRecords = 0xFFFFFFFFu;

std::size_t number(Word const& value) {
    auto const parsed = Pelo::parseDecimal(value.text, mostRecords);
    if (!parsed || *parsed == 0) {
        throw badWord(
            "number", value,
            {parsed ? 0 : parsed.error().at, "a number from 1 to " + std::to_string(mostRecords)});
    }
    return static_cast<std::size_t>(*parsed);
}

void setFrom(RingOptions& options, Word const& value) { options.from = &value; }

void setRing(RingOptions& options, Word const& value) { options.ring = number(value); }

void setCtf(RingOptions& options, Word const& value) { options.ctf = &value; }

void setLast(RingOptions& options, Word const& value) { options.last = number(value); }

void setAll(RingOptions& options, Word const&) { options.all = true; }

constexpr std::array<RingOption, 5> ringOptions{{
    {"--from", "FILE", true,
     "the ring buffer in a file: a core file, or what 'ring dump' has written", setFrom},
    {"--ring", "N", false, "with --from, the file's ring number N; without it the first", setRing},
    {"--ctf", "DIR", true, "write the records as a trace (CTF 1.8) to a folder, for babeltrace2",
     setCtf},
    {"--last", "N", false, "the newest N records", setLast},
    {"--all", "", false, "all records, of which people see the newest 100 otherwise", setAll},
}};

/// Refuses options that contradict or need each other.
void checkTogether(std::span<RingOption const* const> given, std::span<Word const> words) {
    auto const has = [&](std::string_view name) {
        return std::ranges::any_of(given, [&](auto const* option) { return option->name == name; });
    };
    auto const place = [&](std::string_view name) {
        return std::ranges::find(words, name, &Word::text)->place();
    };
    if (has("--last") && has("--all")) {
        throw Refusal("--last and --all are given, expected one of them", place("--all"));
    }
    if (has("--ring") && !has("--from")) {
        throw Refusal("--ring is given without a file, expected --from FILE", place("--ring"));
    }
}

} // namespace

std::span<RingOption const> ringOptionList() { return ringOptions; }

RingOption const* findRingOption(std::string_view name) {
    auto const found = std::ranges::find(ringOptions, name, &RingOption::name);
    return found == ringOptions.end() ? nullptr : &*found;
}

std::string ringOptionWords() {
    std::string words;
    for (RingOption const& option : ringOptions) {
        words += words.empty() ? "[" : " [";
        words += option.name;
        words += option.value.empty() ? "]" : ' ' + std::string(option.value) + ']';
    }
    return words;
}

RingOptions parseRingOptions(std::span<Word const> words) {
    RingOptions options;
    std::vector<RingOption const*> given;
    for (std::size_t at = 0; at < words.size(); ++at) {
        Word const& word = words[at];
        RingOption const* const option = findRingOption(word.text);
        if (option == nullptr) {
            throw badWord("option", word, {0, ringOptionWords()});
        }
        if (std::ranges::find(given, option) != given.end()) {
            throw Refusal(std::string(option->name) + " is given twice, expected it once",
                          word.place());
        }
        if (!option->value.empty() && ++at == words.size()) {
            throw Refusal("a word is missing, expected " + std::string(option->name) + ' ' +
                              std::string(option->value),
                          Place{word.at + word.raw.size(), 0});
        }
        option->set(options, words[at]);
        given.push_back(option);
    }
    checkTogether(given, words);
    return options;
}

} // namespace VpAgent
