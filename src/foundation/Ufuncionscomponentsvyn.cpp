#include "foundation/Ufuncionscomponentsvyn.h"

#include <algorithm>

#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

TComponent* RetornaComponentOwnerPerNom(const AnsiString& name, TComponent* component) {
    for (; component; component = component->Owner())
        if (TComponent* found = component->FindComponent(name)) return found;
    return nullptr;
}

AnsiString RetornaStringEntreChar(const AnsiString& text, char c, int& position) {
    const size_t from = std::min(static_cast<size_t>(std::max(position, 1)) - 1, text.size());
    const size_t to = std::min(text.find(c, from), text.size());
    position = static_cast<int>(to) + 1;
    return text.substr(from, to - from);
}

bool ExisteixValor(const AnsiString& list, const AnsiString& value) {
    TStringList items;
    items.SetCommaText(list);
    return items.IndexOf(value) >= 0;
}

AnsiString RetornaValor(const AnsiString& keys, const AnsiString& key, const AnsiString& values) {
    TStringList items;
    items.SetCommaText(keys);
    const int index = items.IndexOf(key);
    if (index < 0) return {};
    items.SetCommaText(values);
    return items.Get(index);
}

AnsiString TreuCampsNuls(const AnsiString& list) {
    TStringList items;
    items.SetCommaText(list);
    AnsiString result;
    for (int i = 0; i < items.Count(); ++i)
        if (!items.At(i).empty()) result += (result.empty() ? "" : ",") + items.At(i);
    return result;
}

namespace argument_list_detail {

class Splitter {
  public:
    explicit Splitter(const AnsiString& text) : text_(text) {}

    std::unique_ptr<TStringList> Split() {
        auto parts = std::make_unique<TStringList>();
        for (at_ = 0; at_ < text_.size(); ++at_) {
            if (!quoted_ && text_[at_] == ',' && parentheses_ == 0 && brackets_ == 0) {
                parts->Add(part_);
                part_.clear();
                continue;
            }
            if (quoted_)
                InsideQuotes();
            else
                OutsideQuotes();
            part_ += text_[at_];
        }
        if (quoted_) Fail("String no terminado.");
        if (parentheses_ > 0) Fail("Falta/an: " + IntToStr(parentheses_) + " Parentésis de cierre"_w);
        if (brackets_ > 0) Fail("Falta/en: " + IntToStr(brackets_) + " Corchtetes de cierre");
        parts->Add(part_);
        return parts;
    }

  private:
    void OutsideQuotes() {
        switch (text_[at_]) {
            case '[':
                ++brackets_;
                break;
            case ']':
                // The depth of parentheses decides: arguments of this framework have brackets only inside calls.
                if (parentheses_ < 1) Fail("Sobra un corchete de cierre en la posición "_w + Place(at_));
                --brackets_;
                break;
            case '(':
                ++parentheses_;
                break;
            case ')':
                if (parentheses_ < 1) Fail("Sobra un parentesis de cierre en la posición "_w + Place(at_));
                --parentheses_;
                break;
            case '\'':
                quoted_ = true;
                break;
            default:
                break;
        }
    }

    void InsideQuotes() {
        if (text_[at_] != '\'') return;
        if (at_ + 1 < text_.size() && text_[at_ + 1] == '\'') {
            part_ += '\'';
            ++at_;
            return;
        }
        quoted_ = false;
        // The last blank that is passed over is what goes into the part, in the closing quote's stead: stored
        // definitions were written against parts of this form.
        while (at_ + 1 < text_.size() && text_[at_ + 1] == ' ') ++at_;
        if (at_ + 1 < text_.size() && text_[at_ + 1] != ',')
            Fail("coma no encontrada en la posición "_w + Place(at_ + 1) + ", encontrado: " + text_[at_ + 1]);
    }

    static AnsiString Place(size_t at) { return IntToStr(static_cast<int64_t>(at) + 1); }
    [[noreturn]] void Fail(const AnsiString& message) const {
        throw Exception("Error al analizar la frase : \n" + text_ + "\n" + message);
    }

    const AnsiString& text_;
    size_t at_ = 0;
    bool quoted_ = false;
    int parentheses_ = 0;
    int brackets_ = 0;
    AnsiString part_;
};

}  // namespace argument_list_detail

std::unique_ptr<TStringList> DecodificaStringComa(const AnsiString& text) {
    return argument_list_detail::Splitter(text).Split();
}

bool EliminaCometesDeString(AnsiString& text) {
    if (text.size() <= 1) return false;
    const AnsiString trimmed = Trim(text);
    if (trimmed.empty() || trimmed.front() != '\'' || trimmed.back() != '\'') return false;
    AnsiString content;
    for (size_t i = 1; i + 1 < trimmed.size(); ++i) {
        content += trimmed[i];
        if (trimmed[i] != '\'') continue;
        if (trimmed[i + 1] != '\'')
            throw Exception("Error al eliminar comillas:\nComilla no doblada en posición: "_w +
                            IntToStr(static_cast<int64_t>(i) + 1) + "\n\n" + trimmed);
        ++i;
    }
    text = std::move(content);
    return true;
}

bool PartsIgualtat(const AnsiString& text, AnsiString& left, AnsiString& right) {
    const size_t equals = text.find('=');
    const bool found = equals != AnsiString::npos;
    const AnsiString before = found ? Trim(text.substr(0, equals)) : AnsiString();
    const AnsiString after = found ? Trim(text.substr(equals + 1)) : AnsiString();
    left = before;
    right = after;
    return found;
}

}  // namespace vyn
