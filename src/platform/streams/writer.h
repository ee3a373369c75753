#pragma once

#include <string_view>
#include <vector>

#include "platform/objects/component.h"
#include "platform/objects/filer.h"
#include "platform/streams/stream.h"
#include "platform/streams/value_type.h"
#include "platform/values/currency.h"
#include "platform/values/date_time.h"
#include "platform/values/variant.h"

namespace vyn {

// Writes the value encoding (docs/formats/values.md) and components in it (docs/formats/form.md) through a buffer.
// Flush, or destroying the writer, puts what is left into the stream; call Flush where a full disk must be noticed
// (a destructor cannot report it). Main thread only.
class TWriter final : public TFiler {
  public:
    static constexpr int DefaultBufferSize = 4096;

    explicit TWriter(TStream& stream, int bufferSize = DefaultBufferSize);
    ~TWriter() override;
    TWriter(const TWriter&) = delete;
    TWriter& operator=(const TWriter&) = delete;

    // Values.
    void WriteListBegin() { PutByte(static_cast<uint8_t>(vaList)); }
    void WriteListEnd() { PutByte(static_cast<uint8_t>(vaNull)); }
    // The shortest of the integer codes that holds the value.
    void WriteInteger(int64_t value);
    void WriteFloat(long double value);
    void WriteSingle(float value);
    void WriteCurrency(Currency value);
    void WriteDate(TDateTime value);
    void WriteBoolean(bool value) { PutByte(static_cast<uint8_t>(value ? vaTrue : vaFalse)); }
    void WriteChar(char value) { WriteString(std::string_view(&value, 1)); }
    // Code 6 up to 255 bytes, code 12 beyond. The bytes are copied as they are.
    void WriteString(std::string_view text);
    void WriteWideString(const WideString& text);
    // Always code 7. Longer than 255 bytes: EWriteError.
    void WriteIdent(std::string_view name);
    void WriteNil() { PutByte(static_cast<uint8_t>(vaNil)); }
    void WriteNull() { PutByte(static_cast<uint8_t>(vaNull)); }
    void WriteBinary(std::string_view bytes);
    void WriteVariant(const Variant& value);
    void WriteSet(uint64_t bits, const EnumType& type);
    void WriteValue(TValueType type) { PutByte(static_cast<uint8_t>(type)); }
    // A short string without a type byte; longer than 255 bytes: EWriteError.
    void WriteName(std::string_view name);
    // Bytes as they are.
    void WriteRaw(std::string_view bytes) { Put(bytes.data(), bytes.size()); }

    void Flush();
    int64_t Position() const { return stream_.Position() + static_cast<int64_t>(used_); }

    // Components.
    // The whole form: signature, the component, its children.
    void WriteRootComponent(TComponent& root) { WriteDescendent(root, nullptr); }
    // Only what differs from the ancestor (null: from the classes' defaults).
    void WriteDescendent(TComponent& root, TComponent* ancestor);
    void WriteComponent(TComponent& component);
    void WriteSignature();
    // What stands before an object's class name: its flags, and its place where they say so. Without flags there is
    // nothing, but before a name so long that its length would be taken for a prefix.
    void WritePrefix(uint8_t flags, int childPos, std::string_view className);
    void WriteProperties(TPersistent& instance);
    void WriteCollection(const class TCollection& collection);

    TComponent* RootAncestor = nullptr;

    // TFiler.
    void DefineProperty(const AnsiString& name, const ReadData& read, const WriteData& write, bool hasData) override;
    void DefineBinaryProperty(const AnsiString& name, const std::function<void(TStream&)>& read,
                              const std::function<void(TStream&)>& write, bool hasData) override;
    void DefineIntegerProperty(const AnsiString& name, const std::function<void(int)>& set, int value,
                               bool hasData) override;
    void DefineStringListProperty(const AnsiString& name, const std::function<void(std::vector<AnsiString>)>& set,
                                  const std::function<std::vector<AnsiString>()>& get, bool hasData) override;
    void FileComponentData(TComponent& component) override;
    bool IsReader() const override { return false; }

  private:
    void PutByte(uint8_t byte) {
        if (used_ == buffer_.size()) Flush();
        buffer_[used_++] = static_cast<char>(byte);
    }
    void Put(const void* bytes, size_t count);
    void WriteProperty(TPersistent& instance, const PropertyInfo& property);
    void WritePropertyName(const AnsiString& name);
    void WriteObjectProperty(TPersistent& instance, const PropertyInfo& property);
    bool IsDefault(const TPersistent& instance, const PropertyInfo& property) const;
    TComponent* AncestorChild(const TComponent& component) const;
    AnsiString ReferenceName(const TComponent& component) const;
    void WriteChildren(TComponent& component);

    TStream& stream_;
    std::vector<char> buffer_;
    size_t used_ = 0;
    AnsiString propertyPrefix_;
};

// Writes a component, with what is stored inside it, as a form.
void WriteComponentToStream(TStream& stream, TComponent& root);

}  // namespace vyn
