#include "programs/host/node_forms.h"

#include <openssl/evp.h>

#include "platform/controls/edits.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/labels.h"
#include "platform/controls/scroll_boxes.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"
#include "programs/host/version.h"

namespace vyn {

namespace node_forms_detail {

constexpr char kScheme[] = "pbkdf2-sha256";
constexpr int kIterations = 100000;
constexpr int kMostIterations = 10000000;
constexpr size_t kKeyBytes = 32;

AnsiString HexOf(const unsigned char* bytes, size_t count) {
    AnsiString text;
    for (size_t i = 0; i < count; ++i) text += LowerCase(IntToHex(bytes[i], 2));
    return text;
}

AnsiString Derive(const AnsiString& password, const AnsiString& salt, int iterations) {
    unsigned char key[kKeyBytes];
    PKCS5_PBKDF2_HMAC(password.data(), static_cast<int>(password.size()),
                      reinterpret_cast<const unsigned char*>(salt.data()), static_cast<int>(salt.size()), iterations,
                      EVP_sha256(), kKeyBytes, key);
    return HexOf(key, kKeyBytes);
}

// Compares in a time that does not tell where the texts differ.
bool SameSecret(const AnsiString& a, const AnsiString& b) {
    if (a.size() != b.size()) return false;
    unsigned char difference = 0;
    for (size_t i = 0; i < a.size(); ++i) difference |= static_cast<unsigned char>(a[i] ^ b[i]);
    return difference == 0;
}

template <class T>
T* PartOf(const TComponent& form, const char* name) {
    return ObjectCast<T>(form.FindComponent(name));
}

}  // namespace node_forms_detail

const ClassInfo& TFRMMenu::StaticClass() {
    static const ClassInfo info =
        DefineForm<TFRMMenu, TCustomFRM>("TFRMMenu").Method("EntradaClick", &TFRMMenu::EntradaClick);
    return info;
}

bool TFRMMenu::NodeLoaded() {
    if (!VynApp() || IDNode() < 1) return true;
    const TNodeArbre node = VynApp()->Tree().GetIDNode(IDNode());
    SetCaption(node.Name);
    if (auto* title = node_forms_detail::PartOf<TLabel>(*this, "Titol")) title->SetCaption(PlainCaption(node.Name));
    if (auto* box = node_forms_detail::PartOf<TScrollBox>(*this, "Entrades"))
        entries_.Fill(*box, VynApp()->Tree().Childs(IDNode(), false),
                      [this](TObject* sender) { EntradaClick(sender); });
    return true;
}

void TFRMMenu::EntradaClick(TObject* sender) {
    auto* component = ObjectCast<TComponent>(sender);
    if (component && GetNodeOpener()) GetNodeOpener()->OpenNode(static_cast<int>(component->Tag));
}

const ClassInfo& TFRMPassword::StaticClass() {
    static const ClassInfo info =
        DefineForm<TFRMPassword, TCustomFRM>("TFRMPassword")
            .Published("PasswordHash", &TFRMPassword::PasswordHash, &TFRMPassword::PasswordHash)
            .Method("AcceptarClick", &TFRMPassword::AcceptarClick);
    return info;
}

AnsiString TFRMPassword::HashOf(const AnsiString& password, const AnsiString& salt) {
    using namespace node_forms_detail;
    return AnsiString(kScheme) + "$" + IntToStr(kIterations) + "$" + salt + "$" + Derive(password, salt, kIterations);
}

bool TFRMPassword::PasswordFits(const AnsiString& password) const {
    using namespace node_forms_detail;
    if (PasswordHash.empty()) return true;
    std::vector<AnsiString> parts(1);
    for (char c : PasswordHash) {
        if (c == '$')
            parts.emplace_back();
        else
            parts.back() += c;
    }
    if (parts.size() != 4 || parts[0] != kScheme) return false;
    const int iterations = StrToIntDef(parts[1], 0);
    if (iterations < 1 || iterations > kMostIterations) return false;
    return SameSecret(LowerCase(parts[3]), Derive(password, parts[2], iterations));
}

void TFRMPassword::AcceptarClick(TObject*) {
    auto* edit = node_forms_detail::PartOf<TEdit>(*this, "Contrasenya");
    if (PasswordFits(edit ? edit->Text() : AnsiString())) {
        SetModalResult(mrOk);
        return;
    }
    if (auto* message = node_forms_detail::PartOf<TLabel>(*this, "Missatge"))
        message->SetCaption("La contrasenya no és correcta."_w);
    if (edit) {
        edit->SelectAll();
        if (edit->CanFocus()) SetActiveControl(edit);
    }
}

const ClassInfo& TFRMQuiSoc::StaticClass() {
    static const ClassInfo info = DefineForm<TFRMQuiSoc, TCustomFRM>("TFRMQuiSoc");
    return info;
}

bool TFRMQuiSoc::NodeLoaded() {
    Describe(VynApp());
    return true;
}

void TFRMQuiSoc::Describe(TVynApp* app) {
    using node_forms_detail::PartOf;
    if (auto* name = PartOf<TLabel>(*this, "Nom"))
        name->SetCaption(PlainCaption(app && !app->AppName().empty() ? app->AppName() : AnsiString("Vyn")));
    AnsiString text = AnsiString("Vyn ") + CT_VersioPrograma;
    if (app) {
        text += "\r\n" + app->AppFile();
        if (app->SavedInfo().SaveCount > 0)
            text += "\r\n" + "Desada "_w + IntToStr(app->SavedInfo().SaveCount) + " vegades, l'última el "_w +
                    DateTimeToStr(app->SavedInfo().SaveDate);
    }
    if (auto* details = PartOf<TLabel>(*this, "Detalls")) details->SetCaption(text);
}

}  // namespace vyn
