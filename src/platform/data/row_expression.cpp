#include "platform/data/row_expression.h"

#include <cmath>

#include "platform/data/fields.h"
#include "platform/text/compare.h"
#include "platform/text/date_format.h"
#include "platform/text/date_literal.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

const EnumType& TypeInfoOf(TypeTag<TFilterOption>) {
    static const EnumType info("TFilterOption", {"foCaseInsensitive", "foNoPartialCompare"});
    return info;
}

// What a part of an expression is: a way to its value.
struct RowExpression::Node {
    std::function<Variant()> Get;
    bool IsNullLiteral = false;
};

namespace row_expression_detail {

using Node = RowExpression::Node;
using NodePtr = std::unique_ptr<Node>;
using Value = Variant;
using Values = std::vector<Variant>;

// Stored forms bring expressions along: they are bounded.
constexpr int kDeepest = 100;  // parentheses in parentheses
constexpr int kMostOperands = 2000;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool BeginsWord(char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z' ? true : c == '_' || (c & 0x80) != 0; }

bool IsNumber(const Variant& value) {
    switch (value.Type()) {
        case varSmallint:
        case varInteger:
        case varSingle:
        case varDouble:
        case varCurrency:
        case varByte:
        case varBoolean:
            return true;
        default:
            return false;
    }
}
bool IsText(const Variant& value) { return value.Type() == varString || value.Type() == varOleStr; }

double NumberOf(const Variant& value) {
    if (value.Type() == varDate) return value.AsDateTime().Val;
    if (value.Type() == varBoolean) return value.AsBoolean() ? 1 : 0;
    return value.AsDouble();
}

// --- comparing

int Order(double a, double b) { return a < b ? -1 : a > b; }

// A text beside something else is read as that.
int Compare(const Variant& a, const Variant& b, TFilterOptions options) {
    if (IsText(a) && IsText(b)) {
        if (options.Contains(foCaseInsensitive)) return AnsiCompareText(a.AsString(), b.AsString());
        return a.AsString().compare(b.AsString());
    }
    if (a.Type() == varDate || b.Type() == varDate) {
        // To the millisecond.
        const auto moment = [](const Variant& value) {
            return IsText(value) ? StrToDateTime(value.AsString()) : NumberOf(value);
        };
        constexpr double kHalfMillisecond = 0.5 / static_cast<double>(kMillisecondsPerDay);
        const double first = moment(a), second = moment(b);
        return std::fabs(first - second) < kHalfMillisecond ? 0 : Order(first, second);
    }
    if (a.Type() == varBoolean || b.Type() == varBoolean) return Order(a.AsBoolean() ? 1 : 0, b.AsBoolean() ? 1 : 0);
    if (a.Type() == varCurrency && b.Type() == varCurrency)
        return a.AsCurrency() < b.AsCurrency() ? -1 : a.AsCurrency() > b.AsCurrency();
    const bool whole =
        (a.Type() == varInteger || a.Type() == varSmallint) && (b.Type() == varInteger || b.Type() == varSmallint);
    if (whole) return a.AsInt64() < b.AsInt64() ? -1 : a.AsInt64() > b.AsInt64();
    return Order(NumberOf(a), NumberOf(b));
}

bool EqualTexts(AnsiString text, AnsiString wanted, TFilterOptions options) {
    if (options.Contains(foCaseInsensitive)) {
        text = AnsiLowerCase(text);
        wanted = AnsiLowerCase(wanted);
    }
    if (!options.Contains(foNoPartialCompare) && !wanted.empty() && wanted.back() == '*')
        return text.compare(0, wanted.size() - 1, wanted, 0, wanted.size() - 1) == 0;
    return text == wanted;
}

bool Equal(const Variant& a, const Variant& b, TFilterOptions options) {
    return IsText(a) && IsText(b) ? EqualTexts(a.AsString(), b.AsString(), options) : Compare(a, b, options) == 0;
}

// In time that the lengths multiply to at most: the last star is tried again.
bool IsLike(const AnsiString& text, const AnsiString& pattern) {
    size_t t = 0, p = 0, star = AnsiString::npos, again = 0;
    while (t < text.size()) {
        const char c = p < pattern.size() ? pattern[p] : '\0';
        if (p < pattern.size() && (c == '%' || c == '*')) {
            star = p++;
            again = t;
        } else if (p < pattern.size() && (c == '_' || c == '?' || c == text[t])) {
            ++p;
            ++t;
        } else if (star != AnsiString::npos) {
            p = star + 1;
            t = ++again;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && (pattern[p] == '%' || pattern[p] == '*')) ++p;
    return p == pattern.size();
}

bool IsTrueValue(const Variant& value) { return !value.IsNull() && !value.IsEmpty() && value.AsBoolean(); }

// --- reading

class Reader {
  public:
    Reader(const AnsiString& text, const RowExpression::FieldFinder& fields, TFilterOptions options)
        : text_(text), fields_(fields), options_(options) {}

    NodePtr Whole() {
        NodePtr node = Or();
        Blanks();
        if (at_ < text_.size()) Fail("something is left over");
        return node;
    }

  private:
    [[noreturn]] void Fail(const AnsiString& what) const {
        throw EDatabaseError("The expression \"" + text_ + "\" is wrong at character " +
                             IntToStr(static_cast<int64_t>(at_) + 1) + ": " + what);
    }
    static NodePtr Make(std::function<Variant()> get) { return std::make_unique<Node>(Node{std::move(get), false}); }
    // A node whose operands are known where one of them is null.
    using Binary = std::function<Variant(const Variant&, const Variant&)>;
    static NodePtr Strict(NodePtr a, NodePtr b, Binary action) {
        return Make([first = std::shared_ptr<Node>(std::move(a)), second = std::shared_ptr<Node>(std::move(b)),
                     act = std::move(action)] {
            const Variant x = first->Get(), y = second->Get();
            return x.IsNull() || y.IsNull() ? Variant::Null() : act(x, y);
        });
    }

    void Blanks() {
        while (at_ < text_.size() && static_cast<unsigned char>(text_[at_]) <= ' ') ++at_;
    }
    bool Symbol(std::string_view symbol) {
        Blanks();
        if (text_.compare(at_, symbol.size(), symbol) != 0) return false;
        at_ += symbol.size();
        return true;
    }
    void Require(std::string_view symbol) {
        if (!Symbol(symbol)) Fail("\"" + AnsiString(symbol) + "\" is missing");
    }
    AnsiString PeekWord() {
        Blanks();
        size_t end = at_;
        if (end < text_.size() && BeginsWord(text_[end]))
            while (end < text_.size() && (BeginsWord(text_[end]) || IsDigit(text_[end]))) ++end;
        return text_.substr(at_, end - at_);
    }
    bool Word(const char* word) {
        const AnsiString next = PeekWord();
        if (!SameText(next, word)) return false;
        at_ += next.size();
        return true;
    }

    NodePtr Or() {
        NodePtr left = And();
        while (Word("OR")) {
            left = Make([a = std::shared_ptr<Node>(std::move(left)), b = std::shared_ptr<Node>(And())] {
                const Variant x = a->Get();
                if (IsTrueValue(x)) return Variant(true);
                const Variant y = b->Get();
                if (IsTrueValue(y)) return Variant(true);
                return x.IsNull() || y.IsNull() ? Variant::Null() : Variant(false);
            });
        }
        return left;
    }
    NodePtr And() {
        NodePtr left = Not();
        while (Word("AND")) {
            left = Make([a = std::shared_ptr<Node>(std::move(left)), b = std::shared_ptr<Node>(Not())] {
                const Variant x = a->Get();
                if (!x.IsNull() && !IsTrueValue(x)) return Variant(false);
                const Variant y = b->Get();
                if (!y.IsNull() && !IsTrueValue(y)) return Variant(false);
                return x.IsNull() || y.IsNull() ? Variant::Null() : Variant(true);
            });
        }
        return left;
    }
    NodePtr Not() {
        const Nested nested(*this);
        if (!Word("NOT")) return Comparison();
        return Negation(Not());
    }
    static NodePtr Negation(NodePtr node) {
        return Make([a = std::shared_ptr<Node>(std::move(node))] {
            const Variant x = a->Get();
            return x.IsNull() ? x : Variant(!IsTrueValue(x));
        });
    }
    static NodePtr IsNull(NodePtr node, bool wanted) {
        return Make(
            [a = std::shared_ptr<Node>(std::move(node)), wanted] { return Variant(a->Get().IsNull() == wanted); });
    }

    NodePtr Comparison() {
        NodePtr left = Sum();
        if (Word("IS")) {
            const bool wanted = !Word("NOT");
            if (!Word("NULL")) Fail("NULL is missing");
            return IsNull(std::move(left), wanted);
        }
        const size_t before = at_;
        const bool negated = Word("NOT");
        NodePtr found;
        if (Word("LIKE")) {
            const bool caseless = options_.Contains(foCaseInsensitive);
            found = Strict(std::move(left), Sum(), [caseless](const Variant& a, const Variant& b) {
                return caseless ? Variant(IsLike(AnsiLowerCase(a.AsString()), AnsiLowerCase(b.AsString())))
                                : Variant(IsLike(a.AsString(), b.AsString()));
            });
        } else if (Word("IN")) {
            found = In(std::move(left));
        } else if (Word("BETWEEN")) {
            found = Between(std::move(left));
        }
        if (found) return negated ? Negation(std::move(found)) : std::move(found);
        if (negated) {
            at_ = before;
            Fail("NOT stands before nothing that it could change");
        }
        return Relation(std::move(left));
    }

    NodePtr Relation(NodePtr left) {
        const TFilterOptions options = options_;
        enum class Kind { LessEqual, GreaterEqual, Different, Equal, Less, Greater };
        constexpr std::pair<const char*, Kind> kRelations[] = {{"<=", Kind::LessEqual}, {">=", Kind::GreaterEqual},
                                                               {"<>", Kind::Different}, {"=", Kind::Equal},
                                                               {"<", Kind::Less},       {">", Kind::Greater}};
        for (const auto& relation : kRelations) {
            if (!Symbol(relation.first)) continue;
            const Kind kind = relation.second;
            NodePtr right = Sum();
            if (right->IsNullLiteral && (kind == Kind::Equal || kind == Kind::Different))
                return IsNull(std::move(left), kind == Kind::Equal);
            return Strict(std::move(left), std::move(right), [kind, options](const Variant& a, const Variant& b) {
                switch (kind) {
                    case Kind::LessEqual:
                        return Variant(Compare(a, b, options) <= 0);
                    case Kind::GreaterEqual:
                        return Variant(Compare(a, b, options) >= 0);
                    case Kind::Different:
                        return Variant(!Equal(a, b, options));
                    case Kind::Equal:
                        return Variant(Equal(a, b, options));
                    case Kind::Less:
                        return Variant(Compare(a, b, options) < 0);
                    case Kind::Greater:
                        return Variant(Compare(a, b, options) > 0);
                }
                return Variant::Null();
            });
        }
        return left;
    }

    NodePtr In(NodePtr left) {
        Require("(");
        auto list = std::make_shared<std::vector<NodePtr>>();
        do list->push_back(Sum());
        while (Symbol(","));
        Require(")");
        return Make([a = std::shared_ptr<Node>(std::move(left)), list, options = options_] {
            const Variant x = a->Get();
            if (x.IsNull()) return x;
            bool unknown = false;
            for (const NodePtr& each : *list) {
                const Variant y = each->Get();
                if (y.IsNull())
                    unknown = true;
                else if (Equal(x, y, options))
                    return Variant(true);
            }
            return unknown ? Variant::Null() : Variant(false);
        });
    }

    NodePtr Between(NodePtr left) {
        const std::shared_ptr<Node> low = Sum();
        if (!Word("AND")) Fail("AND is missing");
        const std::shared_ptr<Node> high = Sum();
        return Make([a = std::shared_ptr<Node>(std::move(left)), low, high, options = options_] {
            const Variant x = a->Get(), y = low->Get(), z = high->Get();
            if (x.IsNull() || y.IsNull() || z.IsNull()) return Variant::Null();
            return Variant(Compare(x, y, options) >= 0 && Compare(x, z, options) <= 0);
        });
    }

    NodePtr Sum() {
        NodePtr left = Product();
        for (;;) {
            if (Symbol("+"))
                left = Strict(std::move(left), Product(), [](const Variant& a, const Variant& b) {
                    return IsText(a) && IsText(b) ? Variant(a.AsString() + b.AsString()) : Add(a, b, 1);
                });
            else if (Symbol("-"))
                left = Strict(std::move(left), Product(),
                              [](const Variant& a, const Variant& b) { return Add(a, b, -1); });
            else if (Symbol("&"))
                left = Make([a = std::shared_ptr<Node>(std::move(left)), b = std::shared_ptr<Node>(Product())] {
                    return Variant(VarToStr(a->Get()) + VarToStr(b->Get()));
                });
            else
                return left;
        }
    }
    static Variant Add(const Variant& a, const Variant& b, int sign) {
        if (a.Type() == varCurrency && b.Type() == varCurrency)
            return Variant(sign > 0 ? a.AsCurrency() + b.AsCurrency() : a.AsCurrency() - b.AsCurrency());
        const double sum = NumberOf(a) + sign * NumberOf(b);
        // A day plus a number of days is a day.
        const bool date = (a.Type() == varDate) != (b.Type() == varDate);
        return date ? Variant(TDateTime(sum)) : Variant(sum);
    }

    NodePtr Product() {
        NodePtr left = Factor();
        for (;;) {
            if (Symbol("*"))
                left = Strict(std::move(left), Factor(),
                              [](const Variant& a, const Variant& b) { return Variant(NumberOf(a) * NumberOf(b)); });
            else if (Symbol("/"))
                left = Strict(std::move(left), Factor(), [](const Variant& a, const Variant& b) {
                    // What cannot be calculated is unknown.
                    const double divisor = NumberOf(b);
                    return divisor == 0 ? Variant::Null() : Variant(NumberOf(a) / divisor);
                });
            else
                return left;
        }
    }

    NodePtr Factor() {
        const Nested nested(*this);
        if (++operands_ > kMostOperands) Fail("it is too long");
        if (Symbol("-"))
            return Make([a = std::shared_ptr<Node>(Factor())] {
                const Variant x = a->Get();
                return x.IsNull() ? x : x.Type() == varCurrency ? Variant(-x.AsCurrency()) : Variant(-NumberOf(x));
            });
        if (Symbol("+")) return Factor();
        if (Symbol("(")) {
            NodePtr inside = Or();
            Require(")");
            return inside;
        }
        Blanks();
        if (at_ >= text_.size()) Fail("a value is missing");
        const char c = text_[at_];
        if (IsDigit(c) || c == '.') return Constant(Number());
        if (c == '\'' || c == '"') return Constant(Variant(Quoted(c)));
        if (c == '#') return Constant(DateLiteral());
        if (c == '[') {
            const size_t end = text_.find(']', at_);
            if (end == AnsiString::npos) Fail("\"]\" is missing");
            const AnsiString name = text_.substr(at_ + 1, end - at_ - 1);
            NodePtr node = Field(name);
            at_ = end + 1;
            return node;
        }
        const AnsiString word = PeekWord();
        if (word.empty()) Fail("a value is missing");
        return Named(word);
    }

    static NodePtr Constant(Variant value) {
        return Make([kept = std::move(value)] { return kept; });
    }
    Variant Number() {
        size_t end = at_;
        while (end < text_.size() && (IsDigit(text_[end]) || text_[end] == '.')) ++end;
        if (end < text_.size() && (text_[end] | 0x20) == 'e') {
            size_t exponent = end + 1;
            if (exponent < text_.size() && (text_[exponent] == '+' || text_[exponent] == '-')) ++exponent;
            if (exponent < text_.size() && IsDigit(text_[exponent]))
                for (end = exponent; end < text_.size() && IsDigit(text_[end]);) ++end;
        }
        const AnsiString text = text_.substr(at_, end - at_);
        int64_t whole = 0;
        double real = 0;
        if (TryStrToInt64(text, whole)) {
            at_ = end;
            return Variant(whole);
        }
        if (!TryStrToFloat(text, real, InvariantFormatSettings())) Fail("'" + text + "' is no number");
        at_ = end;
        return Variant(real);
    }
    AnsiString Quoted(char quote) {
        AnsiString value;
        for (size_t i = at_ + 1; i < text_.size(); ++i) {
            if (text_[i] == quote) {
                if (i + 1 >= text_.size() || text_[i + 1] != quote) {
                    at_ = i + 1;
                    return value;
                }
                ++i;
            }
            value += text_[i];
        }
        Fail("the closing quote is missing");
    }
    Variant DateLiteral() {
        const size_t end = text_.find('#', at_ + 1);
        double days = 0;
        DateLiteralParts parts;
        if (end == AnsiString::npos ||
            !ParseDateLiteral(std::string_view(text_).substr(at_ + 1, end - at_ - 1), days, parts))
            Fail("this is no date");
        at_ = end + 1;
        return Variant(TDateTime(days));
    }
    NodePtr Field(const AnsiString& name) {
        const TField* field = fields_ ? fields_(name) : nullptr;
        if (!field) Fail("Field '" + name + "' not found");
        return Make([field] { return field->Value(); });
    }

    NodePtr Named(const AnsiString& word) {
        const size_t start = at_;
        at_ += word.size();
        const size_t behind = at_;
        if (Symbol("(")) return Function(word, start);
        at_ = behind;
        if (SameText(word, "NULL")) {
            NodePtr null = Constant(Variant::Null());
            null->IsNullLiteral = true;
            return null;
        }
        if (SameText(word, "TRUE")) return Constant(Variant(true));
        if (SameText(word, "FALSE")) return Constant(Variant(false));
        at_ = start;
        NodePtr field = Field(word);
        at_ = behind;
        return field;
    }

    NodePtr Function(const AnsiString& name, size_t start) {
        auto arguments = std::make_shared<std::vector<NodePtr>>();
        if (!Symbol(")")) {
            do arguments->push_back(Or());
            while (Symbol(","));
            Require(")");
        }
        struct Known {
            const char* name;
            size_t least, most;
            Variant (*call)(const Values&);
        };
        static constexpr Known kKnown[] = {
            {"UPPER", 1, 1, [](const Values& v) { return Value(AnsiUpperCase(VarToStr(v[0]))); }},
            {"LOWER", 1, 1, [](const Values& v) { return Value(AnsiLowerCase(VarToStr(v[0]))); }},
            {"TRIM", 1, 1, [](const Values& v) { return Value(Trim(VarToStr(v[0]))); }},
            {"LENGTH", 1, 1, [](const Values& v) { return Value(static_cast<int64_t>(VarToStr(v[0]).size())); }},
            {"SUBSTRING", 2, 3, Substring},
            {"ABS", 1, 1, [](const Values& v) { return Value(std::fabs(NumberOf(v[0]))); }},
            {"ROUND", 1, 2, Round},
            {"YEAR", 1, 1, [](const Values& v) { return Part(v[0], 0); }},
            {"MONTH", 1, 1, [](const Values& v) { return Part(v[0], 1); }},
            {"DAY", 1, 1, [](const Values& v) { return Part(v[0], 2); }},
            {"HOUR", 1, 1, [](const Values& v) { return Part(v[0], 3); }},
            {"MINUTE", 1, 1, [](const Values& v) { return Part(v[0], 4); }},
            {"SECOND", 1, 1, [](const Values& v) { return Part(v[0], 5); }},
            {"NOW", 0, 0, [](const Values&) { return Value(vyn::Now()); }},
            {"DATE", 0, 0, [](const Values&) { return Value(vyn::Date()); }},
            {"TIME", 0, 0, [](const Values&) { return Value(vyn::Time()); }},
        };
        for (const Known& known : kKnown) {
            if (!SameText(name, known.name)) continue;
            if (arguments->size() < known.least || arguments->size() > known.most) {
                at_ = start;
                Fail(name + " takes another number of arguments");
            }
            return Make([arguments, call = known.call] {
                Values values;
                for (const NodePtr& each : *arguments) {
                    values.push_back(each->Get());
                    if (values.back().IsNull()) return Variant::Null();
                }
                return call(values);
            });
        }
        at_ = start;
        Fail("there is no function " + name);
    }

    static Variant Substring(const Values& v) {
        const AnsiString text = VarToStr(v[0]);
        const int64_t from = std::max<int64_t>(v[1].AsInt64(), 1);
        if (from > static_cast<int64_t>(text.size())) return Variant("");
        const int64_t length = v.size() > 2 ? std::max<int64_t>(v[2].AsInt64(), 0) : static_cast<int64_t>(text.size());
        return Variant(text.substr(static_cast<size_t>(from - 1), static_cast<size_t>(length)));
    }
    static Variant Round(const Values& v) {
        const double scale = std::pow(10.0, v.size() > 1 ? NumberOf(v[1]) : 0);
        return Variant(std::round(NumberOf(v[0]) * scale) / scale);
    }
    static Variant Part(const Variant& value, int which) {
        const double days = IsText(value) ? StrToDateTime(value.AsString()) : NumberOf(value);
        vyn::Word parts[7];
        if (!DecodeDate(days, parts[0], parts[1], parts[2])) return Variant::Null();
        DecodeTime(days, parts[3], parts[4], parts[5], parts[6]);
        return Variant(static_cast<int64_t>(parts[which]));
    }

    // Counts how deep the text is nested.
    struct Nested {
        explicit Nested(Reader& owner) : reader(owner) {
            if (++reader.depth_ > kDeepest) reader.Fail("it is nested too deep");
        }
        ~Nested() { --reader.depth_; }
        Nested(const Nested&) = delete;
        Nested& operator=(const Nested&) = delete;
        Reader& reader;
    };

    const AnsiString& text_;
    const RowExpression::FieldFinder& fields_;
    TFilterOptions options_;
    size_t at_ = 0;
    int depth_ = 0;
    int operands_ = 0;
};

}  // namespace row_expression_detail

RowExpression::RowExpression(const AnsiString& text, const FieldFinder& fields, TFilterOptions options)
    : root_(row_expression_detail::Reader(text, fields, options).Whole()) {}
RowExpression::~RowExpression() = default;
RowExpression::RowExpression(RowExpression&&) noexcept = default;
RowExpression& RowExpression::operator=(RowExpression&&) noexcept = default;

Variant RowExpression::Value() const {
    try {
        return root_->Get();
    } catch (const EConvertError& error) {
        throw EDatabaseError(error.Message());
    } catch (const EVariantError& error) {
        throw EDatabaseError(error.Message());
    }
}

bool RowExpression::IsTrue() const {
    const Variant value = Value();
    return row_expression_detail::IsTrueValue(value);
}

}  // namespace vyn
