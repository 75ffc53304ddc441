#include "statefile/StateFile.h"

#include "text/Refusal.h"
#include "text/Utf8.h"

namespace VpAgent {

namespace {

[[noreturn]] void refuse(std::filesystem::path const& path, std::string const& why) {
    throw Refusal("cannot use the state file " + inQuotes(path.string()) + ": " + why);
}

std::string explained(SqliteError const& error) {
    std::string const what = printable(error.what());
    return error.busy()     ? "another program uses it, expected to be the only one"
           : error.damage() ? "it is damaged (" + what + "), expected it as vpagent left it"
                            : what + ", expected a file that can be read and written";
}

} // namespace

std::unique_ptr<StateFile> StateFile::open(std::filesystem::path const& path, Database& database,
                                           U64 largest) {
    try {
        return std::unique_ptr<StateFile>(new StateFile(path, database, largest));
    } catch (SqliteError const& error) {
        refuse(path, explained(error));
    } catch (Damage const& damage) {
        refuse(path,
               "it is damaged (" + printable(damage.what()) + "), expected it as vpagent left it");
    } catch (Refusal const& refusal) {
        refuse(path, refusal.what());
    } catch (std::filesystem::filesystem_error const& error) {
        refuse(path, error.code().message() + ", expected a path that can be followed");
    }
}

StateFile::StateFile(std::filesystem::path const& path, Database& database, U64 largest)
    : name_(path.string()),
      file_(openAlone(path, largest)),
      log_(file_.connection()),
      loaded_(load(file_.connection(), database)),
      tracker_(database, loaded_),
      writer_(file_.connection(), loaded_.firstFreePosition),
      begin_(file_.connection(), "BEGIN IMMEDIATE"),
      end_(file_.connection(), "COMMIT") {
    try {
        file_.accept();
        log_.begin();
    } catch (...) {
        if (loaded_.firstFreePosition == 1) { // no row was ever there
            file_.discard();
        }
        throw;
    }
}

bool StateFile::commit() {
    if (tracker_.empty()) {
        return false;
    }
    try {
        log_.keepShort();
        begin_.run();
        tracker_.writeTo(writer_);
        end_.run();
    } catch (std::runtime_error const& error) { // of SQLite, or `Damage`
        throw StateFileError("the state file " + inQuotes(name_) +
                             " cannot be written: " + printable(error.what()));
    }
    tracker_.clear();
    return true;
}

} // namespace VpAgent
