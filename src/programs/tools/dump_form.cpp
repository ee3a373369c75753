#include "platform/streams/reader.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "programs/tools/dump.h"

namespace vyn {

namespace dump_detail {

// The type codes as names, by number.
constexpr const char* kTypeNames[] = {"null",       "list",   "int8",     "int16",  "int32",   "extended", "string",
                                      "ident",      "false",  "true",     "binary", "set",     "lstring",  "nil",
                                      "collection", "single", "currency", "date",   "wstring", "int64"};

class FormDumper {
  public:
    explicit FormDumper(TStream& stream) : reader_(stream) {}

    Json Dump() {
        reader_.ReadSignature();
        return Object();
    }

  private:
    class Level {
      public:
        explicit Level(FormDumper& owner) : owner_(owner) {
            if (++owner_.level_ > MaxStreamNesting)
                owner_.reader_.Error("Stream read error: more than " + IntToStr(MaxStreamNesting) + " levels");
        }
        ~Level() { --owner_.level_; }

      private:
        FormDumper& owner_;
    };

    Json Object() {
        Level level(*this);
        uint8_t flags = 0;
        int position = -1;
        reader_.ReadPrefix(flags, position);
        Json object;
        object["class"] = JsonOf(reader_.ReadNameView());
        object["name"] = JsonOf(reader_.ReadNameView());
        object["flags"] = flags;
        object["position"] = (flags & ffChildPos) ? Json(position) : Json(nullptr);
        object["properties"] = Properties();
        Json children = Json::array();
        while (!reader_.EndOfList()) children.push_back(Object());
        reader_.ReadListEnd();
        object["children"] = std::move(children);
        return object;
    }

    Json Properties() {
        Json list = Json::array();
        while (!reader_.EndOfList()) {
            Json property;
            property["name"] = JsonOf(reader_.ReadNameView());
            const auto type = static_cast<uint8_t>(reader_.NextValue());
            property["type"] = type <= MaxValueType ? kTypeNames[type] : "";
            property["value"] = Value();
            list.push_back(std::move(property));
        }
        reader_.ReadListEnd();
        return list;
    }

    Json Value() {
        Level level(*this);
        switch (reader_.NextValue()) {
            case vaNull:
            case vaNil:
                reader_.ReadValue();
                return nullptr;
            case vaFalse:
            case vaTrue:
                return reader_.ReadBoolean();
            case vaInt8:
            case vaInt16:
            case vaInt32:
            case vaInt64:
                return reader_.ReadInt64();
            case vaExtended:
            case vaSingle:
                return JsonNumber(static_cast<double>(reader_.ReadFloat()));
            case vaCurrency:
                return JsonNumber(reader_.ReadCurrency().ToDouble());
            case vaDate:
                return JsonNumber(reader_.ReadDate().Val);
            case vaString:
            case vaLString:
                return JsonOf(reader_.ReadStringView());
            case vaWString:
                return Json(WideToUtf8(reader_.ReadWideString()));
            case vaIdent:
                return JsonOf(reader_.ReadIdentView());
            case vaBinary:
                return Hexadecimal(reader_.ReadBinaryView());
            case vaSet: {
                reader_.ReadValue();
                Json names = Json::array();
                for (std::string_view name = reader_.ReadNameView(); !name.empty(); name = reader_.ReadNameView())
                    names.push_back(JsonOf(name));
                return names;
            }
            case vaList: {
                reader_.ReadListBegin();
                Json values = Json::array();
                while (!reader_.EndOfList()) values.push_back(Value());
                reader_.ReadListEnd();
                return values;
            }
            case vaCollection:
                return Collection();
        }
        reader_.SkipValue();  // names the unknown type
        return nullptr;
    }

    Json Collection() {
        reader_.ReadValue();
        Json items = Json::array();
        while (!reader_.EndOfList()) {
            Json item;
            item["index"] = reader_.NextValue() == vaList ? Json(nullptr) : Json(reader_.ReadInteger());
            reader_.ReadListBegin();
            item["properties"] = Properties();
            items.push_back(std::move(item));
        }
        reader_.ReadListEnd();
        return items;
    }

    static std::string Hexadecimal(std::string_view bytes) {
        static const char digits[] = "0123456789ABCDEF";
        std::string text;
        text.reserve(bytes.size() * 2);
        for (unsigned char byte : bytes) {
            text += digits[byte >> 4];
            text += digits[byte & 15];
        }
        return text;
    }

    TReader reader_;
    int level_ = 0;
};

}  // namespace dump_detail

Json DumpForm(TStream& stream) { return dump_detail::FormDumper(stream).Dump(); }

}  // namespace vyn
