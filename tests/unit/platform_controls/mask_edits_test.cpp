// Edits with a mask: what typing does to the places.
#include <gtest/gtest.h>

#include "platform/controls/mask_edits.h"
#include "platform/controls/shortcuts.h"
#include "platform/system/message_dialogs.h"
#include "unit/platform_controls/control_support.h"

using namespace control_test;

namespace {

class MaskEdits : public testing::Test {
  protected:
    MaskEdits() : form(nullptr) {
        edit = Put<TMaskEdit>(&form, 0, 0, 100, 25);
        other = Put<TEdit>(&form, 0, 40, 100, 25);
        form.Show();
        SetMessageBeepPort([this](unsigned) { ++beeps; });
    }
    ~MaskEdits() override { SetMessageBeepPort({}); }
    void Begin(const char* mask, const char* value = "") {
        edit->SetEditMask(mask);
        edit->SetText(value);
        other->SetFocus();
        edit->SetFocus();
        edit->SetSelStart(0);
    }

    TForm form;
    TMaskEdit* edit;
    TEdit* other;
    int beeps = 0;
};

}  // namespace

TEST_F(MaskEdits, WithoutAMaskItIsAnEdit) {
    Begin("");
    Type(edit, "any thing");
    EXPECT_EQ(edit->Text(), "any thing");
    EXPECT_FALSE(edit->IsMasked());
}

TEST_F(MaskEdits, TypingFillsPlacesAndStepsOverLiterals) {
    Begin("(00) 00-aa;0;_");
    EXPECT_EQ(edit->EditText(), "(__) __-__");
    Type(edit, "1234");
    EXPECT_EQ(edit->EditText(), "(12) 34-__");
    EXPECT_EQ(edit->SelStart(), 8);
    Type(edit, "x");
    EXPECT_EQ(edit->Text(), "1234x");
    EXPECT_EQ(beeps, 0);
}

TEST_F(MaskEdits, WhatAPlaceDoesNotTakeBeeps) {
    Begin("00");
    Type(edit, "x");
    EXPECT_EQ(beeps, 1);
    EXPECT_EQ(edit->EditText(), "__");
    Type(edit, "123");
    EXPECT_EQ(edit->EditText(), "12");
    EXPECT_EQ(beeps, 2) << "there is no third place";
}

TEST_F(MaskEdits, ALiteralThatIsTypedIsGoneTo) {
    Begin("99/99;1;_");
    Type(edit, "5/11");
    EXPECT_EQ(edit->EditText(), "5_/11");
    EXPECT_EQ(beeps, 0);
}

TEST_F(MaskEdits, BackspaceAndDeleteEmptyPlaces) {
    Begin("00-00;0;_", "1234");
    edit->SetSelStart(3);
    Type(edit, "\b");
    EXPECT_EQ(edit->EditText(), "1_-34");
    EXPECT_EQ(edit->SelStart(), 1);
    Press(edit, VK_DELETE);
    EXPECT_EQ(edit->EditText(), "1_-34") << "the place at the caret is empty already";
    edit->SetSelStart(2);
    Press(edit, VK_DELETE);
    EXPECT_EQ(edit->EditText(), "1_-_4") << "the literal is stepped over";
    edit->SelectAll();
    Press(edit, VK_DELETE);
    EXPECT_EQ(edit->EditText(), "__-__");
    EXPECT_EQ(edit->Text(), "");
    Type(edit, "\b");
    EXPECT_EQ(beeps, 0);
}

TEST_F(MaskEdits, ASelectionIsTypedOver) {
    Begin("00-00;0;_", "1234");
    edit->SelectAll();
    Type(edit, "9");
    EXPECT_EQ(edit->EditText(), "9_-__");
}

TEST_F(MaskEdits, WhatIsPastedIsTakenPlaceByPlace) {
    Begin("00-00;0;_");
    edit->ProcessTextEdit("12-34__-__", 5, 0);  // the widget's idea of it
    EXPECT_EQ(edit->EditText(), "12-34");
    edit->ProcessTextEdit("12", 2, 0);  // cut behind the second
    EXPECT_EQ(edit->EditText(), "12-__");
}

TEST_F(MaskEdits, EscapeBringsBackWhatWasThere) {
    Begin("00", "12");
    EXPECT_FALSE(edit->WantsKey(VK_ESCAPE, {}));
    Type(edit, "9");
    EXPECT_TRUE(edit->WantsKey(VK_ESCAPE, {}));
    Type(edit, "\x1B");
    EXPECT_EQ(edit->Text(), "12");
}

TEST_F(MaskEdits, AnIncompleteValueKeepsTheKeyboard) {
    Begin("00-99;0;_");
    Type(edit, "1");
    try {
        other->SetFocus();
        FAIL() << "left with a required place empty";
    } catch (const EDBEditError& error) {
        EXPECT_NE(error.Message().find("\"1_-__\" is not complete"), AnsiString::npos);
    }
    EXPECT_TRUE(edit->Focused());
    EXPECT_EQ(edit->SelStart(), 1) << "the caret shows where";
    Type(edit, "2");
    other->SetFocus();
    EXPECT_EQ(edit->Text(), "12");
}

TEST_F(MaskEdits, AnEmptyValuePasses) {
    Begin("00", "12");
    edit->SelectAll();
    Press(edit, VK_DELETE);
    other->SetFocus();
    EXPECT_TRUE(other->Focused());
}

TEST_F(MaskEdits, AnotherMaskKeepsTheValue) {
    Begin("00-00;0;_", "1234");
    edit->SetEditMask("0/0/0/0;0;_");
    EXPECT_EQ(edit->Text(), "1234");
    EXPECT_EQ(edit->EditText(), "1/2/3/4");
    edit->SetEditMask("");
    EXPECT_EQ(edit->EditText(), "1234");
}

TEST_F(MaskEdits, AStoredFormKeepsMaskAndValue) {
    Begin("00-00;0;_", "1234");
    edit->SetName("Edit1");
    const auto again = Restored(Stored(form));
    auto* read = ObjectCast<TMaskEdit>(again->FindComponent("Edit1"));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->Text(), "1234");
    EXPECT_EQ(read->EditText(), "12-34");
}
