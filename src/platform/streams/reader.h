#pragma once

#include <cstring>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/objects/class_table.h"
#include "platform/objects/component.h"
#include "platform/objects/filer.h"
#include "platform/streams/stream.h"
#include "platform/streams/value_type.h"
#include "platform/values/currency.h"
#include "platform/values/date_time.h"
#include "platform/values/variant.h"

namespace vyn {

// Reads the value encoding (docs/formats/values.md) and components in it (docs/formats/form.md).
//
// Input is untrusted: lengths are checked against what is left before anything is taken, nesting is bounded, and a
// value of another type than asked for raises EReadError naming the stream, the position and what was expected.
// A stream in memory is read in place; any other through a buffer. Destroying the reader puts the stream's position
// right after what was consumed. Main thread only.
class TReader final : public TFiler {
  public:
    static constexpr int DefaultBufferSize = 4096;

    explicit TReader(TStream& stream, int bufferSize = DefaultBufferSize);
    ~TReader() override;
    TReader(const TReader&) = delete;
    TReader& operator=(const TReader&) = delete;

    // Values. Each consumes one value of its type.
    TValueType ReadValue() { return static_cast<TValueType>(TakeByte()); }
    TValueType NextValue() {
        const TValueType type = ReadValue();
        --at_;
        return type;
    }
    bool EndOfList() { return NextValue() == vaNull; }
    void ReadListBegin();
    void ReadListEnd();
    int32_t ReadInteger();
    int64_t ReadInt64();
    // Any real number; also reads integers.
    long double ReadFloat();
    float ReadSingle();
    Currency ReadCurrency();
    TDateTime ReadDate();
    bool ReadBoolean();
    char ReadChar();
    // Codes 6 and 12; a wide string (18) is turned into Windows-1252.
    AnsiString ReadString();
    // The same without a copy where the stream is in memory: valid while the stream is (see KeepsViews), else
    // until the next read.
    std::string_view ReadStringView();
    WideString ReadWideString();
    // An identifier; False, True and nil in their own codes read as those words.
    AnsiString ReadIdent();
    std::string_view ReadIdentView();
    Variant ReadVariant();
    // The bytes of a code 10 value, with the lifetime of ReadStringView.
    std::string_view ReadBinaryView();
    // Passes over one whole value of any type.
    void SkipValue();
    // A short string without a type byte (names).
    std::string_view ReadNameView();

    // True when views stay valid for the life of the stream's memory.
    bool KeepsViews() const { return !buffered_; }
    // Position in the stream of the next byte.
    int64_t Position() const { return base_ + (at_ - begin_); }
    TStream& Stream() { return stream_; }
    // How many bytes are left to read.
    int64_t BytesLeft() const { return size_ - Position(); }
    // Moves to an absolute position.
    void Seek(int64_t position);
    // Puts the stream's position after what was consumed (the destructor does it too).
    void FlushPosition();
    // Raises EReadError: text, then where.
    [[noreturn]] void Error(const AnsiString& text) const;

    // Components.
    // Reads a whole form. With a root given, reads into it; otherwise makes an instance of the stored class (found
    // among the registered classes, see OnFindComponentClass) that the caller owns. When an error is raised, what
    // was made here is freed again.
    TComponent* ReadRootComponent(TComponent* root);
    // One component with its properties and children, below the current parent.
    TComponent* ReadComponent(TComponent* component);
    // The signature of a form, "TPF0"; anything else raises EReadError "Invalid stream format".
    void ReadSignature();
    // A component's header: flags and, when stored, its position (-1 without).
    void ReadPrefix(uint8_t& flags, int& childPos);
    // Properties up to the end of the list, into any persistent object (collection items, parts).
    void ReadProperties(TPersistent& instance);
    void ReadCollection(class TCollection& collection);

    TComponent* Owner = nullptr;   // of the components that are read
    TComponent* Parent = nullptr;  // of the components that are read
    TComponent* LookupRoot = nullptr;

