#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/objects/class_info.h"
#include "platform/streams/stream.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"

namespace vyn {

const ClassInfo& TFileStream::StaticClass() {
    static const ClassInfo info = DefineClass<TFileStream, TStream>("TFileStream");
    return info;
}
const ClassInfo& TMappedFileStream::StaticClass() {
    static const ClassInfo info = DefineClass<TMappedFileStream, TStream>("TMappedFileStream");
    return info;
}

namespace file_detail {

constexpr mode_t kNewFileMode = 0666;
// Pieces from this size on are worth a reservation, and how far ahead it reaches.
constexpr int64_t kReserveFrom = 256 * 1024;
constexpr int64_t kReserveStep = 16 * 1024 * 1024;

AnsiString Reason(int error) { return Utf8ToAnsiLossy(std::strerror(error)); }

int Open(const AnsiString& fileName, int flags) {
    const std::string name = SystemFileName(fileName);
    int handle;
    do {
        handle = ::open(name.c_str(), flags | O_CLOEXEC, kNewFileMode);
    } while (handle < 0 && errno == EINTR);
    return handle;
}

AnsiString FolderOf(const AnsiString& fileName) {
    const size_t slash = fileName.find_last_of("/\\");
    return slash == AnsiString::npos ? AnsiString(".") : fileName.substr(0, std::max<size_t>(slash, 1));
}

}  // namespace file_detail

std::string SystemFileName(const AnsiString& fileName) {
    std::string name = AnsiToUtf8(fileName);
    std::replace(name.begin(), name.end(), '\\', '/');
    return name;
}

TFileStream::TFileStream(const AnsiString& fileName, TFileMode mode) : fileName_(fileName) {
    int flags = O_RDONLY;
    switch (mode) {
        case fmCreate:
            flags = O_RDWR | O_CREAT | O_TRUNC;
            break;
        case fmOpenRead:
            flags = O_RDONLY;
            break;
        case fmOpenWrite:
            flags = O_WRONLY;
            break;
        case fmOpenReadWrite:
            flags = O_RDWR;
            break;
    }
    handle_ = file_detail::Open(fileName, flags);
    if (handle_ < 0) {
        const AnsiString reason = file_detail::Reason(errno);
        if (mode == fmCreate) throw EFCreateError("Cannot create file " + fileName + ". " + reason);
        throw EFOpenError("Cannot open file " + fileName + ". " + reason);
    }
    struct stat about {};
    if (::fstat(handle_, &about) == 0 && S_ISDIR(about.st_mode)) {
        ::close(handle_);
        throw EFOpenError("Cannot open file " + fileName + ". It is a folder");
    }
    // Readers share; a file being written is kept for its writer. Only a hint to others of the house, so a file
    // system without locks is no error.
    ::flock(handle_, (mode == fmOpenRead ? LOCK_SH : LOCK_EX) | LOCK_NB);
    reserves_ = mode == fmCreate;
}

TFileStream::~TFileStream() {
    GiveBackReserve();
    ::close(handle_);
}

// Only a hint: a file system that cannot, or has not that much left, is asked no more, and writing says what is wrong.
void TFileStream::ReserveAhead(int64_t count) {
#ifdef FALLOC_FL_KEEP_SIZE
    const int64_t end = ::lseek(handle_, 0, SEEK_CUR) + count;
    if (end <= reservedUpTo_) return;
    const int64_t upTo = end + file_detail::kReserveStep;
    reserves_ = ::fallocate(handle_, FALLOC_FL_KEEP_SIZE, reservedUpTo_, upTo - reservedUpTo_) == 0;
    if (reserves_) reservedUpTo_ = upTo;
#else
    reserves_ = count < 0;
#endif
}

void TFileStream::GiveBackReserve() {
    if (reservedUpTo_ == 0) return;
    const int64_t size = Size();
    // Nothing is lost when this fails but room on the disk, and a later size change gives that back too.
    if (reservedUpTo_ > size && ::ftruncate(handle_, size) != 0) return;
    reservedUpTo_ = 0;
}

int64_t TFileStream::Read(void* buffer, int64_t count) {
    ssize_t taken;
    do {
        taken = ::read(handle_, buffer, static_cast<size_t>(count));
    } while (taken < 0 && errno == EINTR);
    if (taken < 0) throw EReadError("Stream read error in " + fileName_ + ". " + file_detail::Reason(errno));
    return taken;
}

int64_t TFileStream::Write(const void* buffer, int64_t count) {
    if (reserves_ && count >= file_detail::kReserveFrom) ReserveAhead(count);
    ssize_t put;
    do {
        put = ::write(handle_, buffer, static_cast<size_t>(count));
    } while (put < 0 && errno == EINTR);
    if (put < 0) throw EWriteError("Stream write error in " + fileName_ + ". " + file_detail::Reason(errno));
    return put;
}

int64_t TFileStream::Seek(int64_t offset, TSeekOrigin origin) {
    const int whence = origin == soFromBeginning ? SEEK_SET : origin == soFromCurrent ? SEEK_CUR : SEEK_END;
    const off_t at = ::lseek(handle_, offset, whence);
    if (at < 0) throw EStreamError("Stream seek error in " + fileName_ + ". " + file_detail::Reason(errno));
    return at;
}

int64_t TFileStream::Size() const {
    struct stat about {};
    if (::fstat(handle_, &about) != 0) return 0;
    return about.st_size;
}

void TFileStream::SetSize(int64_t size) {
    if (::ftruncate(handle_, size) != 0)
        throw EWriteError("Stream write error in " + fileName_ + ". " + file_detail::Reason(errno));
}

void TFileStream::Synchronize() {
    GiveBackReserve();
    if (::fsync(handle_) != 0)
        throw EWriteError("Stream write error in " + fileName_ + ". " + file_detail::Reason(errno));
}

TMappedFileStream::TMappedFileStream(const AnsiString& fileName) : fileName_(fileName) {
    TFileStream file(fileName, fmOpenRead);  // names the error
    size_ = file.Size();
    if (size_ == 0) {
        data_ = "";
        return;
    }
    const int handle = file_detail::Open(fileName, O_RDONLY);
    void* memory =
        handle < 0 ? MAP_FAILED : ::mmap(nullptr, static_cast<size_t>(size_), PROT_READ, MAP_PRIVATE, handle, 0);
    const int error = errno;
    if (handle >= 0) ::close(handle);
    if (memory == MAP_FAILED) {
        size_ = 0;
        throw EFOpenError("Cannot open file " + fileName + ". " + file_detail::Reason(error));
    }
    data_ = static_cast<const char*>(memory);
}

TMappedFileStream::~TMappedFileStream() {
    if (size_ > 0) ::munmap(const_cast<char*>(data_), static_cast<size_t>(size_));
}

int64_t TMappedFileStream::Read(void* buffer, int64_t count) {
    const int64_t taken = std::min(std::max<int64_t>(size_ - position_, 0), count);
    if (taken > 0) std::memcpy(buffer, data_ + position_, static_cast<size_t>(taken));
    position_ += std::max<int64_t>(taken, 0);
    return taken;
}
int64_t TMappedFileStream::Write(const void*, int64_t) {
    throw EWriteError("Stream write error in " + fileName_ + ". The file is open for reading only");
}
int64_t TMappedFileStream::Seek(int64_t offset, TSeekOrigin origin) {
    const int64_t from = origin == soFromBeginning ? 0 : origin == soFromCurrent ? position_ : size_;
    return position_ = std::max<int64_t>(from + offset, 0);
}
void TMappedFileStream::SetSize(int64_t) {
    throw EWriteError("Stream write error in " + fileName_ + ". The file is open for reading only");
}

void WriteFileAtomically(const AnsiString& fileName, const std::function<void(TStream&)>& write) {
    const AnsiString temporary = fileName + ".new-" + std::to_string(::getpid());
    try {
        TFileStream file(temporary, fmCreate);
        write(file);
        file.Synchronize();
        struct stat old {};
        // The new file keeps the old one's permissions.
        if (::stat(SystemFileName(fileName).c_str(), &old) == 0)
            (void)!::chmod(SystemFileName(temporary).c_str(), old.st_mode & 07777);
    } catch (...) {
        ::unlink(SystemFileName(temporary).c_str());
        throw;
    }
    PutInPlace(temporary, fileName);
}

void PutInPlace(const AnsiString& temporary, const AnsiString& fileName) {
    if (std::rename(SystemFileName(temporary).c_str(), SystemFileName(fileName).c_str()) != 0) {
        const AnsiString reason = file_detail::Reason(errno);
        ::unlink(SystemFileName(temporary).c_str());
        throw EFCreateError("Cannot create file " + fileName + ". " + reason);
    }
    // The rename itself reaches the disk with the folder.
    const int folder = file_detail::Open(file_detail::FolderOf(fileName), O_RDONLY | O_DIRECTORY);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
}

}  // namespace vyn
