#include <charconv>
#include <cmath>
#include <cstring>

#include "persistence/Uvynfmr.h"
#include "platform/objects/class_table.h"
#include "platform/streams/extended.h"
#include "platform/streams/writer.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace resource_tree_detail {

constexpr char kRawNumber = '$';        // before the bytes of a number that has no decimal text
constexpr size_t kUsualProperties = 8;  // of an object: room for them is made at once
constexpr char kHex[] = "0123456789ABCDEF";

AnsiString RawNumberText(const void* value, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(value);
    AnsiString text(1, kRawNumber);
    for (size_t i = 0; i < size; ++i) {
        text += kHex[bytes[i] >> 4];
        text += kHex[bytes[i] & 15];
    }
    return text;
}

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool TakeRawNumber(const AnsiString& text, void* value, size_t size) {
    if (text.size() != size * 2 + 1 || text[0] != kRawNumber) return false;
    auto* bytes = static_cast<unsigned char*>(value);
    for (size_t i = 0; i < size; ++i) {
        const int high = HexValue(text[i * 2 + 1]);
        const int low = HexValue(text[i * 2 + 2]);
        if (high < 0 || low < 0) return false;
        bytes[i] = static_cast<unsigned char>(high * 16 + low);
    }
    return true;
}

AnsiString ExtendedText(long double value) {
    unsigned char bytes[ExtendedSize];
    PutExtended(value, bytes);
    if (std::isfinite(value)) {
        AnsiString text = ShortestExtended(value);
        long double back = 0;
        unsigned char backBytes[ExtendedSize];
        if (TryParseExtended(text, back)) {
            PutExtended(back, backBytes);
            if (std::memcmp(bytes, backBytes, ExtendedSize) == 0) return text;
        }
    }
    return RawNumberText(bytes, ExtendedSize);
}

AnsiString DoubleText(double value) {
    return std::isfinite(value) ? ShortestDouble(value) : RawNumberText(&value, sizeof value);
}

AnsiString SingleText(float value) {
    // Every single is a double, whose text reads back to it.
    return std::isfinite(value) ? ShortestDouble(value) : RawNumberText(&value, sizeof value);
}

class TreeReader {
  public:
    explicit TreeReader(TStream& stream) : reader_(stream) {}

    PRecursosObjecte Read() {
        reader_.ReadSignature();
        auto tree = std::make_unique<TRecursosObjecte>();
        ReadObject(*tree);
        return tree;
    }

  private:
    class Level {
      public:
        explicit Level(TreeReader& owner) : owner_(owner) {
            if (++owner_.level_ > MaxStreamNesting) {
                --owner_.level_;
                owner_.reader_.Error("Stream read error: more than " + IntToStr(MaxStreamNesting) + " levels");
            }
        }
        ~Level() { --owner_.level_; }

      private:
        TreeReader& owner_;
    };

    void ReadObject(TRecursosObjecte& object) {
        Level level(*this);
        reader_.ReadPrefix(object.Flags, object.Posicio);
        object.Classe = reader_.ReadNameView();
        object.Name = reader_.ReadNameView();
        ReadProperties(object.Propietats);
        while (!reader_.EndOfList()) {
            TRecursosObjecte& child = object.Fills.emplace_back();
            ReadObject(child);
            // Without its prefix, as it would be stored again, it would be the end of the list.
            if (child.Classe.empty())
                reader_.Error("Stream read error: an object inside " + object.Name + " has no class");
        }
        reader_.ReadListEnd();
    }

    void ReadProperties(TllistaPropietatsObjecte& properties) {
        if (!reader_.EndOfList()) properties.reserve(kUsualProperties);
        while (!reader_.EndOfList()) {
            TPropietatObjecte& property = properties.emplace_back();
            property.Name = reader_.ReadNameView();
            const TPropietatObjecte* previous = properties.size() > 1 ? &properties[properties.size() - 2] : nullptr;
            ReadValue(property, static_cast<int>(properties.size()) - 1, previous);
        }
        reader_.ReadListEnd();
    }

