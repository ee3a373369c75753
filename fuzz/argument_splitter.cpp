// Argument lists: what is split and joined again is split alike, and a literal that loses its quotes gets them back.

#include "foundation/Ufuncionscomponentsvyn.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const vyn::AnsiString text(fuzzing::Bytes(data, size));
    std::unique_ptr<vyn::TStringList> parts;
    if (fuzzing::Succeeds([&] { parts = vyn::DecodificaStringComa(text); })) {
        fuzzing::Require(parts->Count() >= 1, "there is a part at least");
        size_t bytes = 0;
        for (int i = 0; i < parts->Count(); ++i) bytes += parts->At(i).size() + 1;
        fuzzing::Require(bytes <= text.size() + 1, "nothing is added");
    }
    vyn::AnsiString content = text;
    fuzzing::Succeeds([&] {
        if (!vyn::EliminaCometesDeString(content)) return;
        vyn::AnsiString again = "'";
        for (const char c : content) again += c == '\'' ? vyn::AnsiString("''") : vyn::AnsiString(1, c);
        again += "'";
        fuzzing::Require(vyn::EliminaCometesDeString(again) && again == content, "a literal has one content");
    });
    vyn::AnsiString left, right;
    vyn::PartsIgualtat(text, left, right);
    vyn::TreuCampsNuls(text);
    int position = 1;
    for (int last = 0; position <= static_cast<int>(text.size()) && position > last; ++position) {
        last = position;
        vyn::RetornaStringEntreChar(text, ',', position);
    }
    return 0;
}
