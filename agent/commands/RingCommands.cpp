#include "commands/Handlers.h"
#include "language/Parse.h"
#include "language/RingOptions.h"
#include "lumlog/CtfWriter.h"
#include "lumlog/Reader.h"
#include "lumlog/RingBuffer.h"
#include "pelo/Decimal.h"
#include "ring/MappedFile.h"
#include "ring/RingFile.h"
#include "state/Agent.h"
#include "statefile/OwnFiles.h"
#include "text/Utf8.h"

#include <algorithm>
#include <filesystem>

namespace VpAgent::Handlers {

namespace {

constexpr std::size_t linesForPeople = 100;

/// The ring of this process.
Lumlog::RingBuffer& ownRing(Arguments const& arguments) {
    Lumlog::RingBuffer* const ring = Lumlog::RingBuffer::current();
    if (ring == nullptr) {
        throw Refusal("there is no ring buffer, expected one", arguments.command.place());
    }
    return *ring;
}

/// Passes over all records but the last ones.
void keepLast(Lumlog::Reader& reader, std::size_t count) {
    std::size_t const all = Lumlog::Reader(reader).rest().size();
    for (std::size_t at = count; at < all; ++at) {
        reader.next();
    }
}

RingReport listing(Lumlog::Reader& reader, RingOptions const& options) {
    RingListing list;
    list.records = reader.rest();
    list.shownToPeople = options.all || options.last ? list.records.size() : linesForPeople;
    return list;
}

RingReport written(Lumlog::Reader& reader, Word const& directory) {
    if (isStateFile(directory.text)) {
        throw Refusal("cannot write a trace to " + inQuotes(directory.text) + " (" +
                          belongsToStateFile + "), expected an empty folder or a new name",
                      directory.place());
    }
    RingTrace trace;
    trace.directory = directory.text;
    try {
        Lumlog::CtfWriter const writer(reader);
        writer.write(std::filesystem::path(directory.text));
        trace.records = writer.recordCount();
    } catch (std::filesystem::filesystem_error const& error) {
        throw Refusal("cannot write a trace to " + inQuotes(directory.text) + " (" +
                          error.code().message() + "), expected an empty folder or a new name",
                      directory.place());
    }
    return trace;
}

Reply report(Lumlog::Reader reader, RingOptions const& options) {
    if (options.last) {
        keepLast(reader, *options.last);
    }
    RingReport ring =
        options.ctf == nullptr ? listing(reader, options) : written(reader, *options.ctf);
    if (options.from != nullptr) {
        RingSource const source{std::string(options.from->text), reader.damaged()};
        if (auto* const list = std::get_if<RingListing>(&ring)) {
            list->source = source;
        } else {
            std::get<RingTrace>(ring).source = source;
        }
    }
    return {RingReply{std::move(ring)}, {}};
}

U32 knownMessage(Word const& word, std::span<Lumlog::DecodedMessage const> messages) {
    auto const number = Pelo::parseDecimal(word.text, Lumlog::MsgDescriptor::maxMessages - 1);
    if (!number) {
        throw badWord("message number", word, number.error());
    }
    auto const msgId = static_cast<U32>(*number);
    if (std::ranges::find(messages, msgId, &Lumlog::DecodedMessage::msgId) == messages.end()) {
        throw Refusal("unknown message " + inQuotes(word.text) +
                          ", expected a number that 'message' lists",
                      word.place());
    }
    return msgId;
}

Reply switchMessages(Arguments const& arguments, bool on) {
    Lumlog::RingBuffer& ring = ownRing(arguments);
    auto const messages = Lumlog::Reader(ring.bytes()).messages();
    std::vector<U32> numbers;
    for (Word const& word : arguments.rest) {
        numbers.push_back(knownMessage(word, messages));
    }
    for (U32 const number : numbers) {
        ring.messageEnabledIs(number, on);
    }
    return {};
}

} // namespace

Reply showRing(Agent&, Arguments const& arguments) {
    RingOptions const options = parseRingOptions(arguments.rest);
    if (options.from == nullptr) {
        return report(Lumlog::Reader(ownRing(arguments).bytes()), options);
    }
    MappedFile const file(*options.from);
    return report(ringWithin(file.bytes(), options.ring, *options.from), options);
}

Reply ringDump(Agent&, Arguments const& arguments) {
    auto const bytes = ownRing(arguments).bytes();
    saveRing(bytes, *arguments.word);
    return {RingReply{RingSaved{std::string(arguments.word->text), bytes.size()}}, {}};
}

Reply message(Agent&, Arguments const& arguments) {
    Lumlog::RingBuffer const& ring = ownRing(arguments);
    MessageListing listing;
    for (Lumlog::DecodedMessage& description : Lumlog::Reader(ring.bytes()).messages()) {
        bool const on = ring.messageEnabled(description.msgId);
        listing.messages.push_back({std::move(description), on});
    }
    return {RingReply{std::move(listing)}, {}};
}

Reply messageOff(Agent&, Arguments const& arguments) { return switchMessages(arguments, false); }

Reply messageOn(Agent&, Arguments const& arguments) { return switchMessages(arguments, true); }

} // namespace VpAgent::Handlers
