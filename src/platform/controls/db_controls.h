#pragma once

#include "platform/controls/field_bound.h"
#include "platform/controls/labels.h"
#include "platform/controls/mask_edits.h"
#include "platform/controls/pictures.h"

// Controls that show a field, and take what users type into it.
namespace vyn {

// A label that shows a field.
class TDBText : public FieldShown<TCustomLabel> {
    VYN_OBJECT
  public:
    explicit TDBText(TComponent* owner);
    // The display text; without a field, empty.
    AnsiString GetLabelText() const override;

  protected:
    void DataChange() override;
};

// What edits and memos over a field have in common. Typing begins to edit the record where its source allows that;
// characters that the field does not take beep; Escape takes back what was typed.
template <class Base>
class TextBound : public FieldBound<Base> {
  public:
    using FieldBound<Base>::FieldBound;

    // Whether the keyboard finds nothing to change: by the form, the field, the dataset or the source.
    bool ReadOnly() const override { return !this->CanChange(); }
    void Change() override;
    void DoEnter() override;

  protected:
    void DoExit() override;
    bool BeginChange() override { return this->EditField(); }
    bool TakeBack() override;
    void AcceptKey(char& key) override;
    void EditingChange() override { this->PeerChanged(PeerChange::Style); }
    void DataChange() final;
    // Shows the field as it is now: to be edited, or to be looked at.
    virtual void ShowField(bool toEdit) = 0;

  private:
    bool entered_ = false;
    bool showing_ = false;
};

// A line of text. Shows the display text, and while it has the keyboard the text to be edited, through the field's edit
// mask.
class TDBEdit : public TextBound<TCustomMaskEdit> {
    VYN_OBJECT
  public:
    explicit TDBEdit(TComponent* owner) : TextBound(owner) {}
    // MaxLength, or as many as the field takes.
    int MostCharacters() const override;
    void Reset() override { TakeBack(); }

  protected:
    void ShowField(bool toEdit) override;
    void UpdateData() override;
};

// A long text. Without AutoDisplay it shows the field's name until the user asks for the text by a double click or
// Enter.
class TDBMemo : public TextBound<TCustomMemo> {
    VYN_OBJECT
  public:
    explicit TDBMemo(TComponent* owner) : TextBound(owner) {}
    bool AutoDisplay() const { return autoDisplay_; }
    void SetAutoDisplay(bool value);
    void LoadMemo();
    bool ReadOnly() const override { return !loaded_ || TextBound::ReadOnly(); }
    void DblClick() override;

  protected:
    void AcceptKey(char& key) override;
    void ShowField(bool toEdit) override;
    void UpdateData() override;

  private:
    bool autoDisplay_ = true;
    bool loaded_ = false;
    bool asked_ = false;
};

// A picture from a field: bitmaps, icons, PNG and JPEG files. What is none of these is shown as none, and stays.
// Without AutoDisplay as TDBMemo. Delete empties the field, Escape takes that back.
class TDBImage : public FieldBound<TCustomControl> {
    VYN_OBJECT
  public:
    explicit TDBImage(TComponent* owner);
    bool AutoDisplay() const { return autoDisplay_; }
    void SetAutoDisplay(bool value);
    TBorderStyle BorderStyle() const { return borderStyle_; }
    void SetBorderStyle(TBorderStyle value);
    bool Center() const { return center_; }
    void SetCenter(bool value);
    bool Stretch() const { return stretch_; }
    void SetStretch(bool value);
    bool QuickDraw = true;
    void LoadPicture();
    // The picture; a change goes to the field.
    TPicture* Picture() { return &picture_; }
    const TPicture& PictureRef() const { return picture_; }
    // Where the picture is drawn, in the client area; shrunk to fit when Stretch, in its proportions.
    TRect DestRect(int pictureWidth, int pictureHeight) const;
    // Shown instead of the picture that was not asked for yet; empty when it was.
    AnsiString Placeholder() const;
    void DblClick() override;
    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;

  protected:
    void DataChange() override;
    void UpdateData() override;

  private:
    TPicture picture_;
    TBorderStyle borderStyle_ = TBorderStyle::bsSingle;
    bool autoDisplay_ = true;
    bool center_ = true;
    bool stretch_ = false;
    bool loaded_ = false;
    bool showing_ = false;
};

}  // namespace vyn