    void ReadValue(TPropietatObjecte& property, int number, const TPropietatObjecte* previous) {
        const TValueType type = reader_.NextValue();
        property.Tipus = static_cast<uint8_t>(type);
        switch (type) {
            case vaNull:
                reader_.ReadValue();
                property.Valor = "null";
                return;
            case vaInt8:
            case vaInt16:
            case vaInt32:
            case vaInt64:
                property.Valor = IntToStr(reader_.ReadInt64());
                return;
            case vaExtended:
                property.Valor = ExtendedText(reader_.ReadFloat());
                return;
            case vaSingle:
                property.Valor = SingleText(reader_.ReadSingle());
                return;
            case vaCurrency:
                property.Valor = IntToStr(reader_.ReadCurrency().Val);
                return;
            case vaDate:
                property.Valor = DoubleText(reader_.ReadDate().Val);
                return;
            case vaString:
            case vaLString:
                property.Valor = reader_.ReadStringView();
                return;
            case vaWString: {
                const WideString text = reader_.ReadWideString();
                property.Valor.assign(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t));
                return;
            }
            case vaIdent:
            case vaFalse:
            case vaTrue:
            case vaNil:
                property.Valor = reader_.ReadIdentView();
                return;
            case vaBinary:
                property.Valor = reader_.ReadBinaryView();
                return;
            case vaSet:
                ReadSet(property, number, previous);
                return;
            case vaList: {
                Level level(*this);
                reader_.ReadListBegin();
                ReadItems(property);
                return;
            }
            case vaCollection:
                ReadCollection(property);
                return;
        }
        throw Exception("Error, llegida un tipus de propietat invalida!");
    }

    void ReadSet(TPropietatObjecte& property, int number, const TPropietatObjecte* previous) {
        reader_.ReadValue();
        for (bool first = true;; first = false) {
            const std::string_view name = reader_.ReadNameView();
            if (name.empty()) return;
            if (!first) property.Valor += ',';
            property.Valor += name;
            // A name with a comma could not be told from two.
            if (name.find(',') != std::string_view::npos)
                throw Exception("Propietat invalida\n" + TextDePropietat(property, number, previous));
        }
    }

    void ReadItems(TPropietatObjecte& list) {
        while (!reader_.EndOfList()) {
            TPropietatObjecte& item = list.Fills.emplace_back();
            const TPropietatObjecte* previous = list.Fills.size() > 1 ? &list.Fills[list.Fills.size() - 2] : nullptr;
            ReadValue(item, static_cast<int>(list.Fills.size()) - 1, previous);
        }
        reader_.ReadListEnd();
    }

    void ReadCollection(TPropietatObjecte& collection) {
        Level level(*this);
        reader_.ReadValue();
        while (!reader_.EndOfList()) {
            TPropietatObjecte& item = collection.Fills.emplace_back();
            item.Tipus = static_cast<uint8_t>(vaList);
            switch (reader_.NextValue()) {
                case vaInt8:
                case vaInt16:
                case vaInt32:
                    item.Valor = IntToStr(reader_.ReadInteger());
                    break;
                default:
                    break;
            }
            if (reader_.NextValue() != vaList) throw Exception("Error al llegir la llista");
            reader_.ReadListBegin();
            ReadProperties(item.Fills);
        }
        reader_.ReadListEnd();
    }

    TReader reader_;
    int level_ = 0;
};

class TreeWriter {
  public:
    explicit TreeWriter(TStream& stream) : writer_(stream) {}

    void Write(const TRecursosObjecte& tree) {
        writer_.WriteSignature();
        WriteObject(tree);
        writer_.Flush();
    }

  private:
    void WriteObject(const TRecursosObjecte& object) {
        writer_.WritePrefix(object.Flags, object.Posicio, object.Classe);
        writer_.WriteName(object.Classe);
        writer_.WriteName(object.Name);
        WriteProperties(object.Propietats);
        for (const TRecursosObjecte& child : object.Fills) WriteObject(child);
        writer_.WriteListEnd();
    }

    void WriteProperties(const TllistaPropietatsObjecte& properties) {
        for (const TPropietatObjecte& property : properties) {
            writer_.WriteName(property.Name);
            WriteValue(property);
        }
        writer_.WriteName({});
    }

    [[noreturn]] void Invalid(const TPropietatObjecte& property) {
        throw Exception("Propietat invalida\n" + TextDePropietat(property, 0, nullptr));
    }

    template <class T>
    void WriteSized(TValueType type, int64_t value) {
        const auto sized = static_cast<T>(value);
        writer_.WriteValue(type);
        writer_.WriteRaw({reinterpret_cast<const char*>(&sized), sizeof sized});
    }

