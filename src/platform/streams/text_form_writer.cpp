#include <cmath>
#include <cstring>

#include "platform/streams/extended.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace text_form_detail {

constexpr size_t kLineWidth = 100;       // a longer string is broken after this many characters
constexpr size_t kBytesPerHexLine = 32;  //
constexpr char kHexDigits[] = "0123456789ABCDEF";

[[noreturn]] void NoText(const AnsiString& what) { throw EConvertError("The text form cannot hold " + what); }

bool IsWord(std::string_view text) {
    const auto letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; };
    if (text.empty() || !letter(text[0])) return false;
    for (char c : text)
        if (!letter(c) && !(c >= '0' && c <= '9') && c != '.') return false;
    return true;
}

// Words that stand for values of their own, or open a block.
bool IsReserved(std::string_view text) {
    for (std::string_view word : {"True", "False", "nil", "null", "item", "end", "object", "inherited", "inline"})
        if (SameText(word, text)) return true;
    return false;
}

// Turns a binary form into text, value by value.
class FormPrinter {
  public:
    explicit FormPrinter(TStream& stream) : reader_(stream) {}

    std::string Print() {
        reader_.ReadSignature();
        PrintObject();
        return std::move(text_);
    }

  private:
    void Indent() { text_.append(static_cast<size_t>(level_) * 2, ' '); }
    void NewLine() {
        text_ += '\n';
        Indent();
    }
    void CheckDepth() {
        if (level_ > MaxStreamNesting)
            reader_.Error("Stream read error: more than " + IntToStr(MaxStreamNesting) + " levels");
    }
    AnsiString Word(std::string_view word, const char* what) {
        if (!IsWord(word)) NoText(AnsiString("the ") + what + " \"" + AnsiString(word) + "\"");
        return AnsiString(word);
    }

    void PrintObject() {
        CheckDepth();
        uint8_t flags = 0;
        int childPos = -1;
        reader_.ReadPrefix(flags, childPos);
        if (flags & ~(ffInherited | ffChildPos | ffInline)) NoText("the flags of a component");
        const AnsiString className = Word(reader_.ReadNameView(), "class name");
        const std::string_view name = reader_.ReadNameView();
        Indent();
        if (flags & ffInherited)
            text_ += (flags & ffInline) ? "inherited inline " : "inherited ";
        else
            text_ += (flags & ffInline) ? "inline " : "object ";
        if (!name.empty()) text_ += Word(name, "component name") + ": ";
        text_ += className;
        if (flags & ffChildPos) text_ += " [" + IntToStr(childPos) + "]";
        text_ += '\n';
        ++level_;
        PrintProperties();
        while (!reader_.EndOfList()) PrintObject();
        reader_.ReadListEnd();
        --level_;
        Indent();
        text_ += "end\n";
    }

    void PrintProperties() {
        while (!reader_.EndOfList()) {
            Indent();
            text_ += Word(reader_.ReadNameView(), "property name") + " = ";
            PrintValue();
            text_ += '\n';
        }
        reader_.ReadListEnd();
    }

    void PrintValue() {
        switch (reader_.NextValue()) {
            case vaNull:
                reader_.ReadValue();
                text_ += "null";
                return;
            case vaNil:
                reader_.ReadValue();
                text_ += "nil";
                return;
            case vaFalse:
            case vaTrue:
                text_ += reader_.ReadBoolean() ? "True" : "False";
                return;
            case vaInt8:
            case vaInt16:
            case vaInt32:
            case vaInt64:
                text_ += IntToStr(reader_.ReadInt64());
                return;
            case vaExtended:
                PrintReal(reader_.ReadFloat());
                return;
            case vaSingle:
                PrintSingle(reader_.ReadSingle());
                return;
            case vaCurrency:
                PrintCurrency(reader_.ReadCurrency());
                return;
            case vaDate:
                PrintDate(reader_.ReadDate());
                return;
            case vaIdent: {
                const std::string_view name = reader_.ReadIdentView();
                if (!IsWord(name) || IsReserved(name) || SameText(name, "w"))
                    NoText("the identifier \"" + AnsiString(name) + "\"");
                text_ += name;
                return;
            }
            case vaString:
            case vaLString:
                PrintString(reader_.ReadStringView());
                return;
            case vaWString:
                PrintWideString(reader_.ReadWideString());
                return;
            case vaBinary:
                PrintBinary(reader_.ReadBinaryView());
                return;
            case vaSet:
                PrintSet();
                return;
            case vaList:
                PrintList();
                return;
            case vaCollection:
                PrintCollection();
                return;
        }
        reader_.SkipValue();  // names the unknown type
    }

    // A real number always shows that it is one, by its point or its exponent.
    static AnsiString WithPoint(AnsiString number) {
        if (number.find_first_of(".eE") == AnsiString::npos) number += ".0";
        return number;
    }
    void PrintReal(long double value) {
        if (!std::isfinite(value)) NoText("a number that is not finite");
        text_ += WithPoint(ShortestExtended(value));
    }
    void PrintSingle(float value) {
        if (!std::isfinite(value)) NoText("a number that is not finite");
        text_ += ShortestSingle(value) + "s";
    }
    void PrintCurrency(Currency value) {
        // Exact: the integer, and up to four decimals.
        const bool negative = value.Val < 0;
        const uint64_t scaled = negative ? 0 - static_cast<uint64_t>(value.Val) : static_cast<uint64_t>(value.Val);
        std::string decimals = std::to_string(scaled % Currency::kScale);
        decimals.insert(0, 4 - decimals.size(), '0');
        while (!decimals.empty() && decimals.back() == '0') decimals.pop_back();
        text_ += (negative ? "-" : "") + std::to_string(scaled / Currency::kScale);
        if (!decimals.empty()) text_ += "." + decimals;
        text_ += 'c';
    }
    void PrintDate(TDateTime value) {
        if (!std::isfinite(value.Val)) NoText("a date that is not finite");
        text_ += ShortestDouble(value.Val) + "d";
    }

