#include <charconv>
#include <cmath>
#include <cstring>

#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/streams/writer.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace text_form_detail {

enum class Token { End, Word, Number, String, WideString, Symbol };

// Reads the text form and writes the binary one.
class FormParser {
  public:
    FormParser(std::string_view text, TStream& stream) : text_(text), writer_(stream) {
        if (text_.substr(0, 3) == "\xEF\xBB\xBF") text_.remove_prefix(3);  // a byte order mark
        Next();
    }

    void Parse() {
        writer_.WriteSignature();
        ParseObject();
        if (token_ != Token::End) Fail("the end of the text was expected, " + Found() + " was found");
        writer_.Flush();
    }

  private:
    [[noreturn]] void Fail(const AnsiString& what) const {
        throw EParserError("line " + IntToStr(tokenLine_) + ": " + what);
    }
    AnsiString Found() const {
        if (token_ == Token::End) return "the end of the text";
        return "\"" + Utf8ToAnsiLossy(std::string_view(text_.data() + tokenAt_, at_ - tokenAt_).substr(0, 40)) + "\"";
    }
    [[noreturn]] void Expected(const AnsiString& wanted) const {
        Fail(wanted + " was expected, " + Found() + " was found");
    }

    // The scanner.
    char Peek(size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
    static bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
    static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

    void SkipBlanks() {
        while (at_ < text_.size() &&
               (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\r' || text_[at_] == '\n')) {
            if (text_[at_] == '\n') ++line_;
            ++at_;
        }
    }

    void Next() {
        SkipBlanks();
        tokenAt_ = at_;
        tokenLine_ = line_;
        if (at_ >= text_.size()) {
            token_ = Token::End;
            return;
        }
        const char c = Peek();
        if (c == '\'' || c == '#') {
            token_ = Token::String;
            ScanString();
        } else if (c == 'w' && (Peek(1) == '\'' || Peek(1) == '#')) {
            token_ = Token::WideString;
            ScanWideString();
        } else if (IsLetter(c)) {
            token_ = Token::Word;
            while (IsLetter(Peek()) || IsDigit(Peek()) || Peek() == '.') ++at_;
        } else if (IsDigit(c) || ((c == '-' || c == '+') && IsDigit(Peek(1)))) {
            token_ = Token::Number;
            ScanNumber();
        } else {
            token_ = Token::Symbol;
            ++at_;
        }
    }

    std::string_view TokenText() const { return text_.substr(tokenAt_, at_ - tokenAt_); }
    bool IsSymbol(char c) const { return token_ == Token::Symbol && text_[tokenAt_] == c; }
    bool IsKeyword(std::string_view word) const { return token_ == Token::Word && SameText(TokenText(), word); }
    void Take(char symbol) {
        if (!IsSymbol(symbol)) Expected(AnsiString("\"") + symbol + "\"");
        Next();
    }
    AnsiString TakeWord(const char* what) {
        if (token_ != Token::Word) Expected(what);
        AnsiString word(TokenText());
        Next();
        return word;
    }

    void ScanNumber() {
        if (Peek() == '-' || Peek() == '+') ++at_;
        while (IsDigit(Peek())) ++at_;
        if (Peek() == '.' && IsDigit(Peek(1))) {
            ++at_;
            while (IsDigit(Peek())) ++at_;
        }
        if ((Peek() == 'e' || Peek() == 'E') &&
            (IsDigit(Peek(1)) || ((Peek(1) == '-' || Peek(1) == '+') && IsDigit(Peek(2))))) {
            at_ += 2;
            while (IsDigit(Peek())) ++at_;
        }
        if (Peek() == 's' || Peek() == 'c' || Peek() == 'd') ++at_;
        if (IsLetter(Peek()) || IsDigit(Peek())) Fail("\"" + AnsiString(TokenText()) + "...\" is no number");
    }

    // A character by its number, after "#".
    uint32_t ScanCharacterNumber(uint32_t limit) {
        ++at_;
        uint32_t code = 0;
        size_t digits = 0;
        while (IsDigit(Peek())) {
            code = std::min<uint32_t>(code * 10 + static_cast<uint32_t>(Peek() - '0'), limit + 1);
            ++at_;
            ++digits;
        }
        if (digits == 0 || code > limit)
            Fail("the number of a character (at most " + IntToStr(limit) + ") was expected after \"#\"");
        return code;
    }

    // The UTF-8 text between two quotes, with doubled quotes made single.
    std::string ScanQuoted() {
        std::string quoted;
        ++at_;
        for (;;) {
            if (at_ >= text_.size() || Peek() == '\n') Fail("the closing quote is missing");
            if (Peek() == '\'') {
                if (Peek(1) != '\'') break;
                ++at_;
            }
            quoted += text_[at_++];
        }
        ++at_;
        return quoted;
    }

    // A "+" that joins the next piece on a following line; leaves the position alone when none follows.
    bool JoinsNext(bool wide) {
        const size_t at = at_;
        const int line = line_;
        SkipBlanks();
        if (Peek() == '+') {
            ++at_;
            SkipBlanks();
            const bool quote =
                wide ? Peek() == 'w' && (Peek(1) == '\'' || Peek(1) == '#') : Peek() == '\'' || Peek() == '#';
            if (quote) {
                if (wide) ++at_;
                return true;
            }
            Fail("a string was expected after \"+\"");
        }
        at_ = at;
        line_ = line;
        return false;
    }

    void ScanString() {
        string_.clear();
        do {
            while (Peek() == '\'' || Peek() == '#') {
                if (Peek() == '#') {
                    string_ += static_cast<char>(ScanCharacterNumber(0xFF));
                    continue;
                }
                AnsiString piece;
                size_t position = 0;
                const std::string quoted = ScanQuoted();
                if (!TryUtf8ToAnsi(quoted, piece, position)) {
                    try {
                        Utf8ToAnsi(quoted);
                    } catch (const EConvertError& error) {
                        throw EParserError("line " + IntToStr(line_) + ": " + error.Message());
                    }
                }
                string_ += piece;
            }
        } while (JoinsNext(false));
    }

    void ScanWideString() {
        wide_.clear();
        ++at_;
        do {
            while (Peek() == '\'' || Peek() == '#') {
                if (Peek() == '#') {
                    wide_ += static_cast<char16_t>(ScanCharacterNumber(0xFFFF));
                    continue;
                }
                try {
                    wide_ += Utf8ToWide(ScanQuoted());
                } catch (const EConvertError& error) {
                    throw EParserError("line " + IntToStr(line_) + ": " + error.Message());
                }
            }
        } while (JoinsNext(true));
    }

    // The grammar.
    class Level {
      public:
        explicit Level(FormParser& parser) : parser_(parser) {
            if (++parser_.level_ > MaxStreamNesting)
                parser_.Fail("more than " + IntToStr(MaxStreamNesting) + " levels");
        }
        ~Level() { --parser_.level_; }

      private:
        FormParser& parser_;
    };

    int64_t TakeInteger() {
        int64_t value = 0;
        if (token_ != Token::Number || !TryStrToInt64(TokenText(), value)) Expected("an integer");
        Next();
        return value;
    }

    bool AtObject() const { return IsKeyword("object") || IsKeyword("inherited") || IsKeyword("inline"); }

    void ParseObject() {
        Level level(*this);
        uint8_t flags = 0;
        if (!AtObject()) Expected("\"object\"");
        if (IsKeyword("inherited")) {
            flags |= ffInherited;
            Next();
            // "inline" may be the component's name as well as the flag: a name is followed by a colon.
            if (IsKeyword("inline") && !ColonFollows()) {
                flags |= ffInline;
                Next();
            }
        } else {
            if (IsKeyword("inline")) flags |= ffInline;
            Next();
        }
        AnsiString className = TakeWord("a component's name or class");
        AnsiString name;
        if (IsSymbol(':')) {
            Next();
            name = std::move(className);
            className = TakeWord("a class name");
        }
        int childPos = -1;
        if (IsSymbol('[')) {
            Next();
            const int64_t position = TakeInteger();
            if (position < INT32_MIN || position > INT32_MAX) Fail("the position is too large");
            childPos = static_cast<int>(position);
            flags |= ffChildPos;
            Take(']');
        }
        writer_.WritePrefix(flags, childPos, className);
        WriteName(className);
        WriteName(name);
        ParseProperties();
        while (AtObject()) ParseObject();
        writer_.WriteListEnd();
        if (!IsKeyword("end")) Expected("a property, an object or \"end\"");
        Next();
    }

    bool ColonFollows() {
        size_t at = at_;
        while (at < text_.size() && (text_[at] == ' ' || text_[at] == '\t')) ++at;
        return at < text_.size() && text_[at] == ':';
    }

    void WriteName(const AnsiString& name) {
        if (name.size() > 255) Fail("a name is longer than 255 characters");
        writer_.WriteName(name);
    }

    // A property may have any name: what tells it from "end" and "object" is the "=" behind it.
    bool AtProperty() {
        if (token_ != Token::Word) return false;
        size_t at = at_;
        while (at < text_.size() && (text_[at] == ' ' || text_[at] == '\t')) ++at;
        return at < text_.size() && text_[at] == '=';
    }

    void ParseProperties() {
        while (AtProperty()) {
            WriteName(AnsiString(TokenText()));
            Next();
            Take('=');
            ParseValue();
        }
        writer_.WriteName({});
    }

    void ParseValue() {
        Level level(*this);
        switch (token_) {
            case Token::String:
                writer_.WriteString(string_);
                Next();
                return;
            case Token::WideString:
                writer_.WriteWideString(wide_);
                Next();
                return;
            case Token::Number:
                ParseNumber();
                return;
            case Token::Word:
                ParseWord();
                return;
            case Token::End:
                Expected("a value");
            case Token::Symbol:
                break;
        }
        switch (text_[tokenAt_]) {
            case '(':
                ParseList();
                return;
            case '[':
                ParseSet();
                return;
            case '<':
                ParseCollection();
                return;
            case '{':
                ParseBinary();
                return;
            default:
                Expected("a value");
        }
    }

    void ParseWord() {
        const std::string_view word = TokenText();
        if (SameText(word, "True"))
            writer_.WriteBoolean(true);
        else if (SameText(word, "False"))
            writer_.WriteBoolean(false);
        else if (SameText(word, "nil"))
            writer_.WriteNil();
        else if (SameText(word, "null"))
            writer_.WriteNull();
        else if (SameText(word, "end") || SameText(word, "item") || AtObject())
            Expected("a value");
        else if (word.size() > 255)
            Fail("an identifier is longer than 255 characters");
        else
            writer_.WriteIdent(word);
        Next();
    }

    void ParseNumber() {
        std::string number(TokenText());
        if (number[0] == '+') number.erase(0, 1);
        const char suffix = number.back();
        if (IsDigit(suffix)) {
            if (number.find_first_of(".eE") == std::string::npos) {
                int64_t value = 0;
                const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
                if (error != std::errc()) Fail("the integer " + number + " is too large");
                writer_.WriteInteger(value);
            } else {
                long double value = 0;
                if (!TryParseExtended(number, value) || !std::isfinite(value))
                    Fail("the number " + number + " is too large");
                writer_.WriteFloat(value);
            }
        } else {
            number.pop_back();
            ParseSuffixed(number, suffix);
        }
        Next();
    }

    void ParseSuffixed(const std::string& number, char suffix) {
        double value = 0;
        if (!TryParseDouble(number, value) || !std::isfinite(value)) Fail("the number " + number + " is too large");
        if (suffix == 's') {
            // Out of range on either side: the double tells the too small, which is zero, from the too large.
            float single = 0;
            if (std::from_chars(number.data(), number.data() + number.size(), single).ec != std::errc())
                single = static_cast<float>(value);
            if (!std::isfinite(single)) Fail("the number " + number + " is too large for a single");
            writer_.WriteSingle(single);
        } else if (suffix == 'd') {
            writer_.WriteDate(TDateTime(value));
        } else {
            writer_.WriteCurrency(ParseCurrency(number));
        }
    }

    // Exact: a currency is an integer of ten-thousandths.
    Currency ParseCurrency(const std::string& number) {
        if (number.find_first_of("eE") != std::string::npos) Fail("a currency has no exponent");
        const size_t point = number.find('.');
        std::string decimals = point == std::string::npos ? std::string() : number.substr(point + 1);
        if (decimals.size() > 4) Fail("a currency has at most four decimals");
        decimals.append(4 - decimals.size(), '0');
        const std::string digits = number.substr(0, point) + decimals;
        int64_t scaled = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), scaled);
        if (error != std::errc()) Fail("the currency " + number + " is too large");
        return Currency::FromScaled(scaled);
    }