    void WriteInteger(const TPropietatObjecte& property) {
        int64_t value = 0;
        if (!TryStrToInt64(property.Valor, value)) Invalid(property);
        // In the code that it was read in, unless it has outgrown it.
        const auto type = static_cast<TValueType>(property.Tipus);
        if (type == vaInt8 && value >= INT8_MIN && value <= INT8_MAX)
            WriteSized<int8_t>(type, value);
        else if (type == vaInt16 && value >= INT16_MIN && value <= INT16_MAX)
            WriteSized<int16_t>(type, value);
        else if (type == vaInt32 && value >= INT32_MIN && value <= INT32_MAX)
            WriteSized<int32_t>(type, value);
        else if (type == vaInt64)
            WriteSized<int64_t>(type, value);
        else
            writer_.WriteInteger(value);
    }

    void WriteReal(const TPropietatObjecte& property) {
        const auto type = static_cast<TValueType>(property.Tipus);
        unsigned char bytes[ExtendedSize] = {};
        long double value = 0;
        const size_t size = type == vaExtended ? ExtendedSize : type == vaSingle ? sizeof(float) : sizeof(double);
        if (!TakeRawNumber(property.Valor, bytes, size)) {
            // Straight to the width that is stored: by way of a wider one it would be rounded twice.
            double asDouble = 0;
            if (type == vaExtended ? !TryParseExtended(property.Valor, value)
                                   : !TryParseDouble(property.Valor, asDouble))
                Invalid(property);
            const auto asSingle = static_cast<float>(asDouble);
            if (type == vaExtended)
                PutExtended(value, bytes);
            else if (type == vaSingle)
                std::memcpy(bytes, &asSingle, sizeof asSingle);
            else
                std::memcpy(bytes, &asDouble, sizeof asDouble);
        }
        writer_.WriteValue(type);
        writer_.WriteRaw({reinterpret_cast<const char*>(bytes), size});
    }

    void WriteString(const TPropietatObjecte& property) {
        if (static_cast<TValueType>(property.Tipus) == vaLString) {
            const auto length = static_cast<uint32_t>(property.Valor.size());
            writer_.WriteValue(vaLString);
            writer_.WriteRaw({reinterpret_cast<const char*>(&length), sizeof length});
            writer_.WriteRaw(property.Valor);
        } else {
            writer_.WriteString(property.Valor);
        }
    }

    void WriteSet(const TPropietatObjecte& property) {
        writer_.WriteValue(vaSet);
        std::string_view rest = property.Valor;
        while (!rest.empty()) {
            const std::string_view name = rest.substr(0, rest.find(','));
            if (!name.empty()) writer_.WriteName(name);
            rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        }
        writer_.WriteName({});
    }

    void WriteValue(const TPropietatObjecte& property) {
        if (property.Tipus > MaxValueType) throw Exception("Error, llegida un tipus de propietat invalida!");
        const auto type = static_cast<TValueType>(property.Tipus);
        switch (type) {
            case vaNull:
                writer_.WriteNull();
                return;
            case vaFalse:
            case vaTrue:
            case vaNil:
                WriteWord(property.Valor);
                return;
            case vaIdent:
                writer_.WriteIdent(property.Valor);
                return;
            case vaInt8:
            case vaInt16:
            case vaInt32:
            case vaInt64:
                WriteInteger(property);
                return;
            case vaExtended:
            case vaSingle:
            case vaDate:
                WriteReal(property);
                return;
            case vaCurrency: {
                int64_t value = 0;
                if (!TryStrToInt64(property.Valor, value)) Invalid(property);
                writer_.WriteCurrency(Currency::FromScaled(value));
                return;
            }
            case vaString:
            case vaLString:
                WriteString(property);
                return;
            case vaWString: {
                WideString text(property.Valor.size() / sizeof(char16_t), u'\0');
                std::memcpy(text.data(), property.Valor.data(), text.size() * sizeof(char16_t));
                writer_.WriteWideString(text);
                return;
            }
            case vaBinary:
                writer_.WriteBinary(property.Valor);
                return;
            case vaSet:
                WriteSet(property);
                return;
            case vaList:
                writer_.WriteListBegin();
                for (const TPropietatObjecte& item : property.Fills) WriteValue(item);
                writer_.WriteListEnd();
                return;
            case vaCollection:
                writer_.WriteValue(vaCollection);
                for (const TPropietatObjecte& item : property.Fills) {
                    int32_t number = 0;
                    if (TryStrToInt(item.Valor, number)) writer_.WriteInteger(number);
                    writer_.WriteListBegin();
                    WriteProperties(item.Fills);
                }
                writer_.WriteListEnd();
                return;
        }
    }

