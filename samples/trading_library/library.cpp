// The sample's procedure library: procedures that the application's nodes call by name.
#include "app/Utvynapp.h"
#include "foundation/Uparametres.h"
#include "platform/access/ado.h"
#include "platform/controls/forms.h"
#include "platform/controls/labels.h"
#include "platform/streams/reader.h"
#include "platform/system/application.h"
#include "platform/text/numbers.h"

namespace trading {

using namespace vyn;

constexpr int kWidth = 360;
constexpr int kHeight = 150;
constexpr int kMargin = 20;

// Opens a small window with the figures of the last day of the data; gives it back in PRMS01.
void ResumDelDia(TObject*) {
    TADOQuery query(nullptr);
    query.SetConnection(ObjectCast<TADOConnection>(FindGlobalComponent("Dades.Connexio")));
    query.SQL()->SetText(
        "SELECT data, count(*) AS factures, sum(total) AS total FROM factures GROUP BY data ORDER BY data DESC LIMIT "
        "1");
    query.Open();
    AnsiString text = "Encara no hi ha factures.";
    if (!query.IsEmpty())
        text = AnsiString("Últim dia facturat: "_w) + query.FieldByName("data")->DisplayText() +
               "\r\n\r\nFactures: " + query.FieldByName("factures")->DisplayText() +
               "\r\nImport: " + FloatToStrF(query.FieldByName("total")->AsFloat(), ffNumber, 15, 2);
    auto* form = new TForm(Application());
    form->SetCaption(Parametres()->AsString("PRME02", "Resum"));
    form->SetBorderStyle(TFormBorderStyle::bsDialog);
    form->SetPosition(poScreenCenter);
    form->SetClientSize(kWidth, kHeight);
    auto* label = new TLabel(form);
    label->SetAutoSize(false);
    label->SetBounds(kMargin, kMargin, kWidth - 2 * kMargin, kHeight - 2 * kMargin);
    label->SetWordWrap(true);
    label->SetCaption(text);
    label->SetParent(form);
    form->OnClose = [](TObject*, TCloseAction& action) { action = caFree; };
    Parametres()->SetParametreValue("PRMS01", Variant(static_cast<TComponent*>(form)->TComponent::Handle()));
}

}  // namespace trading

extern "C" void REGISTER_LIBRARY(vyn::TProcedureVyn* registry) {
    registry->RegisterProcedure("Resum_del_dia", &trading::ResumDelDia);
}

extern "C" void HLPResum_del_dia(vyn::AnsiString* help) {
    *help = "Opens a window with the figures of the last day that was invoiced.";
}