    void ParseList() {
        Next();
        writer_.WriteListBegin();
        while (!IsSymbol(')')) {
            if (token_ == Token::End) Expected("\")\"");
            ParseValue();
        }
        Next();
        writer_.WriteListEnd();
    }

    void ParseSet() {
        Next();
        writer_.WriteValue(vaSet);
        if (!IsSymbol(']')) {
            for (;;) {
                WriteName(TakeWord("a set's value"));
                if (!IsSymbol(',')) break;
                Next();
            }
        }
        Take(']');
        writer_.WriteName({});
    }

    void ParseCollection() {
        Next();
        writer_.WriteValue(vaCollection);
        while (IsKeyword("item")) {
            Next();
            if (IsSymbol('[')) {
                Next();
                writer_.WriteInteger(TakeInteger());
                Take(']');
            }
            writer_.WriteListBegin();
            ParseProperties();
            if (!IsKeyword("end")) Expected("a property or \"end\"");
            Next();
        }
        Take('>');
        writer_.WriteListEnd();
    }

    void ParseBinary() {
        std::string bytes;
        int half = -1;
        for (;; ++at_) {
            const char c = Peek();
            if (at_ >= text_.size()) Fail("the closing \"}\" is missing");
            if (c == '\n') ++line_;
            if (c == ' ' || c == '\t' || c == '\r' || c == '\n') continue;
            if (c == '}') break;
            int digit;
            if (c >= '0' && c <= '9')
                digit = c - '0';
            else if (c >= 'A' && c <= 'F')
                digit = c - 'A' + 10;
            else if (c >= 'a' && c <= 'f')
                digit = c - 'a' + 10;
            else
                Fail("a hexadecimal digit was expected");
            if (half < 0) {
                half = digit;
            } else {
                bytes += static_cast<char>(half * 16 + digit);
                half = -1;
            }
        }
        if (half >= 0) Fail("a hexadecimal digit is missing");
        ++at_;
        writer_.WriteBinary(bytes);
        Next();
    }

    std::string_view text_;
    size_t at_ = 0;
    int line_ = 1;
    Token token_ = Token::End;
    size_t tokenAt_ = 0;
    int tokenLine_ = 1;
    AnsiString string_;
    WideString wide_;
    int level_ = 0;
    TWriter writer_;
};

}  // namespace text_form_detail

void TextToBinary(std::string_view utf8Text, TStream& binary) {
    TMemoryStream whole;
    text_form_detail::FormParser(utf8Text, whole).Parse();
    binary.WriteBuffer(whole.Bytes().data(), whole.Size());
}

}  // namespace vyn