    void PrintSet() {
        reader_.ReadValue();
        text_ += '[';
        for (bool first = true;; first = false) {
            const std::string_view name = reader_.ReadNameView();
            if (name.empty()) break;
            if (!first) text_ += ", ";
            text_ += Word(name, "set value");
        }
        text_ += ']';
    }

    void PrintList() {
        CheckDepth();
        reader_.ReadListBegin();
        text_ += '(';
        ++level_;
        while (!reader_.EndOfList()) {
            NewLine();
            PrintValue();
        }
        --level_;
        reader_.ReadListEnd();
        text_ += ')';
    }

    void PrintCollection() {
        CheckDepth();
        reader_.ReadValue();
        text_ += '<';
        ++level_;
        while (!reader_.EndOfList()) {
            NewLine();
            text_ += "item";
            if (reader_.NextValue() != vaList) text_ += " [" + IntToStr(reader_.ReadInt64()) + "]";
            text_ += '\n';
            reader_.ReadListBegin();
            ++level_;
            PrintProperties();
            --level_;
            Indent();
            text_ += "end";
        }
        reader_.ReadListEnd();
        --level_;
        text_ += '>';
    }

    void PrintBinary(std::string_view bytes) {
        text_ += '{';
        ++level_;
        for (size_t i = 0; i < bytes.size(); ++i) {
            if (i % kBytesPerHexLine == 0) NewLine();
            const auto byte = static_cast<unsigned char>(bytes[i]);
            text_ += kHexDigits[byte >> 4];
            text_ += kHexDigits[byte & 15];
        }
        --level_;
        text_ += '}';
    }

    // A text of several lines begins on a line of its own.
    void StartBrokenText() {
        const size_t lineAt = text_.rfind('\n') + 1;
        if (text_.find_first_not_of(' ', lineAt) == std::string::npos) return;
        while (text_.back() == ' ') text_.pop_back();
        NewLine();
    }
    // A quoted text: controls stand outside the quotes by number.
    template <class Char>
    void PrintCharacters(std::basic_string_view<Char> text, const char* prefix) {
        if (text.empty()) {
            text_ += std::string(prefix) + "''";
            return;
        }
        ++level_;
        const bool broken = text.size() > kLineWidth || text.find(Char('\n')) < text.size() - 1;
        if (broken) StartBrokenText();
        text_ += prefix;
        bool quoted = false;
        size_t onLine = 0;
        for (size_t i = 0; i < text.size(); ++i) {
            const auto code = static_cast<std::make_unsigned_t<Char>>(text[i]);
            const bool lineEnds = i > 0 && text[i - 1] == Char('\n');
            const bool pairGoesOn = sizeof(Char) > 1 && code >= 0xDC00 && code <= 0xDFFF;
            if (broken && onLine > 0 && (onLine >= kLineWidth || lineEnds) && !pairGoesOn) {
                if (quoted) text_ += '\'';
                quoted = false;
                text_ += " +";
                NewLine();
                text_ += prefix;
                onLine = 0;
            }
            const std::string shown = Shown(text, i);
            if (shown.empty()) {
                if (quoted) text_ += '\'';
                quoted = false;
                text_ += '#' + std::to_string(static_cast<unsigned>(code));
            } else {
                if (!quoted) text_ += '\'';
                quoted = true;
                text_ += shown;
            }
            ++onLine;
        }
        if (quoted) text_ += '\'';
        --level_;
    }
    // The UTF-8 of a character that may stand in quotes, or empty when it is written by its number.
    static std::string Shown(std::string_view text, size_t i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c == '\'') return "''";
        if (c < ' ' || c == 0x7F || c == 0x81 || c == 0x8D || c == 0x8F || c == 0x90 || c == 0x9D) return {};
        return AnsiToUtf8(text.substr(i, 1));
    }
    static std::string Shown(std::u16string_view text, size_t i) {
        const char16_t c = text[i];
        if (c == u'\'') return "''";
        const bool first =
            c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
        if (first || c < ' ' || (c >= 0x7F && c <= 0x9F) || (c >= 0xD800 && c <= 0xDFFF) || c == 0xFEFF || c >= 0xFFFE)
            return {};
        return WideToUtf8(text.substr(i, 1));
    }
    void PrintString(std::string_view text) { PrintCharacters(text, ""); }
    void PrintWideString(const WideString& text) { PrintCharacters(std::u16string_view(text), "w"); }

    TReader reader_;
    std::string text_;
    int level_ = 0;
};

}  // namespace text_form_detail

std::string BinaryToText(TStream& binary) { return text_form_detail::FormPrinter(binary).Print(); }

bool IsBinaryForm(std::string_view bytes) { return bytes.substr(0, 4) == "TPF0"; }

}  // namespace vyn
