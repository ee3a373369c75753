#pragma once

#include <vector>

#include "platform/controls/image_lists.h"
#include "platform/controls/win_control.h"

namespace vyn {

class TMenuItem;
class TToolBar;

enum class TToolButtonStyle { tbsButton, tbsCheck, tbsDropDown, tbsSeparator, tbsDivider };
using enum TToolButtonStyle;
const EnumType& TypeInfoOf(TypeTag<TToolButtonStyle>);

// A button of a tool bar, which is its parent and places it.
class TToolButton : public TGraphicControl {
    VYN_OBJECT
  public:
    explicit TToolButton(TComponent* owner);
    ~TToolButton() override;

    TToolBar* ToolBar() const { return toolBar_; }
    int Index() const;
    bool AllowAllUp() const { return allowAllUp_; }
    void SetAllowAllUp(bool value);
    bool Down() const { return down_; }
    void SetDown(bool value);
    TPopupMenu* DropdownMenu() const { return dropdownMenu_; }
    void SetDropdownMenu(TPopupMenu* value);
    bool Grouped() const { return grouped_; }
    void SetGrouped(bool value);
    int32_t ImageIndex() const { return imageIndex_; }
    void SetImageIndex(int32_t value);
    bool Indeterminate() const { return indeterminate_; }
    void SetIndeterminate(bool value);
    bool Marked() const { return marked_; }
    void SetMarked(bool value);
    TMenuItem* MenuItem() const { return menuItem_; }
    void SetMenuItem(TMenuItem* value);
    TToolButtonStyle Style() const { return style_; }
    void SetStyle(TToolButtonStyle value);
    bool Wrap() const { return wrap_; }
    void SetWrap(bool value);
    bool IsWidthStored() const;
    bool IsSeparator() const { return style_ == tbsSeparator || style_ == tbsDivider; }
    // A press by mouse or mnemonic: goes down or up when it is a check button, then clicks.
    void ProcessPress();
    // Opens the drop-down menu; false without one.
    bool CheckMenuDropdown();
    void Click() override;
    bool DialogChar(char key) override;
    void SetBounds(int left, int top, int width, int height) override;
    void SetParent(TWinControl* parent) override;

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    void TextChanged() override;
    void VisibleChanged() override;

  private:
    friend class TToolBar;
    void BarChanged();
    void TurnOthersUp();

    TToolBar* toolBar_ = nullptr;
    TPopupMenu* dropdownMenu_ = nullptr;
    TMenuItem* menuItem_ = nullptr;
    int32_t imageIndex_ = -1;
    TToolButtonStyle style_ = tbsButton;
    bool allowAllUp_ = false;
    bool down_ = false;
    bool grouped_ = false;
    bool indeterminate_ = false;
    bool marked_ = false;
    bool wrap_ = false;
};

// A row of buttons (and other controls), from left to right, going on in the next row where a button says Wrap or
// (Wrapable) the bar is full.
class TToolBar : public TWinControl {
    VYN_OBJECT
  public:
    explicit TToolBar(TComponent* owner);
    ~TToolBar() override;

    int ButtonCount() const { return static_cast<int>(items_.size()); }
    // Every control on the bar, in order; Buttons gives the tool buttons among them and null for the others.
    TControl* Items(int index) const;
    TToolButton* Buttons(int index) const;
    int RowCount() const { return rowCount_; }

    int ButtonHeight() const { return buttonHeight_; }
    void SetButtonHeight(int value);
    int ButtonWidth() const { return buttonWidth_; }
    void SetButtonWidth(int value);
    TEdgeBorders EdgeBorders() const { return edgeBorders_; }
    void SetEdgeBorders(TEdgeBorders value);
    TEdgeStyle EdgeInner() const { return edgeInner_; }
    void SetEdgeInner(TEdgeStyle value);
    TEdgeStyle EdgeOuter() const { return edgeOuter_; }
    void SetEdgeOuter(TEdgeStyle value);
    bool Flat() const { return flat_; }
    void SetFlat(bool value);
    TCustomImageList* Images() const { return images_; }
    void SetImages(TCustomImageList* value) { SetImageList(images_, value); }
    TCustomImageList* DisabledImages() const { return disabledImages_; }
    void SetDisabledImages(TCustomImageList* value) { SetImageList(disabledImages_, value); }
    TCustomImageList* HotImages() const { return hotImages_; }
    void SetHotImages(TCustomImageList* value) { SetImageList(hotImages_, value); }
    int Indent() const { return indent_; }
    void SetIndent(int value);
    bool List() const { return list_; }
    void SetList(bool value);
    bool ShowCaptions() const { return showCaptions_; }
    void SetShowCaptions(bool value);
    bool Transparent() const { return transparent_; }
    void SetTransparent(bool value);
    bool Wrapable() const { return wrapable_; }
    void SetWrapable(bool value);

    void AlignControls(TControl* changed) override;
    void AdjustClientRect(TRect& rect) const override;
    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;
    void SetChildOrder(TComponent* child, int order) override;
    void Loaded() override;

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    void ControlInserted(TControl* control) override;
    void ControlRemoved(TControl* control) override;
    bool CanAutoSize(int& newWidth, int& newHeight) override;
    void FontChanged() override;
    void ContentsMoved() override { AlignControls(nullptr); }

  private:
    friend class TToolButton;
    void SetImageList(TCustomImageList*& field, TCustomImageList* value);
    TSize ButtonSize(const TToolButton& button) const;
    void SortItems();
    void Changed();

    std::vector<TControl*> items_;
    TCustomImageList* images_ = nullptr;
    TCustomImageList* disabledImages_ = nullptr;
    TCustomImageList* hotImages_ = nullptr;
    int buttonHeight_ = 22;
    int buttonWidth_ = 23;
    int indent_ = 0;
    int rowCount_ = 0;
    TEdgeBorders edgeBorders_ = {ebTop};
    TEdgeStyle edgeInner_ = esRaised;
    TEdgeStyle edgeOuter_ = esLowered;
    bool flat_ = false;
    bool list_ = false;
    bool showCaptions_ = false;
    bool transparent_ = false;
    bool wrapable_ = true;
    bool placing_ = false;
};

}  // namespace vyn