    void WriteWord(const AnsiString& word) {
        if (SameText(word, "True"))
            writer_.WriteBoolean(true);
        else if (SameText(word, "False"))
            writer_.WriteBoolean(false);
        else if (SameText(word, "nil"))
            writer_.WriteNil();
        else
            writer_.WriteIdent(word);
    }

    TWriter writer_;
};

// Puts a stream's position back when it goes.
class KeptPosition {
  public:
    explicit KeptPosition(TStream& stream) : stream_(stream), position_(stream.Position()) {}
    ~KeptPosition() { stream_.SetPosition(position_); }

  private:
    TStream& stream_;
    int64_t position_;
};

}  // namespace resource_tree_detail

PRecursosObjecte StreamObjecteBinaryARECURSOS(TStream& stream) {
    return resource_tree_detail::TreeReader(stream).Read();
}

void RECURSOSObjecteAStreamBinary(const TRecursosObjecte& tree, TStream& stream) {
    resource_tree_detail::TreeWriter(stream).Write(tree);
}

bool ClasseDelObjecte(TStream& stream, AnsiString& className) {
    className.clear();
    if (!EsUnObjecte(stream)) return false;
    resource_tree_detail::KeptPosition kept(stream);
    TReader reader(stream);
    reader.ReadSignature();
    uint8_t flags = 0;
    int position = -1;
    reader.ReadPrefix(flags, position);
    className = reader.ReadNameView();
    return true;
}

bool EsUnObjecte(TStream& stream) {
    resource_tree_detail::KeptPosition kept(stream);
    char signature[4] = {};
    return stream.Read(signature, sizeof signature) == sizeof signature && std::memcmp(signature, "TPF0", 4) == 0;
}

bool ChangeStreamPropertyValue(TStream& stream, const AnsiString& objectName, const AnsiString& propertyName,
                               const AnsiString& newValue) {
    stream.SetPosition(0);
    PRecursosObjecte tree = StreamObjecteBinaryARECURSOS(stream);
    TRecursosObjecte* object = ExisteixObjecte(tree.get(), objectName, TotElArbre);
    if (!object) return false;
    TPropietatObjecte* property = nullptr;
    for (TPropietatObjecte& each : object->Propietats)
        if (SameText(each.Name, propertyName)) property = &each;
    if (!property) {
        property = &object->Propietats.emplace_back();
        property->Name = propertyName;
        property->Tipus = static_cast<uint8_t>(vaString);
    }
    property->Valor = newValue;
    TMemoryStream changed;
    try {
        RECURSOSObjecteAStreamBinary(*tree, changed);
    } catch (const Exception&) {
        throw EConvertError("'" + newValue + "' is not a valid value of " + objectName + "." + propertyName);
    }
    stream.SetPosition(0);
    stream.SetSize(0);
    stream.WriteBuffer(changed.Bytes().data(), changed.Size());
    stream.SetPosition(0);
    return true;
}

TComponent* StreamCreaComponent(TStream& stream, TComponent* owner, TComponent* parent,
                                decltype(TReader::OnFindMethod) onFindMethod, decltype(TReader::OnSetName) onSetName) {
    AnsiString className;
    if (!ClasseDelObjecte(stream, className)) throw EReadError("Invalid stream format");
    TClass found = FindClass(className);
    if (!found->InheritsFrom(&TComponent::StaticClass())) throw EClassNotFound("Class " + className + " not found");
    auto* component = static_cast<TComponent*>(found->Create(owner));
    try {
        if (parent) component->SetParentComponent(parent);
        TReader reader(stream);
        reader.OnFindMethod = std::move(onFindMethod);
        reader.OnSetName = std::move(onSetName);
        reader.ReadRootComponent(component);
    } catch (...) {
        delete component;
        throw;
    }
    return component;
}

}  // namespace vyn
