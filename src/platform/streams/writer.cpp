#include "platform/streams/writer.h"

#include <algorithm>
#include <cstring>

#include "platform/streams/extended.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace writer_detail {

constexpr size_t kShortLimit = 255;  // the longest that a length byte can say
// A buffer that fills up again and again doubles up to this size: small forms stay cheap, and a large file is handed to
// the system in pieces that cost little beside the writing itself.
constexpr size_t kLargestBuffer = 1024 * 1024;

}  // namespace writer_detail

TWriter::TWriter(TStream& stream, int bufferSize)
    : stream_(stream), buffer_(static_cast<size_t>(std::max(bufferSize, 1))) {}

TWriter::~TWriter() {
    try {
        Flush();
    } catch (const Exception&) {
        // Whoever must know of a full disk flushes before.
    }
}

void TWriter::Flush() {
    if (used_ == 0) return;
    const size_t count = used_;
    used_ = 0;  // what could not be written is not tried again
    stream_.WriteBuffer(buffer_.data(), static_cast<int64_t>(count));
}

void TWriter::Put(const void* bytes, size_t count) {
    if (count > buffer_.size() - used_) {
        Flush();
        if (buffer_.size() < writer_detail::kLargestBuffer) buffer_.resize(buffer_.size() * 2);
        if (count >= buffer_.size()) {
            stream_.WriteBuffer(bytes, static_cast<int64_t>(count));
            return;
        }
    }
    if (count > 0) std::memcpy(buffer_.data() + used_, bytes, count);
    used_ += count;
}

void TWriter::WriteInteger(int64_t value) {
    if (value >= INT8_MIN && value <= INT8_MAX) {
        WriteValue(vaInt8);
        PutByte(static_cast<uint8_t>(value));
    } else if (value >= INT16_MIN && value <= INT16_MAX) {
        const auto small = static_cast<int16_t>(value);
        WriteValue(vaInt16);
        Put(&small, sizeof small);
    } else if (value >= INT32_MIN && value <= INT32_MAX) {
        const auto middle = static_cast<int32_t>(value);
        WriteValue(vaInt32);
        Put(&middle, sizeof middle);
    } else {
        WriteValue(vaInt64);
        Put(&value, sizeof value);
    }
}

void TWriter::WriteFloat(long double value) {
    unsigned char bytes[ExtendedSize];
    PutExtended(value, bytes);
    WriteValue(vaExtended);
    Put(bytes, ExtendedSize);
}

void TWriter::WriteSingle(float value) {
    WriteValue(vaSingle);
    Put(&value, sizeof value);
}

void TWriter::WriteCurrency(Currency value) {
    WriteValue(vaCurrency);
    Put(&value.Val, sizeof value.Val);
}

void TWriter::WriteDate(TDateTime value) {
    WriteValue(vaDate);
    Put(&value.Val, sizeof value.Val);
}

void TWriter::WriteString(std::string_view text) {
    if (text.size() <= writer_detail::kShortLimit) {
        WriteValue(vaString);
        PutByte(static_cast<uint8_t>(text.size()));
    } else {
        if (text.size() > UINT32_MAX) throw EWriteError("Stream write error: a string is longer than 4 GB");
        const auto length = static_cast<uint32_t>(text.size());
        WriteValue(vaLString);
        Put(&length, sizeof length);
    }
    Put(text.data(), text.size());
}

void TWriter::WriteWideString(const WideString& text) {
    const auto count = static_cast<uint32_t>(text.size());
    WriteValue(vaWString);
    Put(&count, sizeof count);
    Put(text.data(), text.size() * sizeof(char16_t));
}

void TWriter::WriteName(std::string_view name) {
    if (name.size() > writer_detail::kShortLimit)
        throw EWriteError("Stream write error: the name " + AnsiString(name.substr(0, 32)) + "... is longer than " +
                          IntToStr(writer_detail::kShortLimit) + " characters");
    PutByte(static_cast<uint8_t>(name.size()));
    Put(name.data(), name.size());
}

void TWriter::WriteIdent(std::string_view name) {
    WriteValue(vaIdent);
    WriteName(name);
}

void TWriter::WriteBinary(std::string_view bytes) {
    const auto length = static_cast<uint32_t>(bytes.size());
    WriteValue(vaBinary);
    Put(&length, sizeof length);
    Put(bytes.data(), bytes.size());
}

void TWriter::WriteSet(uint64_t bits, const EnumType& type) {
    WriteValue(vaSet);
    for (int i = 0; i < type.Count(); ++i)
        if (bits & (uint64_t{1} << i)) WriteName(type.NameOf(i));
    WriteName({});
}

void TWriter::WriteVariant(const Variant& value) {
    switch (value.Type()) {
        case varEmpty:
            WriteNil();
            return;
        case varNull:
            WriteNull();
            return;
        case varSmallint:
        case varInteger:
        case varByte:
            WriteInteger(value.AsInteger());
            return;
        case varSingle:
            WriteSingle(value.AsSingle());
            return;
        case varDouble:
            WriteFloat(value.AsDouble());
            return;
        case varCurrency:
            WriteCurrency(value.AsCurrency());
            return;
        case varDate:
            WriteDate(value.AsDateTime());
            return;
        case varBoolean:
            WriteBoolean(value.AsBoolean());
            return;
        case varOleStr:
            WriteWideString(value.AsWideString());
            return;
        case varString:
            WriteString(value.AsString());
            return;
    }
}

}  // namespace vyn
