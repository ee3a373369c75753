#pragma once

#include "controls/Uvyneditbox.h"
#include "platform/controls/shortcuts.h"
#include "platform/system/clipboard.h"
#include "unit/datasources/lookup_fixtures.h"

namespace edit_box_fixtures {

using namespace vyn;
using namespace lookup_fixtures;

inline void Press(TWinControl& control, uint16_t key, TShiftState shift = {}) { control.ProcessKeyDown(key, shift); }
// A key and its character, as a keyboard gives them.
inline void Type(TWinControl& control, const AnsiString& text) {
    for (char c : text) {
        uint16_t key = static_cast<unsigned char>(c);
        if (control.ProcessKeyDown(key, {})) continue;
        control.ProcessKeyPress(c);
    }
}
inline void Backspace(TWinControl& control) { Type(control, "\b"); }

// A shown form with a box over the customer of an order and a plain edit to go to.
class EditBoxTest : public LookupTest {
  protected:
    void SetUp() override {
        LookupTest::SetUp();
        other = Make<TEdit>("Other");
        other->SetParent(form.get());
        box = MakeBox("Box", "Customer");
        form->Show();
        box->SetFocus();
        Settle();
        customers.Log.clear();
    }
    void TearDown() override {
        SetMessageBeepPort({});
        LookupTest::TearDown();
    }
    TVynEditBox* MakeBox(const AnsiString& name, const AnsiString& field, TVynDataLinkType type = dlt_Search) {
        auto* made = Make<TVynEditBox>(name);
        made->SetParent(form.get());
        made->SetDataField(field);
        made->SetDataLinkType(type);
        made->SetNChild(10);
        made->SetChildClassName(type == dlt_Class ? "Customers" : "");
        made->SetChildDataKey("Code");
        made->SetChildDataShow("Name");
        made->SetAutoSearch(true);
        made->SetVynDataSource(source);
        return made;
    }
    // The pause that the box waits for.
    void Pause() {
        clock.Advance(1000);
        Settle();
    }
    int Selected() const { return box->SelLength(); }
    TField& Stored() { return *orders->FindField("Customer"); }
    TVynComponent& Record() { return *source->ComponentList()->RecordOf(&box->Link()); }

    TVynEditBox* box = nullptr;
    TEdit* other = nullptr;
};

}  // namespace edit_box_fixtures
