#include "platform/streams/reader.h"

#include <algorithm>

#include "platform/streams/extended.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

// Counts the depth of what is being read for as long as it stands.
class TReader::Nesting {
  public:
    explicit Nesting(TReader& reader) : reader_(reader) {
        if (++reader_.nesting_ > MaxStreamNesting) {
            --reader_.nesting_;
            reader_.Error("Stream read error: more than " + IntToStr(MaxStreamNesting) + " levels");
        }
    }
    ~Nesting() { --reader_.nesting_; }

  private:
    TReader& reader_;
};

TReader::TReader(TStream& stream, int bufferSize) : stream_(stream) {
    const std::string_view memory = stream.MemoryView();
    base_ = stream.Position();
    if (memory.data()) {
        size_ = static_cast<int64_t>(memory.size());
        base_ = std::min(base_, size_);
        begin_ = at_ = memory.data() + base_;
        end_ = memory.data() + size_;
    } else {
        buffered_ = true;
        size_ = stream.Size();
        bufferSize_ = static_cast<size_t>(std::max(bufferSize, 1));
    }
}

TReader::~TReader() {
    try {
        FlushPosition();
    } catch (const Exception&) {
        // A stream that cannot seek any more has failed already; whoever reads on is told.
    }
}

void TReader::FlushPosition() { stream_.SetPosition(Position()); }

void TReader::Seek(int64_t position) {
    if (position < 0 || position > size_) Error("Stream seek error");
    if (!buffered_) {
        at_ = begin_ + (position - base_);
        return;
    }
    base_ = position;
    begin_ = at_ = end_ = nullptr;
    stream_.SetPosition(position);
}

void TReader::Refill(int64_t count) {
    const int64_t have = end_ - at_;
    if (!buffered_ || BytesLeft() < count) Error("Stream read error: the data ends too early");
    const int64_t position = Position();
    const size_t wanted = std::max(bufferSize_, static_cast<size_t>(count));
    if (have > 0) std::memmove(buffer_.data(), at_, static_cast<size_t>(have));
    if (buffer_.size() < wanted) {
        std::vector<char> grown(wanted);
        if (have > 0) std::memcpy(grown.data(), buffer_.data(), static_cast<size_t>(have));
        buffer_ = std::move(grown);
    }
    int64_t filled = have;
    while (filled < count) {
        const int64_t taken = stream_.Read(buffer_.data() + filled, static_cast<int64_t>(wanted) - filled);
        if (taken <= 0) break;
        filled += taken;
    }
    base_ = position;
    begin_ = at_ = buffer_.data();
    end_ = begin_ + filled;
    if (filled < count) Error("Stream read error: the data ends too early");
}

void TReader::Error(const AnsiString& text) const {
    throw EReadError(text + " (" + stream_.Description() + ", position " + IntToStr(Position()) + ")");
}

void TReader::Unexpected(const char* wanted, TValueType found) {
    --at_;  // the position of the type byte
    const bool known = static_cast<uint8_t>(found) <= MaxValueType;
    Error(AnsiString("Invalid property value: ") + wanted + " was expected, " +
          (known ? AnsiString(ValueTypeText(found)) : "value type " + IntToStr(static_cast<int>(found))) +
          " was found");
}

std::string_view TReader::TakeCounted(int64_t length) {
    if (length < 0 || length > BytesLeft())
        Error("Stream read error: a length of " + IntToStr(length) + " with " + IntToStr(BytesLeft()) + " bytes left");
    return {Take(length), static_cast<size_t>(length)};
}

void TReader::ReadListBegin() {
    const TValueType type = ReadValue();
    if (type != vaList) Unexpected("a list", type);
}

void TReader::ReadListEnd() {
    const TValueType type = ReadValue();
    if (type != vaNull) Unexpected("the end of a list", type);
}

int64_t TReader::ReadInt64() {
    const TValueType type = ReadValue();
    switch (type) {
        case vaInt8:
            return TakeRaw<int8_t>();
        case vaInt16:
            return TakeRaw<int16_t>();
        case vaInt32:
            return TakeRaw<int32_t>();
        case vaInt64:
            return TakeRaw<int64_t>();
        default:
            Unexpected("an integer", type);
    }
}

int32_t TReader::ReadInteger() {
    const TValueType type = ReadValue();
    switch (type) {
        case vaInt8:
            return TakeRaw<int8_t>();
        case vaInt16:
            return TakeRaw<int16_t>();
        case vaInt32:
            return TakeRaw<int32_t>();
        case vaInt64: {
            const int64_t value = TakeRaw<int64_t>();
            if (value < INT32_MIN || value > INT32_MAX)
                Error("Invalid property value: " + IntToStr(value) + " is too large for an integer");
            return static_cast<int32_t>(value);
        }
        default:
            Unexpected("an integer", type);
    }
}

long double TReader::ReadFloat() {
    const TValueType type = ReadValue();
    switch (type) {
        case vaExtended:
            return GetExtended(reinterpret_cast<const unsigned char*>(Take(ExtendedSize)));
        case vaSingle:
            return TakeRaw<float>();
        case vaDate:
            return TakeRaw<double>();
        case vaCurrency:
            return static_cast<long double>(TakeRaw<int64_t>()) / 10000.0L;
        case vaInt8:
        case vaInt16:
        case vaInt32:
        case vaInt64:
            --at_;
            return static_cast<long double>(ReadInt64());
        default:
            Unexpected("a real number", type);
    }
}

float TReader::ReadSingle() {
    if (NextValue() == vaSingle) {
        ReadValue();
        return TakeRaw<float>();
    }
    return static_cast<float>(ReadFloat());
}

