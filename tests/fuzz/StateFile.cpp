// State files of any content: refused and left as they are, or taken, and then good for more.
//
// An input is one byte of options, the size of FILE in two bytes, FILE, and its log.

#include "agent/KeptAgent.h"
#include "common/Input.h"
#include "statefile/StoredRecord.h"
#include "support/ScratchPlace.h"
#include "text/Refusal.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;
using namespace VpAgent;
using Fuzz::expect;
using VpAgentTest::bytesOf;
using VpAgentTest::KeptAgent;

constexpr U8 sealed = 1; ///< all rows get the seal that fits what they hold

/// A folder of this process.
class Folder {
public:
    Folder() : path_(Support::scratchPlace() / ("vornic-fuzz-" + std::to_string(::getpid()))) {
        fs::create_directory(path_);
    }
    ~Folder() { fs::remove_all(path_); }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;

    fs::path const& path() const { return path_; }

    void clear() const {
        for (auto const& entry : fs::directory_iterator(path_)) {
            fs::remove_all(entry.path());
        }
    }

private:
    fs::path path_;
};

void write(fs::path const& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

/// One column: whether it is a text, and its value.
struct Column {
    bool isText;
    std::string text;
    U64 number;
};

std::vector<Column> columnsOf(Statement const& rows, std::size_t count) {
    std::vector<Column> columns;
    for (int at = 0; at < static_cast<int>(count); ++at) {
        bool const isText = rows.isText(at);
        columns.push_back({isText, isText ? std::string(rows.text(at)) : "",
                           rows.isInteger(at) ? rows.integer(at) : 0});
    }
    return columns;
}

U64 sealOf(Table const& table, std::vector<Column> const& columns) {
    Seal seal;
    seal.add(table.name);
    for (std::size_t at = 0; at + 1 < columns.size(); ++at) {
        columns[at].isText ? seal.add(columns[at].text) : seal.add(columns[at].number);
    }
    return seal.value() + columns.back().number; // the position
}

void sealRows(Connection& connection, Table const& table) {
    std::size_t const count = table.key.size() + table.values.size() + 1;
    std::vector<std::vector<Column>> all;
    {
        Statement rows(connection, table.selectSql());
        while (rows.step()) {
            all.push_back(columnsOf(rows, count));
        }
    }
    std::string where;
    for (std::string_view const key : table.key) {
        where += (where.empty() ? " WHERE " : " AND ") + std::string(key) + " = ?";
    }
    for (auto const& columns : all) {
        Statement update(connection, "UPDATE " + std::string(table.name) + " SET seal = ?" + where);
        update.bind(sealOf(table, columns) % (2 * Seal::bound));
        for (std::size_t at = 0; at < table.key.size(); ++at) {
            columns[at].isText ? update.bind(columns[at].text) : update.bind(columns[at].number);
        }
        update.run();
    }
}

/// As far as SQLite can still read and write the tables.
void sealAll(fs::path const& path) {
    using namespace VornicCentral;
    Table const* const tables[] = {&clientTable(),
                                   &tableOf<VpIndexConfig>(),
                                   &tableOf<VpIndexStatus>(),
                                   &tableOf<VpReferenceList>(),
                                   &tableOf<VpInvalidReferenceList>(),
                                   &tableOf<VxlanBootStatus>()};
    for (Table const* const table : tables) {
        try {
            Connection connection(path.string());
            connection.keepLogAtClose(true);
            sealRows(connection, *table);
        } catch (SqliteError const&) {       // this is what most damage leads to
        } catch (std::out_of_range const&) { // a negative number, for which no seal fits
        }
    }
}

/// A file that was taken is changed, and found again with the change; without it when that could
/// not be written.
void useFile(fs::path const& path) {
    std::string content;
    {
        KeptAgent kept(path);
        std::string const before = kept.content();
        auto const& config = kept.database().add("fuzz").config;
        config->is<VornicCentral::VlanVport>(Bridging::VlanId(77), true);
        content = kept.content();
        try {
            kept.commit();
        } catch (StateFileError const&) {
            content = before;
        }
    }
    auto const again = VpAgentTest::openedFile(path);
    expect(again.refusal.empty(), "refused after a change that was acknowledged: " + again.refusal);
    expect(again.content == content, "what was written is not found again");
}

/// Whether the file was taken; a file that is refused stays as it is.
bool openFile(fs::path const& path, fs::path const& log) {
    std::string const file = bytesOf(path);
    std::string const logged = bytesOf(log);
    try {
        KeptAgent const kept(path);
    } catch (Refusal const& refusal) {
        expect(file.empty() || (bytesOf(path) == file && bytesOf(log) == logged),
               std::string("changed, although refused: ") + refusal.what());
        return false;
    }
    return true;
}

} // namespace

int LLVMFuzzerTestOneInput(U8 const* data, std::size_t size) {
    static Folder const folder;
    folder.clear();
    fs::path const path = folder.path() / "state";
    fs::path const log = folder.path() / "state-wal";
    Fuzz::Input input(data, size);
    U8 const options = input.byte();
    std::size_t const fileSize = input.number(2);
    write(path, input.text(fileSize));
    if (!input.empty()) {
        write(log, input.rest());
    }
    if ((options & sealed) != 0) {
        sealAll(path);
    }
    if (openFile(path, log)) {
        useFile(path);
    }
    return 0;
}
