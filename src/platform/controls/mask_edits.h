#pragma once

#include "platform/controls/edits.h"
#include "platform/text/edit_mask.h"
#include "platform/text/exceptions.h"

namespace vyn {

VYN_EXCEPTION(EDBEditError, Exception);

// An edit whose text may go through a mask (edit_mask.h): what is typed is put into the mask's places, what a place
// does not take beeps. Without a mask it is an edit like any other.
//
// With a mask the control edits by itself: characters overwrite the place that the caret stands at, literals are
// stepped over, Backspace and Delete empty places, what is pasted is taken place by place.
class TCustomMaskEdit : public TCustomEdit {
    VYN_OBJECT
  public:
    explicit TCustomMaskEdit(TComponent* owner) : TCustomEdit(owner) {}

    const AnsiString& EditMask() const { return maskText_; }
    // Keeps the value.
    void SetEditMask(const AnsiString& value);
    bool IsMasked() const { return !mask_.IsEmpty(); }
    // The text as shown, with literals and empty places; and any text to be shown, whatever the mask.
    const AnsiString& EditText() const { return TCustomEdit::Text(); }
    void SetEditText(const AnsiString& text) { TCustomEdit::SetCaption(text); }
    // The value: the same without what belongs to the mask. Hides the control's own text on purpose.
    AnsiString Text() const;
    void SetText(const AnsiString& value);
    void Clear() override { SetText(AnsiString()); }
    // Raises EDBEditError, with the caret at the place at fault, when a place that must be filled is empty. A value
    // that is empty altogether passes: whether there must be one is not the mask's affair.
    void ValidateEdit();
    // The caret stands at a place that takes a character, when there is one.
    void CheckCursor();
    // Escape: the text is as it was when the control was entered.
    virtual void Reset();

    void SetCaption(const AnsiString& text) override;
    void ProcessTextEdit(const AnsiString& text, int selStart, int selLength) override;
    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    void DoEnter() override;
    void DoExit() override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;

  private:
    // Empties the places from start to end, puts what is typed from start on; `caret`: where it comes to (-1: behind).
    void Put(int start, int end, std::string_view typed, int caret = -1);
    void PutShown(const AnsiString& shown, int caret);

    AnsiString maskText_;
    vyn::EditMask mask_;
    AnsiString entered_;
};

class TMaskEdit : public TCustomMaskEdit {
    VYN_OBJECT
  public:
    explicit TMaskEdit(TComponent* owner) : TCustomMaskEdit(owner) {}
};

}  // namespace vyn