Currency TReader::ReadCurrency() {
    if (NextValue() == vaCurrency) {
        ReadValue();
        return Currency::FromScaled(TakeRaw<int64_t>());
    }
    return Currency(ReadFloat());
}

TDateTime TReader::ReadDate() {
    if (NextValue() == vaDate) {
        ReadValue();
        return TDateTime{TakeRaw<double>()};
    }
    return TDateTime{static_cast<double>(ReadFloat())};
}

bool TReader::ReadBoolean() {
    const TValueType type = ReadValue();
    if (type != vaTrue && type != vaFalse) Unexpected("a boolean", type);
    return type == vaTrue;
}

char TReader::ReadChar() {
    const std::string_view text = ReadStringView();
    if (text.size() != 1) Error("Invalid property value: one character was expected");
    return text[0];
}

std::string_view TReader::ReadStringView() {
    const TValueType type = ReadValue();
    switch (type) {
        case vaString:
            return TakeCounted(TakeByte());
        case vaLString:
            return TakeCounted(TakeRaw<uint32_t>());
        case vaWString:
            scratch_ = WideToAnsi(TakeWide());
            return scratch_;
        default:
            Unexpected("a string", type);
    }
}

AnsiString TReader::ReadString() { return AnsiString(ReadStringView()); }

WideString TReader::TakeWide() {
    const int64_t count = TakeRaw<uint32_t>();
    const std::string_view bytes = TakeCounted(count * 2);
    WideString text(static_cast<size_t>(count), u'\0');
    std::memcpy(text.data(), bytes.data(), bytes.size());
    return text;
}

WideString TReader::ReadWideString() {
    if (NextValue() == vaWString) {
        ReadValue();
        return TakeWide();
    }
    return AnsiToWide(ReadStringView());
}

std::string_view TReader::ReadIdentView() {
    const TValueType type = ReadValue();
    switch (type) {
        case vaIdent:
            return TakeCounted(TakeByte());
        case vaFalse:
            return "False";
        case vaTrue:
            return "True";
        case vaNil:
            return "nil";
        case vaNull:
            return "Null";
        default:
            Unexpected("an identifier", type);
    }
}

AnsiString TReader::ReadIdent() { return AnsiString(ReadIdentView()); }

std::string_view TReader::ReadNameView() { return TakeCounted(TakeByte()); }

std::string_view TReader::ReadBinaryView() {
    const TValueType type = ReadValue();
    if (type != vaBinary) Unexpected("binary data", type);
    return TakeCounted(TakeRaw<uint32_t>());
}

Variant TReader::ReadVariant() {
    switch (NextValue()) {
        case vaNull:
            ReadValue();
            return Variant::Null();
        case vaNil:
            ReadValue();
            return Variant();
        case vaInt8:
        case vaInt16:
        case vaInt32:
            return Variant(ReadInteger());
        case vaInt64:
            return Variant(ReadInt64());
        case vaExtended:
            return Variant(static_cast<double>(ReadFloat()));
        case vaSingle:
            return Variant(ReadSingle());
        case vaCurrency:
            return Variant(ReadCurrency());
        case vaDate:
            return Variant(ReadDate());
        case vaString:
        case vaLString:
            return Variant(ReadString());
        case vaWString:
            return Variant(ReadWideString());
        case vaFalse:
        case vaTrue:
            return Variant(ReadBoolean());
        default:
            Unexpected("a simple value", ReadValue());
    }
}

void TReader::SkipBytes(int64_t count) {
    if (count < 0 || count > BytesLeft()) TakeCounted(count);
    if (end_ - at_ >= count)
        at_ += count;
    else
        Seek(Position() + count);
}

void TReader::SkipSetBody() {
    while (!ReadNameView().empty()) {
    }
}

void TReader::SkipValue() {
    const TValueType type = ReadValue();
    switch (type) {
        case vaNull:
        case vaFalse:
        case vaTrue:
        case vaNil:
            return;
        case vaInt8:
            SkipBytes(1);
            return;
        case vaInt16:
            SkipBytes(2);
            return;
        case vaInt32:
        case vaSingle:
            SkipBytes(4);
            return;
        case vaCurrency:
        case vaDate:
        case vaInt64:
            SkipBytes(8);
            return;
        case vaExtended:
            SkipBytes(ExtendedSize);
            return;
        case vaString:
        case vaIdent:
            SkipBytes(TakeByte());
            return;
        case vaBinary:
        case vaLString:
            SkipBytes(TakeRaw<uint32_t>());
            return;
        case vaWString:
            SkipBytes(int64_t{TakeRaw<uint32_t>()} * 2);
            return;
        case vaSet:
            SkipSetBody();
            return;
        case vaList: {
            Nesting deeper(*this);
            while (!EndOfList()) SkipValue();
            ReadListEnd();
            return;
        }
        case vaCollection: {
            Nesting deeper(*this);
            while (!EndOfList()) {
                if (NextValue() != vaList) SkipValue();
                ReadListBegin();
                while (!ReadNameView().empty()) SkipValue();
            }
            ReadListEnd();
            return;
        }
    }
    Unexpected("a value", type);
}

void TReader::SkipComponent() {
    Nesting deeper(*this);
    uint8_t flags = 0;
    int childPos = -1;
    ReadPrefix(flags, childPos);
    ReadNameView();
    ReadNameView();
    while (!ReadNameView().empty()) SkipValue();
    while (!EndOfList()) SkipComponent();
    ReadListEnd();
}

}  // namespace vyn
