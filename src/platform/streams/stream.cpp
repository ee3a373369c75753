#include "platform/streams/stream.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/objects/class_info.h"
#include "platform/streams/large_block.h"
#include "platform/text/exceptions.h"

namespace vyn {

const ClassInfo& TStream::StaticClass() {
    static const ClassInfo info = DefineClass<TStream, TObject>("TStream");
    return info;
}
const ClassInfo& TMemoryStream::StaticClass() {
    static const ClassInfo info = DefineClass<TMemoryStream, TStream>("TMemoryStream");
    return info;
}
const ClassInfo& TViewStream::StaticClass() {
    static const ClassInfo info = DefineClass<TViewStream, TStream>("TViewStream");
    return info;
}
const ClassInfo& TStringStream::StaticClass() {
    static const ClassInfo info = DefineClass<TStringStream, TMemoryStream>("TStringStream");
    return info;
}

namespace stream_detail {

constexpr int64_t kCopyChunk = 64 * 1024;
// Below this a growing stream doubles; above, it grows by half, which large blocks do without copying.
constexpr int64_t kDoublingLimit = 16 * 1024 * 1024;
constexpr int64_t kSmallestCapacity = 256;
// A memory stream's buffer is a large block exactly when its capacity says so.
void FreeBuffer(char* data, int64_t capacity) {
    if (capacity >= LargeBlockFrom)
        FreeLargeBlock(data, capacity);
    else
        std::free(data);
}

int64_t SeekTarget(int64_t offset, TSeekOrigin origin, int64_t position, int64_t size) {
    int64_t target = offset;
    if (origin == soFromCurrent) target = position + offset;
    if (origin == soFromEnd) target = size + offset;
    return std::max<int64_t>(target, 0);
}

int64_t ReadFromView(std::string_view bytes, int64_t& position, void* buffer, int64_t count) {
    const int64_t left = std::max<int64_t>(static_cast<int64_t>(bytes.size()) - position, 0);
    const int64_t taken = std::min(left, count);
    if (taken <= 0) return 0;
    std::memcpy(buffer, bytes.data() + position, static_cast<size_t>(taken));
    position += taken;
    return taken;
}

[[noreturn]] void RaiseReadOnly() { throw EWriteError("Stream write error: the stream is read-only"); }

}  // namespace stream_detail

void TStream::ReadBuffer(void* buffer, int64_t count) {
    auto* at = static_cast<char*>(buffer);
    while (count > 0) {
        const int64_t taken = Read(at, count);
        if (taken <= 0) throw EReadError("Stream read error");
        at += taken;
        count -= taken;
    }
}

void TStream::WriteBuffer(const void* buffer, int64_t count) {
    const auto* at = static_cast<const char*>(buffer);
    while (count > 0) {
        const int64_t put = Write(at, count);
        if (put <= 0) throw EWriteError("Stream write error");
        at += put;
        count -= put;
    }
}

int64_t TStream::CopyFrom(TStream& source, int64_t count) {
    if (count == 0) {
        source.SetPosition(0);
        count = source.Size();
    }
    const std::string_view view = source.MemoryView();
    if (view.data() && &source != this) {
        const int64_t position = source.Position();
        if (position + count > static_cast<int64_t>(view.size())) throw EReadError("Stream read error");
        WriteBuffer(view.data() + position, count);
        source.SetPosition(position + count);
        return count;
    }
    std::vector<char> chunk(static_cast<size_t>(std::min(count, stream_detail::kCopyChunk)));
    for (int64_t left = count; left > 0;) {
        const int64_t part = std::min(left, static_cast<int64_t>(chunk.size()));
        source.ReadBuffer(chunk.data(), part);
        WriteBuffer(chunk.data(), part);
        left -= part;
    }
    return count;
}

AnsiString WholeStream(TStream& stream) {
    const std::string_view memory = stream.MemoryView();
    if (memory.data()) return AnsiString(memory);
    AnsiString bytes(static_cast<size_t>(stream.Size()), '\0');
    stream.SetPosition(0);
    stream.ReadBuffer(bytes.data(), static_cast<int64_t>(bytes.size()));
    return bytes;
}

TMemoryStream::~TMemoryStream() { stream_detail::FreeBuffer(data_, capacity_); }

int64_t TMemoryStream::Read(void* buffer, int64_t count) {
    return stream_detail::ReadFromView(Bytes(), position_, buffer, count);
}

void TMemoryStream::Reserve(int64_t capacity) {
    if (capacity <= capacity_) return;
    const bool large = capacity >= LargeBlockFrom;
    const bool wasLarge = capacity_ >= LargeBlockFrom;
    if (large) capacity = LargeBlockCapacity(capacity);
    char* grown = large ? ResizeLargeBlock(wasLarge ? data_ : nullptr, capacity_, capacity)
                        : static_cast<char*>(std::realloc(data_, static_cast<size_t>(capacity)));
    if (!grown) throw EOutOfResources("Out of memory while expanding memory stream");
    if (large && !wasLarge) {
        if (size_ > 0) std::memcpy(grown, data_, static_cast<size_t>(size_));
        std::free(data_);
    }
    data_ = grown;
    capacity_ = capacity;
}

int64_t TMemoryStream::Write(const void* buffer, int64_t count) {
    if (count <= 0) return 0;
    const int64_t end = position_ + count;
    if (end > capacity_) {
        const int64_t grown = capacity_ < stream_detail::kDoublingLimit ? capacity_ * 2 : capacity_ + capacity_ / 2;
        Reserve(std::max({end, grown, stream_detail::kSmallestCapacity}));
    }
    if (position_ > size_) std::memset(data_ + size_, 0, static_cast<size_t>(position_ - size_));
    std::memcpy(data_ + position_, buffer, static_cast<size_t>(count));
    position_ = end;
    size_ = std::max(size_, end);
    return count;
}

int64_t TMemoryStream::Seek(int64_t offset, TSeekOrigin origin) {
    return position_ = stream_detail::SeekTarget(offset, origin, position_, size_);
}

void TMemoryStream::SetSize(int64_t size) {
    size = std::max<int64_t>(size, 0);
    Reserve(size);
    if (size > size_) std::memset(data_ + size_, 0, static_cast<size_t>(size - size_));
    size_ = size;
    position_ = std::min(position_, size_);
}

void TMemoryStream::Clear() {
    stream_detail::FreeBuffer(data_, capacity_);
    data_ = nullptr;
    size_ = capacity_ = position_ = 0;
}

void TMemoryStream::SetBytes(std::string_view bytes) {
    Reserve(static_cast<int64_t>(bytes.size()));
    if (!bytes.empty()) std::memcpy(data_, bytes.data(), bytes.size());
    size_ = static_cast<int64_t>(bytes.size());
    position_ = 0;
}

void TMemoryStream::LoadFromStream(TStream& stream) {
    Clear();
    stream.SetPosition(0);
    const int64_t size = stream.Size();
    if (size > 0) {
        Reserve(size);
        CopyFrom(stream, size);
    }
    position_ = 0;
}

void TMemoryStream::LoadFromFile(const AnsiString& fileName) {
    TFileStream file(fileName, fmOpenRead);
    LoadFromStream(file);
}

void TMemoryStream::SaveToStream(TStream& stream) const { stream.WriteBuffer(data_, size_); }

void TMemoryStream::SaveToFile(const AnsiString& fileName) const {
    WriteFileAtomically(fileName, [this](TStream& stream) { SaveToStream(stream); });
}

int64_t TViewStream::Read(void* buffer, int64_t count) {
    return stream_detail::ReadFromView(bytes_, position_, buffer, count);
}
int64_t TViewStream::Write(const void*, int64_t) { stream_detail::RaiseReadOnly(); }
int64_t TViewStream::Seek(int64_t offset, TSeekOrigin origin) {
    return position_ = stream_detail::SeekTarget(offset, origin, position_, Size());
}
void TViewStream::SetSize(int64_t) { stream_detail::RaiseReadOnly(); }

}  // namespace vyn
