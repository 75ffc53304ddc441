#include "lumlog/CtfWriter.h"

#include "lumlog/Args.h"
#include "lumlog/CtfMetadata.h"
#include "pelo/Hash.h"
#include "pelo/Utf8.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

namespace Lumlog {
namespace {

namespace fs = std::filesystem;
using Uuid = std::array<U8, 16>;

/// What stands before the events. Its only packet is the whole stream.
struct PacketHeader {
    U32 magic = 0xC1FC1FC1;
    Uuid uuid{};
    U64 begin = 0;
    U64 end = 0;
    U64 contentSize = 0; ///< bits
    U64 packetSize = 0;  ///< bits
};

template <class T> void append(std::string& bytes, T value) {
    bytes.append(reinterpret_cast<char const*>(&value), sizeof value);
}

void appendText(std::string& bytes, std::string_view text) {
    bytes += Pelo::printable(text);
    bytes += '\0';
}

std::string bytesOf(PacketHeader const& header) {
    std::string bytes;
    append(bytes, header.magic);
    append(bytes, header.uuid);
    append(bytes, header.begin);
    append(bytes, header.end);
    append(bytes, header.contentSize);
    append(bytes, header.packetSize);
    return bytes;
}

void appendNumber(std::string& bytes, ArgCode code, U64 value) {
    switch (code) {
    case ArgCode::u8:
        append(bytes, static_cast<U8>(value));
        break;
    case ArgCode::u16:
        append(bytes, static_cast<U16>(value));
        break;
    case ArgCode::u32:
        append(bytes, static_cast<U32>(value));
        break;
    default:
        append(bytes, value);
    }
}

void appendArg(std::string& bytes, ArgCode code, DecodedArg const& arg) {
    if (auto const* const truth = std::get_if<bool>(&arg)) {
        append(bytes, static_cast<U8>(*truth));
    } else if (auto const* const number = std::get_if<U64>(&arg)) {
        appendNumber(bytes, code, *number);
    } else if (auto const* const number64 = std::get_if<std::int64_t>(&arg)) {
        append(bytes, *number64);
    } else {
        appendText(bytes, std::get<std::string>(arg));
    }
}

/// `01234567-89ab-cdef-0123-456789abcdef`
std::string textOf(Uuid const& uuid) {
    std::string text;
    for (std::size_t at = 0; at < uuid.size(); ++at) {
        constexpr char digits[] = "0123456789abcdef";
        text += at == 4 || at == 6 || at == 8 || at == 10 ? "-" : "";
        text += {digits[uuid[at] / 16], digits[uuid[at] % 16]};
    }
    return text;
}

/// An identifier of version 8, which is one of the user's own making.
Uuid uuidOf(std::string_view metadata, std::string_view stream) {
    std::array const hashes{Pelo::hashBytes(metadata.data(), metadata.size()),
                            Pelo::hashBytes(stream.data(), stream.size())};
    Uuid uuid;
    std::memcpy(uuid.data(), hashes.data(), uuid.size());
    uuid[6] = static_cast<U8>((uuid[6] & 0x0F) | 0x80);
    uuid[8] = static_cast<U8>((uuid[8] & 0x3F) | 0x80);
    return uuid;
}

/// A folder under way: what was written to it goes again unless it is kept.
class NewFiles {
public:
    explicit NewFiles(fs::path const& directory)
        : directory_(directory), created_(fs::create_directory(directory)) {
        if (!created_ && !fs::is_empty(directory)) {
            throw fs::filesystem_error("cannot write a trace", directory,
                                       std::make_error_code(std::errc::directory_not_empty));
        }
    }
    ~NewFiles() {
        std::error_code ignored;
        for (fs::path const& file : files_) {
            fs::remove(file, ignored);
        }
        if (created_ && !kept_) {
            fs::remove(directory_, ignored);
        }
    }
    NewFiles(NewFiles const&) = delete;
    NewFiles& operator=(NewFiles const&) = delete;

    void add(char const* name, std::string_view content) {
        fs::path const path = directory_ / name;
        std::FILE* const file = std::fopen(path.c_str(), "wbx");
        if (file == nullptr) {
            fail(path, errno);
        }
        files_.push_back(path);
        bool const written = std::fwrite(content.data(), 1, content.size(), file) == content.size();
        int const error = written ? 0 : errno;
        bool const closed = std::fclose(file) == 0;
        if (!written || !closed) {
            fail(path, written ? errno : error);
        }
    }

    void keep() {
        files_.clear();
        kept_ = true;
    }

private:
    [[noreturn]] static void fail(fs::path const& path, int error) {
        throw fs::filesystem_error("cannot write a trace", path,
                                   std::error_code(error, std::generic_category()));
    }

    fs::path directory_;
    bool created_;
    bool kept_ = false;
    std::vector<fs::path> files_;
};

} // namespace

CtfWriter::CtfWriter(Reader& reader) : stream_(bytesOf({})) {
    for (DecodedMessage& message : reader.messages()) {
        messages_.emplace(message.msgId, std::move(message));
    }
    std::optional<U64> begin;
    while (auto const record = reader.next()) {
        appendRecord(*record);
        begin = begin.value_or(time_);
    }
    endPacket(begin.value_or(0));
}

/// The message of a record, also of one that the ring does not describe.
DecodedMessage const& CtfWriter::messageOf(DecodedRecord const& record) {
    DecodedMessage lost;
    lost.msgId = record.msgId;
    lost.format = static_cast<char>(ArgCode::words);
    lost.words.emplace_back(DecodedMessage::lost);
    return messages_.emplace(record.msgId, std::move(lost)).first->second;
}

void CtfWriter::appendRecord(DecodedRecord const& record) {
    constexpr U64 latest = std::numeric_limits<std::int64_t>::max() - 1; // that viewers can show
    time_ = std::max(time_, std::min(record.time, latest));
    ++recordCount_;
    append(stream_, static_cast<U16>(record.msgId));
    append(stream_, time_);
    append(stream_, record.sequence);
    append(stream_, record.time);
    append(stream_, record.msgId);
    append(stream_, record.level);
    appendText(stream_, record.unit);
    append(stream_, record.line);
    appendText(stream_, record.text);
    auto arg = record.args.begin();
    for (char const letter : messageOf(record).format) {
        if (auto const code = static_cast<ArgCode>(letter); code != ArgCode::words) {
            appendArg(stream_, code, *arg++);
        }
    }
}

/// Fills in what is known at the end: the size, the times, and the identifier, which is made of all
/// the rest.
void CtfWriter::endPacket(U64 begin) {
    std::vector<DecodedMessage> messages;
    for (auto const& [msgId, message] : messages_) {
        messages.push_back(message);
    }
    U64 const bits = U64{stream_.size()} * 8;
    PacketHeader header{.begin = begin, .end = time_, .contentSize = bits, .packetSize = bits};
    auto const fillIn = [&] {
        metadata_ = Internal::ctfMetadata(messages, textOf(header.uuid));
        std::string const bytes = bytesOf(header);
        stream_.replace(0, bytes.size(), bytes);
    };
    fillIn();
    header.uuid = uuidOf(metadata_, stream_);
    fillIn();
}

void CtfWriter::write(std::filesystem::path const& directory) const {
    NewFiles files(directory);
    files.add("stream", stream_);
    files.add("metadata", metadata_); // last: a folder without it is no trace
    files.keep();
}

} // namespace Lumlog
