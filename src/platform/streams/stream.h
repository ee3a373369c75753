#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "platform/objects/object.h"

namespace vyn {

enum class TSeekOrigin { soFromBeginning, soFromCurrent, soFromEnd };
using enum TSeekOrigin;

// A sequence of bytes with a position. Sizes and positions are bytes. Not shared between threads.
class TStream : public TObject {
    VYN_OBJECT
  public:
    // Up to `count` bytes; gives how many. A device's refusal raises EReadError or EWriteError with its reason.
    virtual int64_t Read(void* buffer, int64_t count) = 0;
    virtual int64_t Write(const void* buffer, int64_t count) = 0;
    virtual int64_t Seek(int64_t offset, TSeekOrigin origin) = 0;
    virtual int64_t Size() const = 0;
    virtual void SetSize(int64_t size) = 0;

    int64_t Position() const { return const_cast<TStream*>(this)->Seek(0, soFromCurrent); }
    void SetPosition(int64_t position) { Seek(position, soFromBeginning); }

    // All of `count` bytes, or EReadError ("Stream read error") / EWriteError ("Stream write error").
    void ReadBuffer(void* buffer, int64_t count);
    void WriteBuffer(const void* buffer, int64_t count);
    // Copies `count` bytes from the source's position; 0 means the whole source from its beginning. Gives the count.
    int64_t CopyFrom(TStream& source, int64_t count);

    // The bytes of a stream that keeps them all in memory, else empty with no data pointer.
    virtual std::string_view MemoryView() const { return {}; }
    // What the stream reads, for messages: a file name, or "memory".
    virtual AnsiString Description() const { return "stream"; }
};

// Bytes in memory. Owns them.
class TMemoryStream : public TStream {
    VYN_OBJECT
  public:
    TMemoryStream() = default;
    explicit TMemoryStream(std::string_view bytes) { SetBytes(bytes); }
    ~TMemoryStream() override;

    int64_t Read(void* buffer, int64_t count) override;
    int64_t Write(const void* buffer, int64_t count) override;
    int64_t Seek(int64_t offset, TSeekOrigin origin) override;
    int64_t Size() const override { return size_; }
    void SetSize(int64_t size) override;
    std::string_view MemoryView() const override { return Bytes(); }
    AnsiString Description() const override { return description_; }
    // What the bytes are, for messages.
    void SetDescription(const AnsiString& description) { description_ = description; }

    std::string_view Bytes() const { return {data_, static_cast<size_t>(size_)}; }
    char* Memory() { return data_; }
    void Clear();
    // Replaces the contents and stands at 0.
    void SetBytes(std::string_view bytes);
    // Makes room so that writes up to this size need no growing.
    void Reserve(int64_t capacity);
    void LoadFromStream(TStream& stream);
    void LoadFromFile(const AnsiString& fileName);
    void SaveToStream(TStream& stream) const;
    void SaveToFile(const AnsiString& fileName) const;

  private:
    char* data_ = nullptr;
    int64_t size_ = 0;
    int64_t capacity_ = 0;
    int64_t position_ = 0;
    AnsiString description_ = "memory";
};

// Bytes that somebody else owns and keeps unchanged meanwhile; cannot be written.
class TViewStream : public TStream {
    VYN_OBJECT
  public:
    explicit TViewStream(std::string_view bytes) : bytes_(bytes) {}
    int64_t Read(void* buffer, int64_t count) override;
    int64_t Write(const void* buffer, int64_t count) override;
    int64_t Seek(int64_t offset, TSeekOrigin origin) override;
    int64_t Size() const override { return static_cast<int64_t>(bytes_.size()); }
    void SetSize(int64_t size) override;
    std::string_view MemoryView() const override { return bytes_; }
    AnsiString Description() const override { return "memory"; }

  private:
    std::string_view bytes_;
    int64_t position_ = 0;
};

enum class TFileMode { fmCreate, fmOpenRead, fmOpenWrite, fmOpenReadWrite };
using enum TFileMode;

// A file. Stored names use "\"; they are mapped to the system's own separators. A file that cannot be made raises
// EFCreateError "Cannot create file NAME. REASON", one that cannot be opened EFOpenError "Cannot open file NAME.
// REASON". Opened for reading, writers are kept away for as long as the stream lives where the system can (an advisory
// lock). A file that is made and written in large pieces has its room on the disk reserved some way ahead, which is a
// third faster; what was not used is given back when it is synchronised or closed.
class TFileStream : public TStream {
    VYN_OBJECT
  public:
    TFileStream(const AnsiString& fileName, TFileMode mode);
    ~TFileStream() override;

    int64_t Read(void* buffer, int64_t count) override;
    int64_t Write(const void* buffer, int64_t count) override;
    int64_t Seek(int64_t offset, TSeekOrigin origin) override;
    int64_t Size() const override;
    void SetSize(int64_t size) override;
    AnsiString Description() const override { return fileName_; }
    const AnsiString& FileName() const { return fileName_; }
    // Asks the system to put what was written on the disk; raises EWriteError.
    void Synchronize();

  private:
    void ReserveAhead(int64_t count);
    void GiveBackReserve();

    AnsiString fileName_;
    int handle_ = -1;
    bool reserves_ = false;     // while the file system can
    int64_t reservedUpTo_ = 0;  // bytes from the beginning of the file
};

// A file read through a mapping: the whole file is a memory view and costs memory only where it is touched.
// Raises as TFileStream does. Read only.
class TMappedFileStream : public TStream {
    VYN_OBJECT
  public:
    explicit TMappedFileStream(const AnsiString& fileName);
    ~TMappedFileStream() override;
    int64_t Read(void* buffer, int64_t count) override;
    int64_t Write(const void* buffer, int64_t count) override;
    int64_t Seek(int64_t offset, TSeekOrigin origin) override;
    int64_t Size() const override { return size_; }
    void SetSize(int64_t size) override;
    std::string_view MemoryView() const override { return {data_, static_cast<size_t>(size_)}; }
    AnsiString Description() const override { return fileName_; }

  private:
    AnsiString fileName_;
    const char* data_ = nullptr;
    int64_t size_ = 0;
    int64_t position_ = 0;
};

// Text in memory as a stream.
class TStringStream : public TMemoryStream {
    VYN_OBJECT
  public:
    explicit TStringStream(const AnsiString& text) : TMemoryStream(text) {}
    AnsiString DataString() const { return AnsiString(Bytes()); }
};

// A copy of the whole of a stream, whatever its position.
AnsiString WholeStream(TStream& stream);

// The system's spelling of a stored file name (UTF-8 bytes, "/" for "\").
std::string SystemFileName(const AnsiString& fileName);

// Writes a whole file so that an interruption at any point leaves the old one: a temporary file beside it, put on
// the disk, then renamed. `write` fills the stream; an exception from it leaves the old file and no temporary one.
void WriteFileAtomically(const AnsiString& fileName, const std::function<void(TStream&)>& write);
// The end of that for files that others write: renames `temporary`, which is on the disk already, over `fileName`.
void PutInPlace(const AnsiString& temporary, const AnsiString& fileName);

}  // namespace vyn
