#include "agent/FaultyDisk.h"

#include <sqlite3.h>

#include <utility>

namespace VpAgentTest {

namespace {

struct Plan {
    unsigned steps = 0; ///< what may fail; none: all is well
    unsigned left = 0;  ///< operations that still succeed
    FaultyDisk::Fault fault = FaultyDisk::Fault::full;
    bool forEver = false;
    bool failed = false;

    /// The code with which the next operation, of this kind, fails, `broken` when the disk is
    /// neither full nor to be read only; `SQLITE_OK` when it does not.
    int next(FaultyDisk::Step step, int broken) {
        if ((steps & step) == 0) {
            return SQLITE_OK;
        }
        if (left != 0) {
            --left;
            return SQLITE_OK;
        }
        if (failed && !forEver) {
            return SQLITE_OK;
        }
        failed = true;
        switch (fault) {
        case FaultyDisk::Fault::full:
            return SQLITE_FULL;
        case FaultyDisk::Fault::readOnly:
            return SQLITE_READONLY;
        default:
            return broken;
        }
    }
};

Plan plan;
unsigned syncCount = 0;

std::function<void(FaultyDisk::Operation)> hook;
bool inHook = false;

void tell(FaultyDisk::Operation operation) {
    if (hook && !inHook) {
        inHook = true;
        hook(operation);
        inHook = false;
    }
}

/// A file of ours; that of the disk below stands behind it.
struct File {
    sqlite3_file base;
    sqlite3_int64 alignment;
};

sqlite3_file* below(sqlite3_file* file) {
    return reinterpret_cast<sqlite3_file*>(reinterpret_cast<char*>(file) + sizeof(File));
}

int closeFile(sqlite3_file* file) {
    sqlite3_file* const real = below(file);
    return real->pMethods == nullptr ? SQLITE_OK : real->pMethods->xClose(real);
}
int readFile(sqlite3_file* file, void* bytes, int count, sqlite3_int64 at) {
    int const code = plan.next(FaultyDisk::reading, SQLITE_IOERR_READ);
    return code != SQLITE_OK ? code : below(file)->pMethods->xRead(below(file), bytes, count, at);
}
int writeFile(sqlite3_file* file, void const* bytes, int count, sqlite3_int64 at) {
    tell(FaultyDisk::Operation::change);
    int const code = plan.next(FaultyDisk::writing, SQLITE_IOERR_WRITE);
    if (code != SQLITE_OK && plan.fault == FaultyDisk::Fault::cut) {
        constexpr int sector = 512;
        below(file)->pMethods->xWrite(below(file), bytes, count / 2 / sector * sector, at);
    }
    return code != SQLITE_OK ? code : below(file)->pMethods->xWrite(below(file), bytes, count, at);
}
int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    tell(FaultyDisk::Operation::change);
    int const code = plan.next(FaultyDisk::truncating, SQLITE_IOERR_TRUNCATE);
    return code != SQLITE_OK ? code : below(file)->pMethods->xTruncate(below(file), size);
}
int syncFile(sqlite3_file* file, int flags) {
    ++syncCount;
    tell(FaultyDisk::Operation::sync);
    int const code = plan.next(FaultyDisk::syncing, SQLITE_IOERR_FSYNC);
    return code != SQLITE_OK ? code : below(file)->pMethods->xSync(below(file), flags);
}
int sizeOfFile(sqlite3_file* file, sqlite3_int64* size) {
    tell(FaultyDisk::Operation::look);
    int const code = plan.next(FaultyDisk::asking, SQLITE_IOERR_FSTAT);
    return code != SQLITE_OK ? code : below(file)->pMethods->xFileSize(below(file), size);
}
int lockFile(sqlite3_file* file, int lock) {
    tell(FaultyDisk::Operation::lock);
    int const code = plan.next(FaultyDisk::locking, SQLITE_IOERR_LOCK);
    return code != SQLITE_OK ? code : below(file)->pMethods->xLock(below(file), lock);
}
int unlockFile(sqlite3_file* file, int lock) {
    return below(file)->pMethods->xUnlock(below(file), lock);
}
int checkLock(sqlite3_file* file, int* locked) {
    return below(file)->pMethods->xCheckReservedLock(below(file), locked);
}
int controlFile(sqlite3_file* file, int operation, void* argument) {
    return below(file)->pMethods->xFileControl(below(file), operation, argument);
}
int sectorSize(sqlite3_file* file) { return below(file)->pMethods->xSectorSize(below(file)); }
int characteristics(sqlite3_file* file) {
    return below(file)->pMethods->xDeviceCharacteristics(below(file));
}

/// Version 1: no shared memory and no mapping, so that every change comes through here.
constexpr sqlite3_io_methods methods = [] {
    sqlite3_io_methods all{};
    all.iVersion = 1;
    all.xClose = closeFile;
    all.xRead = readFile;
    all.xWrite = writeFile;
    all.xTruncate = truncateFile;
    all.xSync = syncFile;
    all.xFileSize = sizeOfFile;
    all.xLock = lockFile;
    all.xUnlock = unlockFile;
    all.xCheckReservedLock = checkLock;
    all.xFileControl = controlFile;
    all.xSectorSize = sectorSize;
    all.xDeviceCharacteristics = characteristics;
    return all;
}();

sqlite3_vfs* realVfs(sqlite3_vfs* vfs) { return static_cast<sqlite3_vfs*>(vfs->pAppData); }

int openFile(sqlite3_vfs* vfs, char const* name, sqlite3_file* file, int flags, int* outFlags) {
    file->pMethods = nullptr;
    int const fault = plan.next(FaultyDisk::opening, SQLITE_CANTOPEN);
    if (fault != SQLITE_OK) {
        return fault;
    }
    int const code = realVfs(vfs)->xOpen(realVfs(vfs), name, below(file), flags, outFlags);
    if (code == SQLITE_OK) {
        file->pMethods = &methods;
    }
    return code;
}

int deleteFile(sqlite3_vfs* vfs, char const* name, int syncFolder) {
    tell(FaultyDisk::Operation::change);
    int const code = plan.next(FaultyDisk::removing, SQLITE_IOERR_DELETE);
    return code != SQLITE_OK ? code : realVfs(vfs)->xDelete(realVfs(vfs), name, syncFolder);
}

} // namespace

FaultyDisk::FaultyDisk() : vfs_(new sqlite3_vfs(*sqlite3_vfs_find(nullptr))) {
    vfs_->pAppData = sqlite3_vfs_find(nullptr);
    vfs_->zName = "faulty";
    vfs_->szOsFile += static_cast<int>(sizeof(File));
    vfs_->xOpen = openFile;
    vfs_->xDelete = deleteFile;
    plan = Plan();
    syncCount = 0;
    hook = nullptr;
    sqlite3_vfs_register(vfs_, 1);
}

FaultyDisk::~FaultyDisk() {
    hook = nullptr;
    sqlite3_vfs_register(realVfs(vfs_), 1);
    sqlite3_vfs_unregister(vfs_);
    delete vfs_;
}

void FaultyDisk::failAt(unsigned at, Fault fault, Lasting lasting, unsigned steps) {
    plan = {steps, at, fault, lasting == Lasting::forEver, false};
}

void FaultyDisk::before(std::function<void(Operation)> newHook) { hook = std::move(newHook); }

void FaultyDisk::repair() { plan.steps = 0; }

bool FaultyDisk::failed() const { return plan.failed; }

unsigned FaultyDisk::syncs() const { return syncCount; }

} // namespace VpAgentTest
