#include "platform/data/data_set.h"
#include "platform/streams/stream.h"

// Long values as streams.
namespace vyn {

int64_t TBlobField::BlobSize() const {
    return ColumnKindOf(DataType()) == ColumnKind::Text ? static_cast<int64_t>(AsString().size())
                                                        : static_cast<int64_t>(RawBytes().size());
}

void TBlobField::LoadFromStream(TStream& stream) {
    std::string bytes(static_cast<size_t>(std::max<int64_t>(stream.Size() - stream.Position(), 0)), '\0');
    stream.ReadBuffer(bytes.data(), static_cast<int64_t>(bytes.size()));
    if (ColumnKindOf(DataType()) == ColumnKind::Text)
        SetAsString(bytes);
    else
        SetRawBytes(std::move(bytes));
}

void TBlobField::SaveToStream(TStream& stream) const {
    const AnsiString value = AsString();
    stream.WriteBuffer(value.data(), static_cast<int64_t>(value.size()));
}

void TBlobField::LoadFromFile(const AnsiString& fileName) {
    TFileStream file(fileName, TFileMode::fmOpenRead);
    LoadFromStream(file);
}

void TBlobField::SaveToFile(const AnsiString& fileName) const {
    TFileStream file(fileName, TFileMode::fmCreate);
    SaveToStream(file);
}

std::unique_ptr<TMemoryStream> TBlobField::CreateBlobStream() const {
    return std::make_unique<TMemoryStream>(std::string_view(AsString()));
}

}  // namespace vyn
