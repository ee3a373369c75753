#pragma once

#include "platform/controls/property_catalogue.h"
#include "platform/controls/win_control.h"
#include "platform/objects/strings.h"

namespace vyn {

enum class TEditCharCase { ecNormal, ecUpperCase, ecLowerCase };
using enum TEditCharCase;
const EnumType& TypeInfoOf(TypeTag<TEditCharCase>);

// Text that users change. Positions and lengths are characters, from 0.
//
// A peer whose widget edits by itself reports through ProcessTextEdit; without one the control does the editing from
// the keys (letters, arrows, Home, End, Backspace, Delete, cut, copy, paste, undo of the last change).
class TCustomEdit : public TWinControl {
    VYN_OBJECT
  public:
    explicit TCustomEdit(TComponent* owner);

    virtual void Clear() { SetCaption(AnsiString()); }
    void SelectAll();
    void ClearSelection();
    void CopyToClipboard();
    void CutToClipboard();
    void PasteFromClipboard();
    void Undo();
    void ClearUndo();
    bool CanUndo() const { return canUndo_; }
    int SelStart() const { return selStart_; }
    void SetSelStart(int value);
    int SelLength() const { return selLength_; }
    void SetSelLength(int value);
    AnsiString SelText() const;
    void SetSelText(const AnsiString& text);
    // The text was changed by the user since this was last set to false.
    bool Modified() const { return modified_; }
    void SetModified(bool value) { modified_ = value; }

    bool AutoSelect() const { return autoSelect_; }
    void SetAutoSelect(bool value) { autoSelect_ = value; }
    TBorderStyle BorderStyle() const { return borderStyle_; }
    virtual void SetBorderStyle(TBorderStyle value);
    TEditCharCase CharCase() const { return charCase_; }
    void SetCharCase(TEditCharCase value);
    bool HideSelection() const { return hideSelection_; }
    void SetHideSelection(bool value);
    int MaxLength() const { return maxLength_; }
    virtual void SetMaxLength(int value);
    // The bound in force; 0: none.
    virtual int MostCharacters() const { return maxLength_; }
    // What the text keeps clear of inside the frame, in pixels.
    virtual int RightTextMargin() const { return 0; }
    // An input method is in the middle of a text that has not been committed: nothing else may be put in place.
    bool IsComposing() const { return peer_ && peer_->IsComposing(); }
    bool OEMConvert = false;
    char PasswordChar() const { return passwordChar_; }
    void SetPasswordChar(char value);
    virtual bool ReadOnly() const { return readOnly_; }
    virtual void SetReadOnly(bool value);
    TAlignment Alignment() const { return alignment_; }
    void SetAlignment(TAlignment value);
    TNotifyEvent OnChange;

    // The user's editing: the whole text and the selection after it. Fires Change when the text differs.
    virtual void ProcessTextEdit(const AnsiString& text, int selStart, int selLength);
    // The user moved the selection.
    void ProcessSelection(int selStart, int selLength);

    void SetCaption(const AnsiString& text) override;
    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    void DoEnter() override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;
    void Loaded() override;
    virtual void Change() { OnChange(this); }

  protected:
    void TextChanged() override;
    void FontChanged() override;
    bool CanAutoSize(int& newWidth, int& newHeight) override;
    virtual bool IsMultiLine() const { return false; }
    // The user is about to change the text; false keeps it. A data-aware edit begins to edit its record.
    virtual bool BeginChange() { return true; }
    // A character that the event's handler left; 0 takes it away.
    virtual void AcceptKey(char& key) {}
    // Replaces the selection as typing does.
    void ReplaceSelection(const AnsiString& text, bool byUser);
    bool EditsByItself() const { return !peer_ || !peer_->EditsText(); }
    AnsiString Cased(const AnsiString& text) const;
    // Another place for the caret, with or without keeping the other end of the selection.
    void MoveCaret(int position, bool extend);
    int CaretPosition() const { return caretAtStart_ ? selStart_ : selStart_ + selLength_; }

  private:
    int selStart_ = 0;
    int selLength_ = 0;
    int maxLength_ = 0;
    AnsiString undoText_;
    TBorderStyle borderStyle_ = TBorderStyle::bsSingle;
    TEditCharCase charCase_ = ecNormal;
    TAlignment alignment_ = taLeftJustify;
    char passwordChar_ = 0;
    bool autoSelect_ = true;
    bool hideSelection_ = true;
    bool modified_ = false;
    bool readOnly_ = false;
    bool canUndo_ = false;
    bool caretAtStart_ = false;
    bool changing_ = false;
};
const PropertyCatalogue& EditProperties();

class TEdit : public TCustomEdit {
    VYN_OBJECT
  public:
    explicit TEdit(TComponent* owner) : TCustomEdit(owner) {}
};

// Text of several lines, which Lines gives one by one (the lines as they were entered, whatever the wrapping).
class TCustomMemo : public TCustomEdit {
    VYN_OBJECT
  public:
    explicit TCustomMemo(TComponent* owner);
    ~TCustomMemo() override;

    TStrings* Lines() { return lines_.get(); }
    void SetLines(TStrings* value);
    TScrollStyle ScrollBars() const { return scrollBars_; }
    void SetScrollBars(TScrollStyle value);
    bool WantReturns() const { return wantReturns_; }
    void SetWantReturns(bool value) { wantReturns_ = value; }
    bool WantTabs() const { return wantTabs_; }
    void SetWantTabs(bool value) { wantTabs_ = value; }
    bool WordWrap() const { return wordWrap_; }
    void SetWordWrap(bool value);
    // Column (x) and line (y) of the caret, from 0.
    TPoint CaretPos() const;
    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;

  protected:
    bool IsMultiLine() const override { return true; }
    bool CanAutoSize(int&, int&) override { return false; }

  private:
    std::unique_ptr<TStrings> lines_;
    TScrollStyle scrollBars_ = ssNone;
    bool wantReturns_ = true;
    bool wantTabs_ = false;
    bool wordWrap_ = true;
};
const PropertyCatalogue& MemoProperties();

class TMemo : public TCustomMemo {
    VYN_OBJECT
  public:
    explicit TMemo(TComponent* owner) : TCustomMemo(owner) {}
};

}  // namespace vyn