    // Handlers.
    // A property or class could not be read; message says what and where. handled = true goes on after it.
    Event<void(TReader& reader, const AnsiString& message, bool& handled)> OnError;
    // A stored event names a method that the root does not publish (or does: method tells). Setting error to false
    // says that the handler took care of it, or that the name is to be left out.
    Event<void(TReader& reader, const AnsiString& name, TPersistent* instance, const PropertyInfo& property,
               const MethodInfo*& method, bool& error)>
        OnFindMethod;
    // A component is about to get its stored name; the handler may change it.
    Event<void(TReader& reader, TComponent* component, AnsiString& name)> OnSetName;
    Event<void(TReader& reader, const AnsiString& className, TClass& found)> OnFindComponentClass;
    // A reference to a component; the handler may change the name.
    Event<void(TReader& reader, AnsiString& name)> OnReferenceName;

    // TFiler.
    void DefineProperty(const AnsiString& name, const ReadData& read, const WriteData& write, bool hasData) override;
    void DefineBinaryProperty(const AnsiString& name, const std::function<void(TStream&)>& read,
                              const std::function<void(TStream&)>& write, bool hasData) override;
    void DefineIntegerProperty(const AnsiString& name, const std::function<void(int)>& set, int value,
                               bool hasData) override;
    void DefineStringListProperty(const AnsiString& name, const std::function<void(std::vector<AnsiString>)>& set,
                                  const std::function<std::vector<AnsiString>()>& get, bool hasData) override;
    void FileComponentData(TComponent& component) override;
    bool IsReader() const override { return true; }

  private:
    struct Fixup {
        TPersistent* instance;
        const PropertyInfo* property;
        AnsiString name;
    };
    class Nesting;

    uint8_t TakeByte() {
        if (at_ == end_) Refill(1);
        return static_cast<uint8_t>(*at_++);
    }
    // `count` bytes in one piece; the pointer holds until the next take.
    const char* Take(int64_t count) {
        if (end_ - at_ < count) Refill(count);
        const char* taken = at_;
        at_ += count;
        return taken;
    }
    template <class T>
    T TakeRaw() {
        T value;
        std::memcpy(&value, Take(sizeof(T)), sizeof(T));
        return value;
    }
    void Refill(int64_t count);
    std::string_view TakeCounted(int64_t length);
    [[noreturn]] void Unexpected(const char* wanted, TValueType found);
    void SkipBytes(int64_t count);
    void SkipSetBody();
    void SkipComponent();
    WideString TakeWide();

    void ReadDataInner(TComponent& component);
    void ReadProperty(TPersistent& instance);
    void ReadPropertyPath(TPersistent& instance, std::string_view path);
    void ReadPropertyValue(TPersistent& instance, const PropertyInfo& property);
    bool ReadDefinedProperty(TPersistent& instance, std::string_view name);
    void ReadEventValue(TPersistent& instance, const PropertyInfo& property);
    uint64_t ReadSetBits(const EnumType& type);
    int64_t ReadNamedInteger(const PropertyInfo& property);
    TComponent* CreateComponent(const AnsiString& className, const AnsiString& name, TComponent* existing,
                                uint8_t flags, bool& created);
    void SetComponentName(TComponent* component, AnsiString name);
    void ResolveFixups();
    TComponent* FindReferenced(std::string_view name) const;
    bool HandleError(const AnsiString& message);
    AnsiString ComponentPath() const;
    TClass FindComponentClass(const AnsiString& className);

    TStream& stream_;
    const char* begin_ = nullptr;
    const char* at_ = nullptr;
    const char* end_ = nullptr;
    int64_t base_ = 0;  // stream position of begin_
    int64_t size_ = 0;  // of the stream
    bool buffered_ = false;
    std::vector<char> buffer_;
    size_t bufferSize_ = 0;
    AnsiString scratch_;

    int nesting_ = 0;
    std::vector<Fixup> fixups_;
    std::vector<TComponent*> loaded_;
    std::vector<std::pair<AnsiString, AnsiString>> path_;  // class and name of the components being read
    std::string_view definedName_;                         // the hidden property looked for
    bool definedFound_ = false;
    TPersistent* definedInstance_ = nullptr;
};

// Looks up a component by its global name, for references that leave the form ("Other.Query"): set by the host.
using FindGlobalComponentFunction = std::function<TComponent*(std::string_view name)>;
void SetFindGlobalComponent(FindGlobalComponentFunction find);
// The component of a global name, or null.
TComponent* FindGlobalComponent(std::string_view name);

// Rebuilds a component tree from a stored form. With a root given it is read into it; else the caller owns the result.
TComponent* ReadComponentFromStream(TStream& stream, TComponent* root);

}  // namespace vyn
