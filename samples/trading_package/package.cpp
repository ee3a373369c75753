// The sample's extension package: a component class of its own, which stored forms use as any other.
#include "app/Utvynapp.h"
#include "persistence/Uvynclss.h"
#include "platform/controls/labels.h"
#include "platform/objects/class_table.h"

namespace trading {

using namespace vyn;

// A label that shows today's date behind a text of its own.
class TEtiquetaData : public TLabel {
    VYN_OBJECT
  public:
    explicit TEtiquetaData(TComponent* owner) : TLabel(owner) {}
    const AnsiString& Prefix() const { return prefix_; }
    void SetPrefix(const AnsiString& value) {
        prefix_ = value;
        ShowDate();
    }
    void Loaded() override {
        TLabel::Loaded();
        ShowDate();
    }

  private:
    void ShowDate() { SetCaption(prefix_ + FormatDateTime("dd/mm/yyyy", Date())); }
    AnsiString prefix_;
};

const ClassInfo& TEtiquetaData::StaticClass() {
    static const ClassInfo info = DefineClass<TEtiquetaData, TLabel>("TEtiquetaData")
                                      .Published("Caption", &TControl::Caption, &TControl::SetCaption)
                                      .NeverStored()
                                      .Published("Prefix", &TEtiquetaData::Prefix, &TEtiquetaData::SetPrefix);
    return info;
}

}  // namespace trading

extern "C" void InitializeVynBPL(vyn::TVynApp*) {
    vyn::AddLinkedClass(&trading::TEtiquetaData::StaticClass());
    vyn::RegistraClasse(vyn::TTipusClasse::Samples, &trading::TEtiquetaData::StaticClass(), false, vyn::TNotifyEvent());
}

extern "C" void FinalizeVynBPL(vyn::TVynApp*) {
    // The application object takes the package's classes out of every table.
}
