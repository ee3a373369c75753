#pragma once

#include <vector>

#include "platform/controls/image_lists.h"
#include "platform/controls/win_control.h"

namespace vyn {

class TPageControl;

enum class TTabStyle { tsTabs, tsButtons, tsFlatButtons };
using enum TTabStyle;
const EnumType& TypeInfoOf(TypeTag<TTabStyle>);
enum class TTabPosition { tpTop, tpBottom, tpLeft, tpRight };
using enum TTabPosition;
const EnumType& TypeInfoOf(TypeTag<TTabPosition>);
using TTabChangingEvent = Event<void(TObject* Sender, bool& AllowChange)>;

// One page of a page control, which is its parent.
class TTabSheet : public TWinControl {
    VYN_OBJECT
  public:
    explicit TTabSheet(TComponent* owner);
    ~TTabSheet() override;

    TPageControl* PageControl() const { return pageControl_; }
    void SetPageControl(TPageControl* value);
    // The place among all pages; -1 without a page control.
    int PageIndex() const;
    void SetPageIndex(int value);
    // The place among the pages that have a tab; -1 for one that has none.
    int TabIndex() const;
    bool TabVisible() const { return tabVisible_; }
    void SetTabVisible(bool value);
    bool Highlighted() const { return highlighted_; }
    void SetHighlighted(bool value);
    int32_t ImageIndex() const { return imageIndex_; }
    void SetImageIndex(int32_t value);
    TNotifyEvent OnShow;
    TNotifyEvent OnHide;

    void SetParent(TWinControl* parent) override;
    void SetParentComponent(TComponent* parent) override;
    void ReadState(TFiler& reader) override;

  protected:
    void TextChanged() override;
    void VisibleChanged() override;

  private:
    friend class TPageControl;
    TPageControl* pageControl_ = nullptr;
    int32_t imageIndex_ = 0;
    bool tabVisible_ = true;
    bool highlighted_ = false;
};

// Pages, one of which is shown. The user's change asks OnChanging first.
class TPageControl : public TWinControl {
    VYN_OBJECT
  public:
    explicit TPageControl(TComponent* owner);
    ~TPageControl() override;

    int PageCount() const { return static_cast<int>(pages_.size()); }
    TTabSheet* Pages(int index) const;  // raises EListError
    TTabSheet* ActivePage() const { return activePage_; }
    // Shows the page; fires nothing but the pages' OnHide and OnShow.
    void SetActivePage(TTabSheet* page);
    int ActivePageIndex() const;
    void SetActivePageIndex(int value);
    TTabSheet* FindNextPage(TTabSheet* current, bool goForward, bool checkTabVisible) const;
    void SelectNextPage(bool goForward);
    // The user chose a page: OnChanging, the change, OnChange; false when it was refused.
    bool ProcessTabChange(TTabSheet* page);
    // The client area less the tabs.
    TRect DisplayRect() const;
    void AdjustClientRect(TRect& rect) const override;

    bool HotTrack() const { return hotTrack_; }
    void SetHotTrack(bool value);
    TCustomImageList* Images() const { return images_; }
    void SetImages(TCustomImageList* value);
    bool MultiLine() const { return multiLine_; }
    void SetMultiLine(bool value);
    bool OwnerDraw = false;
    bool RaggedRight = false;
    bool ScrollOpposite = false;
    TTabStyle Style() const { return style_; }
    void SetStyle(TTabStyle value);
    int16_t TabHeight() const { return tabHeight_; }
    void SetTabHeight(int16_t value);
    int16_t TabWidth() const { return tabWidth_; }
    void SetTabWidth(int16_t value);
    TTabPosition TabPosition() const { return tabPosition_; }
    void SetTabPosition(TTabPosition value);
    TNotifyEvent OnChange;
    TTabChangingEvent OnChanging;

    void KeyDown(uint16_t& key, TShiftState shift) override;
    // The arrows go from tab to tab.
    bool WantsKey(uint16_t key, TShiftState shift) const override;
    bool DialogKey(uint16_t key, TShiftState shift) override;
    bool DialogChar(char key) override;
    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;
    void SetChildOrder(TComponent* child, int order) override;
    void Loaded() override;

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    void ControlInserted(TControl* control) override;
    void ControlRemoved(TControl* control) override;
    void FontChanged() override;

  private:
    friend class TTabSheet;
    void InsertPage(TTabSheet* page);
    void RemovePage(TTabSheet* page);
    void ShowPage(TTabSheet* page);
    void PageChanged(TTabSheet* page);
    void LayoutChanged();

    std::vector<TTabSheet*> pages_;
    TTabSheet* activePage_ = nullptr;
    TTabSheet* newActivePage_ = nullptr;  // as read, until the form is loaded
    TCustomImageList* images_ = nullptr;
    TTabStyle style_ = tsTabs;
    TTabPosition tabPosition_ = tpTop;
    int16_t tabHeight_ = 0;
    int16_t tabWidth_ = 0;
    bool hotTrack_ = false;
    bool multiLine_ = false;
};

}  // namespace vyn
