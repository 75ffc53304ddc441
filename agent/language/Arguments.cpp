#include "language/Arguments.h"

#include "Limits.h"
#include "language/CommandTable.h"
#include "language/Parse.h"
#include "qor/ValueTraits.h"
#include "text/Utf8.h"

#include <algorithm>

namespace VpAgent {

namespace {

/// Takes the words of a command one after the other.
class Reader {
public:
    Reader(Command const& command, Words const& words)
        : command_(command), words_(words), next_(command.wordCount()) {}

    bool atEnd() const noexcept { return next_ >= words_.all().size(); }

    Word const& take() {
        if (atEnd()) {
            throw Refusal("a word is missing, expected " + command_.usage(),
                          Place{words_.end(), 0});
        }
        return words_.all()[next_++];
    }

    std::span<Word const> takeAll() { return takeUpTo(words_.all().size()); }

    /// The next words, as many as there are but no more than `most`.
    std::span<Word const> takeUpTo(std::size_t most) {
        auto const rest = words_.all().subspan(next_);
        auto const taken = rest.first(std::min(most, rest.size()));
        next_ += taken.size();
        return taken;
    }

    void end() const {
        if (!atEnd()) {
            Word const& extra = words_.all()[next_];
            std::string const what = inQuotes(extra.text) + " is one word too many";
            throw Refusal(what + ", expected " + command_.usage(), extra.place());
        }
    }

private:
    Command const& command_;
    Words const& words_;
    std::size_t next_;
};

void readOne(ArgumentType type, Reader& reader, Arguments& arguments) {
    if (type == ArgumentType::command) {
        constexpr std::size_t mostWords = 2;
        arguments.rest = reader.takeUpTo(mostWords);
        return;
    }
    Word const& word = reader.take();
    switch (type) {
    case ArgumentType::client:
        checkName(word);
        arguments.client = &word;
        break;
    case ArgumentType::vport:
        arguments.vport = Vport::parse(word, reader.take());
        break;
    case ArgumentType::index:
        arguments.index = parseIndex(word);
        break;
    case ArgumentType::fap:
        arguments.fap = parseWord("chip", word, Devbus::FapId::parse);
        break;
    case ArgumentType::truth:
        arguments.truth = parseWord("value", word, Qor::parseBool);
        break;
    case ArgumentType::api:
        checkName(word, "name");
        arguments.word = &word;
        break;
    default:
        arguments.word = &word;
    }
}

void readList(ArgumentType type, Reader& reader, Arguments& arguments) {
    arguments.rest = reader.takeAll();
    if (type == ArgumentType::client) {
        for (Word const& word : arguments.rest) {
            checkName(word);
        }
    }
    if (type == ArgumentType::intf) {
        if (arguments.rest.size() > Limits::interfaces) {
            throw Refusal("too many interfaces, expected at most " +
                              std::to_string(Limits::interfaces),
                          arguments.rest[Limits::interfaces].place());
        }
        for (Word const& word : arguments.rest) {
            arguments.intfs.insert(parseWord("interface", word, parseKeyText<Netzo::IntfId>));
        }
    }
}

void read(Argument argument, Reader& reader, Arguments& arguments) {
    bool const none = reader.atEnd();
    switch (argument.count) {
    case Count::optional:
        if (none) {
            return;
        }
        [[fallthrough]];
    case Count::one:
        readOne(argument.type, reader, arguments);
        return;
    case Count::some:
        if (none) {
            reader.take();
        }
        [[fallthrough]];
    case Count::any:
        readList(argument.type, reader, arguments);
    }
}

/// The words that name the command, as one.
Word commandWord(Command const& command, Words const& words) {
    Word word = words.all()[0];
    Word const& last = words.all()[command.wordCount() - 1];
    word.raw = {word.raw.data(), last.at + last.raw.size() - word.at};
    return word;
}

} // namespace

Arguments parseArguments(Command const& command, Words const& words) {
    Arguments arguments;
    arguments.command = commandWord(command, words);
    Reader reader(command, words);
    for (Argument const argument : command.arguments) {
        if (argument.type != ArgumentType::none) {
            read(argument, reader, arguments);
        }
    }
    reader.end();
    return arguments;
}

} // namespace VpAgent
