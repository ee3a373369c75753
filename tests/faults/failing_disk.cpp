#include "faults/failing_disk.h"

#include <cstring>
#include <new>

namespace faults {

namespace {

struct State {
    bool armed = false;
    bool failed = false;
    int left = 0;
    FailingDisk::Kind kind = FailingDisk::Kind::Full;
    FailingDisk::Duration duration = FailingDisk::Duration::Once;
} state;

sqlite3_vfs* healthy = nullptr;

// Stands before the system's file, in the same block of memory.
struct File {
    sqlite3_file base;
    sqlite3_file* Inner() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};
sqlite3_file* Inner(sqlite3_file* file) { return reinterpret_cast<File*>(file)->Inner(); }

bool Fails() {
    if (!state.armed) return false;
    if (state.left > 1) {
        --state.left;
        return false;
    }
    state.failed = true;
    if (state.duration == FailingDisk::Duration::Once) state.armed = false;
    return true;
}

bool Writes() { return state.kind != FailingDisk::Kind::SyncError && state.kind != FailingDisk::Kind::ReadError; }

int Close(sqlite3_file* file) { return Inner(file)->pMethods->xClose(Inner(file)); }
int Read(sqlite3_file* file, void* data, int size, sqlite3_int64 at) {
    if (state.kind == FailingDisk::Kind::ReadError && Fails()) return SQLITE_IOERR_READ;
    return Inner(file)->pMethods->xRead(Inner(file), data, size, at);
}
int Write(sqlite3_file* file, const void* data, int size, sqlite3_int64 at) {
    if (Writes() && Fails()) {
        if (state.kind == FailingDisk::Kind::ShortWrite) Inner(file)->pMethods->xWrite(Inner(file), data, size / 2, at);
        return state.kind == FailingDisk::Kind::WriteError ? SQLITE_IOERR_WRITE : SQLITE_FULL;
    }
    return Inner(file)->pMethods->xWrite(Inner(file), data, size, at);
}
int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    if (state.kind == FailingDisk::Kind::WriteError && Fails()) return SQLITE_IOERR_TRUNCATE;
    return Inner(file)->pMethods->xTruncate(Inner(file), size);
}
int Sync(sqlite3_file* file, int flags) {
    if (state.kind == FailingDisk::Kind::SyncError && Fails()) return SQLITE_IOERR_FSYNC;
    return Inner(file)->pMethods->xSync(Inner(file), flags);
}
int FileSize(sqlite3_file* file, sqlite3_int64* size) { return Inner(file)->pMethods->xFileSize(Inner(file), size); }
int Lock(sqlite3_file* file, int level) { return Inner(file)->pMethods->xLock(Inner(file), level); }
int Unlock(sqlite3_file* file, int level) { return Inner(file)->pMethods->xUnlock(Inner(file), level); }
int CheckLock(sqlite3_file* file, int* held) { return Inner(file)->pMethods->xCheckReservedLock(Inner(file), held); }
int Control(sqlite3_file* file, int what, void* data) {
    return Inner(file)->pMethods->xFileControl(Inner(file), what, data);
}
int SectorSize(sqlite3_file* file) { return Inner(file)->pMethods->xSectorSize(Inner(file)); }
int Characteristics(sqlite3_file* file) { return Inner(file)->pMethods->xDeviceCharacteristics(Inner(file)); }
int MemoryMap(sqlite3_file* file, int page, int size, int extend, void volatile** memory) {
    return Inner(file)->pMethods->xShmMap(Inner(file), page, size, extend, memory);
}
int MemoryLock(sqlite3_file* file, int at, int count, int flags) {
    return Inner(file)->pMethods->xShmLock(Inner(file), at, count, flags);
}
void MemoryBarrier(sqlite3_file* file) { Inner(file)->pMethods->xShmBarrier(Inner(file)); }
int MemoryUnmap(sqlite3_file* file, int remove) { return Inner(file)->pMethods->xShmUnmap(Inner(file), remove); }

const sqlite3_io_methods kMethods = {
    2,           Close,     Read,    Write,      Truncate,        Sync,      FileSize,   Lock,
    Unlock,      CheckLock, Control, SectorSize, Characteristics, MemoryMap, MemoryLock, MemoryBarrier,
    MemoryUnmap, nullptr,   nullptr};

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    auto* ours = new (file) File;
    std::memset(ours->Inner(), 0, static_cast<size_t>(healthy->szOsFile));
    const int result = healthy->xOpen(healthy, name, ours->Inner(), flags, outFlags);
    ours->base.pMethods = ours->Inner()->pMethods ? &kMethods : nullptr;
    return result;
}

sqlite3_vfs& Ours() {
    static sqlite3_vfs vfs;
    return vfs;
}

}  // namespace

FailingDisk::FailingDisk() {
    healthy = sqlite3_vfs_find(nullptr);
    sqlite3_vfs& ours = Ours();
    // What is no file's goes to the system's own: it asks for nothing of itself.
    ours = *healthy;
    ours.pNext = nullptr;
    ours.zName = "failing";
    ours.szOsFile = static_cast<int>(sizeof(File)) + healthy->szOsFile;
    ours.xOpen = Open;
    state = State();
    sqlite3_vfs_register(&ours, 1);
}

FailingDisk::~FailingDisk() {
    sqlite3_vfs_unregister(&Ours());
    sqlite3_vfs_register(healthy, 1);
}

void FailingDisk::FailAt(int operation, Kind kind, Duration duration) {
    state = State{true, false, operation, kind, duration};
}

void FailingDisk::Mend() { state.armed = false; }

bool FailingDisk::Failed() const { return state.failed; }

const char* FailingDisk::HealthyName() { return "unix"; }

}  // namespace faults
