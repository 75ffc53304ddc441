#pragma once

#include <functional>

struct sqlite3_vfs;

namespace VpAgentTest {

/// A disk under SQLite on which, from the n-th operation of some kinds on, every such operation
/// fails, or only that one.
///
/// While it lives it stands between SQLite and the files of every connection that is opened.
class FaultyDisk {
public:
    /// A write that is cut writes its first half before it fails, as far as that is whole sectors.
    /// `readOnly`: what is there may be read, and nothing may be changed any more.
    enum class Fault { full, broken, cut, readOnly };
    enum class Lasting { once, forEver };

    /// What may fail. Several are joined with `|`.
    enum Step : unsigned {
        opening = 1,
        reading = 2,
        writing = 4,
        truncating = 8,
        removing = 16,
        syncing = 32,
        locking = 64,
        asking = 128, ///< for the size of a file
    };
    static constexpr unsigned changing = writing | truncating | removing | syncing;

    FaultyDisk();
    ~FaultyDisk();
    FaultyDisk(FaultyDisk const&) = delete;
    FaultyDisk& operator=(FaultyDisk const&) = delete;

    /// The operation of these kinds numbered `at` from now on fails, counted from 0.
    void failAt(unsigned at, Fault fault, Lasting lasting, unsigned steps = changing);
    /// No operation fails any more.
    void repair();

    /// Whether an operation failed since `failAt`.
    bool failed() const;

    enum class Operation { look, lock, change, sync }; ///< `look` asks for the size of a file

    /// Calls `hook` before each such operation, but not before those that it makes itself; null
    /// ends that.
    void before(std::function<void(Operation)> hook);

    /// How many times anything was forced to the disk since this was made.
    unsigned syncs() const;

private:
    sqlite3_vfs* vfs_;
};

} // namespace VpAgentTest
