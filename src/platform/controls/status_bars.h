#pragma once

#include "platform/controls/win_control.h"
#include "platform/objects/collection.h"

namespace vyn {

class TStatusBar;

enum class TStatusPanelStyle { psText, psOwnerDraw };
using enum TStatusPanelStyle;
const EnumType& TypeInfoOf(TypeTag<TStatusPanelStyle>);
enum class TStatusPanelBevel { pbNone, pbLowered, pbRaised };
using enum TStatusPanelBevel;
const EnumType& TypeInfoOf(TypeTag<TStatusPanelBevel>);

class TStatusPanel : public TCollectionItem {
    VYN_OBJECT
  public:
    explicit TStatusPanel(TCollection* collection) : TCollectionItem(collection) {}

    TAlignment Alignment() const { return alignment_; }
    void SetAlignment(TAlignment value);
    TStatusPanelBevel Bevel() const { return bevel_; }
    void SetBevel(TStatusPanelBevel value);
    TBiDiMode BiDiMode = bdLeftToRight;
    bool ParentBiDiMode = true;
    bool IsBiDiModeStored() const { return !ParentBiDiMode; }
    TStatusPanelStyle Style() const { return style_; }
    void SetStyle(TStatusPanelStyle value);
    const AnsiString& Text() const { return text_; }
    void SetText(const AnsiString& value);
    int Width() const { return width_; }
    void SetWidth(int value);
    AnsiString DisplayName() const override;
    void Assign(const TPersistent* source) override;

  private:
    AnsiString text_;
    int width_ = 50;
    TAlignment alignment_ = taLeftJustify;
    TStatusPanelBevel bevel_ = pbLowered;
    TStatusPanelStyle style_ = psText;
};

class TStatusPanels : public TOwnedCollection<TStatusPanel> {
  public:
    explicit TStatusPanels(TStatusBar* statusBar);

  protected:
    void Update(TCollectionItem* item) override;

  private:
    TStatusBar* statusBar_;
};

// The line at the bottom of a form: panels, or one simple text.
class TStatusBar : public TWinControl {
    VYN_OBJECT
  public:
    explicit TStatusBar(TComponent* owner);

    // Shows the application's hints while the mouse moves over controls.
    bool AutoHint = false;
    TCollection* Panels() { return &panels_; }
    TStatusPanel* Panel(int index) { return panels_.Items(index); }
    void SetPanels(TCollection* value);
    bool SimplePanel() const { return simplePanel_; }
    void SetSimplePanel(bool value);
    const AnsiString& SimpleText() const { return simpleText_; }
    void SetSimpleText(const AnsiString& value);
    bool SizeGrip() const { return sizeGrip_; }
    void SetSizeGrip(bool value);
    bool UseSystemFont() const { return useSystemFont_; }
    void SetUseSystemFont(bool value);
    TNotifyEvent OnHint;
    TNotifyEvent OnDrawPanel;

  private:
    TStatusPanels panels_;
    AnsiString simpleText_;
    bool simplePanel_ = false;
    bool sizeGrip_ = true;
    bool useSystemFont_ = true;
};

}  // namespace vyn
