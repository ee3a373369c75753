#include "platform/controls/pages.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/forms.h"
#include "platform/controls/property_catalogue.h"
#include "platform/controls/shortcuts.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace page_detail {

constexpr int kEdge = 4;        // between the frame and the page
constexpr int kTabPadding = 8;  // what a tab is higher than its text

}  // namespace page_detail

VYN_ENUM_NAMES(TTabStyle, "tsTabs", "tsButtons", "tsFlatButtons")
VYN_ENUM_NAMES(TTabPosition, "tpTop", "tpBottom", "tpLeft", "tpRight")

const ClassInfo& TTabSheet::StaticClass() {
    static const ClassInfo info = [] {
        using Sheet = TTabSheet;
        PropertyCatalogue own(&WinControlProperties());
        own.Add("Highlighted", &Sheet::Highlighted, &Sheet::SetHighlighted).Default(false);
        own.Add("ImageIndex", &Sheet::ImageIndex, &Sheet::SetImageIndex).Default(0);
        PropertyInfo index = Property("PageIndex", &Sheet::PageIndex, &Sheet::SetPageIndex);
        index.Stored = [](const TObject&) { return false; };  // the order of the pages says it
        own.Add(std::move(index));
        own.Add("TabVisible", &Sheet::TabVisible, &Sheet::SetTabVisible).Default(true);
        // The page control places its pages and shows one of them.
        for (const char* name : {"Left", "Top", "Width", "Height"}) {
            PropertyInfo place = *TControl::StaticClass().FindProperty(name);
            if (AnsiString(name) == "Width" || AnsiString(name) == "Height")
                place.Stored = [](const TObject&) { return false; };
            own.Add(std::move(place));
        }
        PropertyInfo visible = ControlProperties()["Visible"];
        visible.Stored = [](const TObject&) { return false; };
        own.Add(std::move(visible));
        own.Event("OnHide", &Sheet::OnHide);
        own.Event("OnShow", &Sheet::OnShow);
        return Publish(DefineClass<Sheet, TWinControl>("TTabSheet"), own,
                       "BorderWidth Caption DragMode Enabled Font Height Highlighted ImageIndex Left Constraints "
                       "PageIndex ParentFont ParentShowHint PopupMenu ShowHint TabVisible Top Visible Width "
                       "OnContextPopup OnDragDrop OnDragOver OnEndDrag OnEnter OnExit OnHide OnMouseDown OnMouseMove "
                       "OnMouseUp OnResize OnShow OnStartDrag");
    }();
    return info;
}

TTabSheet::TTabSheet(TComponent* owner) : TWinControl(owner) {
    ControlStyle = {csAcceptsControls, csSetCaption, csDoubleClicks};
    SetAlign(alClient);
    PutVisible(false);
}

TTabSheet::~TTabSheet() {
    ComponentState.Include(csDestroying);
    if (pageControl_) pageControl_->RemovePage(this);
    DestroyContents();
}

void TTabSheet::SetPageControl(TPageControl* value) {
    if (pageControl_ == value) return;
    SetParent(value);
}

void TTabSheet::SetParent(TWinControl* parent) {
    if (Parent() == parent) return;
    if (pageControl_) pageControl_->RemovePage(this);
    TWinControl::SetParent(parent);
    if (auto* control = ObjectCast<TPageControl>(parent)) control->InsertPage(this);
}

void TTabSheet::SetParentComponent(TComponent* parent) { TWinControl::SetParentComponent(parent); }

void TTabSheet::ReadState(TFiler& reader) { TWinControl::ReadState(reader); }

int TTabSheet::PageIndex() const {
    if (!pageControl_) return -1;
    const auto& pages = pageControl_->pages_;
    return static_cast<int>(std::find(pages.begin(), pages.end(), this) - pages.begin());
}

void TTabSheet::SetPageIndex(int value) {
    if (!pageControl_) return;
    auto& pages = pageControl_->pages_;
    if (value < 0 || value >= static_cast<int>(pages.size()))
        throw EListError(IntToStr(value) + " is an invalid PageIndex value. PageIndex must be between 0 and " +
                         IntToStr(static_cast<int>(pages.size()) - 1));
    pages.erase(std::find(pages.begin(), pages.end(), this));
    pages.insert(pages.begin() + value, this);
    pageControl_->PeerChanged(PeerChange::Items);
}

int TTabSheet::TabIndex() const {
    if (!pageControl_ || !tabVisible_) return -1;
    int index = 0;
    for (const TTabSheet* page : pageControl_->pages_) {
        if (page == this) return index;
        if (page->tabVisible_) ++index;
    }
    return -1;
}

void TTabSheet::SetTabVisible(bool value) {
    if (tabVisible_ == value) return;
    tabVisible_ = value;
    if (!pageControl_) return;
    pageControl_->PeerChanged(PeerChange::Items);
    // The page shown went out of sight: the next one that has a tab.
    if (!value && pageControl_->activePage_ == this && !HasState(csLoading)) {
        TTabSheet* next = pageControl_->FindNextPage(this, true, true);
        pageControl_->SetActivePage(next == this ? nullptr : next);
    }
}

void TTabSheet::SetHighlighted(bool value) {
    highlighted_ = value;
    if (pageControl_) pageControl_->PeerChanged(PeerChange::Items);
}

void TTabSheet::SetImageIndex(int32_t value) {
    imageIndex_ = value;
    if (pageControl_) pageControl_->PeerChanged(PeerChange::Items);
}

void TTabSheet::TextChanged() {
    TWinControl::TextChanged();
    if (pageControl_) pageControl_->PageChanged(this);
}

void TTabSheet::VisibleChanged() {
    TWinControl::VisibleChanged();
    if (HasState(csDestroying) || HasState(csLoading)) return;
    if (Visible())
        OnShow(this);
    else
        OnHide(this);
}

// Page controls.

const ClassInfo& TPageControl::StaticClass() {
    static const ClassInfo info = [] {
        using Pages = TPageControl;
        PropertyCatalogue own(&WinControlProperties());
        own.Add("ActivePage", &Pages::ActivePage, &Pages::SetActivePage);
        own.Add("HotTrack", &Pages::HotTrack, &Pages::SetHotTrack).Default(false);
        own.Add("Images", &Pages::Images, &Pages::SetImages);
        own.Add("MultiLine", &Pages::MultiLine, &Pages::SetMultiLine).Default(false);
        own.Add("OwnerDraw", &Pages::OwnerDraw, &Pages::OwnerDraw).Default(false);
        own.Add("RaggedRight", &Pages::RaggedRight, &Pages::RaggedRight).Default(false);
        own.Add("ScrollOpposite", &Pages::ScrollOpposite, &Pages::ScrollOpposite).Default(false);
        own.Add("Style", &Pages::Style, &Pages::SetStyle).Default(tsTabs);
        own.Add("TabHeight", &Pages::TabHeight, &Pages::SetTabHeight).Default(0);
        own.Add("TabPosition", &Pages::TabPosition, &Pages::SetTabPosition).Default(tpTop);
        own.Add("TabStop", &TWinControl::TabStop, &TWinControl::SetTabStop).Default(true);
        own.Add("TabWidth", &Pages::TabWidth, &Pages::SetTabWidth).Default(0);
        own.Event("OnChange", &Pages::OnChange);
        own.Event("OnChanging", &Pages::OnChanging);
        return Publish(DefineClass<Pages, TWinControl>("TPageControl"), own,
                       "ActivePage Align Anchors BiDiMode Constraints DockSite DragCursor DragKind DragMode Enabled "
                       "Font HotTrack Images MultiLine OwnerDraw ParentBiDiMode ParentFont ParentShowHint PopupMenu "
                       "RaggedRight ScrollOpposite ShowHint Style TabHeight TabOrder TabPosition TabStop TabWidth "
                       "Visible OnChange OnChanging OnContextPopup OnDockDrop OnDockOver OnDragDrop OnDragOver "
                       "OnEndDock OnEndDrag OnEnter OnExit OnGetSiteInfo OnMouseDown OnMouseMove OnMouseUp OnResize "
                       "OnStartDock OnStartDrag OnUnDock");
    }();
    return info;
}

TPageControl::TPageControl(TComponent* owner) : TWinControl(owner) {
    ControlStyle = {csDoubleClicks, csOpaque};
    SetInitialSize(289, 193);
    SetTabStop(true);
}

TPageControl::~TPageControl() {
    ComponentState.Include(csDestroying);
    for (TTabSheet* page : pages_) page->pageControl_ = nullptr;
    pages_.clear();
    activePage_ = nullptr;
    DestroyContents();
}

void TPageControl::Notification(TComponent* component, TOperation operation) {
    TWinControl::Notification(component, operation);
    if (operation == opRemove && component == images_) images_ = nullptr;
}

TTabSheet* TPageControl::Pages(int index) const {
    if (index < 0 || index >= PageCount()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return pages_[static_cast<size_t>(index)];
}

void TPageControl::InsertPage(TTabSheet* page) {
    pages_.push_back(page);
    page->pageControl_ = this;
    PeerChanged(PeerChange::Items);
    if (!activePage_ && !HasState(csLoading) && !page->HasState(csLoading)) ShowPage(page);
}

void TPageControl::RemovePage(TTabSheet* page) {
    TTabSheet* next = FindNextPage(page, true, !HasState(csDesigning));
    if (next == page) next = nullptr;
    std::erase(pages_, page);
    page->pageControl_ = nullptr;
    if (newActivePage_ == page) newActivePage_ = nullptr;
    if (activePage_ == page) {
        activePage_ = nullptr;
        if (!HasState(csDestroying)) ShowPage(next);
    }
    PeerChanged(PeerChange::Items);
}

void TPageControl::ControlInserted(TControl* control) { TWinControl::ControlInserted(control); }
void TPageControl::ControlRemoved(TControl* control) { TWinControl::ControlRemoved(control); }

void TPageControl::ShowPage(TTabSheet* page) {
    if (activePage_ == page) return;
    TTabSheet* before = activePage_;
    activePage_ = page;
    // The keyboard leaves the page with it, and comes to the first control of the new one.
    TCustomForm* form = GetParentForm(this);
    const bool focusInside = form && before && before->ContainsControl(form->ActiveControl());
    if (page) {
        page->SetVisible(true);
        page->BringToFront();
    }
    if (before) before->SetVisible(false);
    PeerChanged(PeerChange::Selection);
    if (focusInside && page && activePage_ == page) {
        TWinControl* first = page->FindNextControl(nullptr, true, true, false);
        if (first)
            form->SetActiveControl(first);
        else if (CanFocus())
            form->SetActiveControl(this);
    }
}

void TPageControl::SetActivePage(TTabSheet* page) {
    if (page && page->PageControl() != this) return;
    if (HasState(csLoading)) {
        newActivePage_ = page;
        return;
    }
    ShowPage(page);
}

int TPageControl::ActivePageIndex() const { return activePage_ ? activePage_->PageIndex() : -1; }

void TPageControl::SetActivePageIndex(int value) {
    SetActivePage(value >= 0 && value < PageCount() ? pages_[static_cast<size_t>(value)] : nullptr);
}

TTabSheet* TPageControl::FindNextPage(TTabSheet* current, bool goForward, bool checkTabVisible) const {
    const int count = PageCount();
    if (count == 0) return nullptr;
    const auto found = std::find(pages_.begin(), pages_.end(), current);
    const int start = found != pages_.end() ? static_cast<int>(found - pages_.begin()) : goForward ? count - 1 : 0;
    int at = start;
    do {
        at = goForward ? (at + 1) % count : (at + count - 1) % count;
        TTabSheet* page = pages_[static_cast<size_t>(at)];
        if (!checkTabVisible || page->tabVisible_) return page;
    } while (at != start);
    return nullptr;
}

void TPageControl::SelectNextPage(bool goForward) {
    TTabSheet* page = FindNextPage(activePage_, goForward, true);
    if (page && page != activePage_) ProcessTabChange(page);
}

bool TPageControl::ProcessTabChange(TTabSheet* page) {
    if (page == activePage_) return true;
    bool allow = true;
    OnChanging(this, allow);
    if (!allow) {
        PeerChanged(PeerChange::Selection);  // the tab goes back
        return false;
    }
    ShowPage(page);
    OnChange(this);
    return true;
}

TRect TPageControl::DisplayRect() const {
    TRect rect = {page_detail::kEdge, page_detail::kEdge, std::max(Width() - page_detail::kEdge, 0),
                  std::max(Height() - page_detail::kEdge, 0)};
    const bool anyTab =
        std::any_of(pages_.begin(), pages_.end(), [](const TTabSheet* page) { return page->tabVisible_; });
    if (!anyTab) return rect;
    const int tab = tabHeight_ > 0 ? tabHeight_ : EffectiveFont().LineHeight() + page_detail::kTabPadding;
    switch (tabPosition_) {
        case tpTop:
            rect.Top += tab;
            break;
        case tpBottom:
            rect.Bottom -= tab;
            break;
        case tpLeft:
            rect.Left += tab;
            break;
        case tpRight:
            rect.Right -= tab;
            break;
    }
    return rect;
}

void TPageControl::AdjustClientRect(TRect& rect) const { rect = DisplayRect(); }

void TPageControl::LayoutChanged() {
    PeerChanged(PeerChange::Style);
    if (!HasState(csLoading)) Realign();
}

void TPageControl::SetHotTrack(bool value) {
    hotTrack_ = value;
    PeerChanged(PeerChange::Style);
}
void TPageControl::SetImages(TCustomImageList* value) {
    images_ = value;
    if (value) value->FreeNotification(this);
    PeerChanged(PeerChange::Items);
}
void TPageControl::SetMultiLine(bool value) {
    multiLine_ = value;
    LayoutChanged();
}
void TPageControl::SetStyle(TTabStyle value) {
    style_ = value;
    LayoutChanged();
}
void TPageControl::SetTabHeight(int16_t value) {
    if (value < 0) throw EInvalidOperation("A tab's height cannot be negative");
    tabHeight_ = value;
    LayoutChanged();
}
void TPageControl::SetTabWidth(int16_t value) {
    if (value < 0) throw EInvalidOperation("A tab's width cannot be negative");
    tabWidth_ = value;
    LayoutChanged();
}
void TPageControl::SetTabPosition(TTabPosition value) {
    if (tabPosition_ == value) return;
    tabPosition_ = value;
    LayoutChanged();
}

void TPageControl::FontChanged() {
    TWinControl::FontChanged();
    if (!HasState(csLoading)) Realign();
}

void TPageControl::PageChanged(TTabSheet*) { PeerChanged(PeerChange::Items); }

bool TPageControl::WantsKey(uint16_t key, TShiftState shift) const {
    return key == VK_LEFT || key == VK_RIGHT || TWinControl::WantsKey(key, shift);
}

void TPageControl::KeyDown(uint16_t& key, TShiftState shift) {
    TWinControl::KeyDown(key, shift);
    if (key != VK_LEFT && key != VK_RIGHT) return;
    if (peer_ || !shift.Empty()) return;
    SelectNextPage(key == VK_RIGHT);
    key = 0;
}

// Ctrl+Tab goes to the next page of the page control that has the keyboard in it.
bool TPageControl::DialogKey(uint16_t key, TShiftState shift) {
    if (key == VK_TAB && shift.Contains(ssCtrl)) {
        const TCustomForm* form = GetParentForm(this);
        if (form && ContainsControl(form->ActiveControl())) {
            if (activePage_ && activePage_->DialogKey(key, shift)) return true;
            SelectNextPage(!shift.Contains(ssShift));
            return true;
        }
    }
    return TWinControl::DialogKey(key, shift);
}

bool TPageControl::DialogChar(char key) {
    if (TWinControl::DialogChar(key)) return true;
    if (!Showing()) return false;
    for (TTabSheet* page : pages_) {
        if (!page->tabVisible_ || !IsAccel(static_cast<uint8_t>(key), page->Caption())) continue;
        ProcessTabChange(page);
        return true;
    }
    return false;
}

void TPageControl::GetChildren(const std::function<void(TComponent*)>& visit, TComponent*) {
    for (TTabSheet* page : std::vector<TTabSheet*>(pages_)) visit(page);
}

void TPageControl::SetChildOrder(TComponent* child, int order) {
    if (auto* page = ObjectCast<TTabSheet>(child); page && page->PageControl() == this)
        page->SetPageIndex(std::clamp(order, 0, PageCount() - 1));
}

void TPageControl::Loaded() {
    TWinControl::Loaded();
    TTabSheet* page = newActivePage_ ? newActivePage_ : activePage_;
    newActivePage_ = nullptr;
    if (!page) page = FindNextPage(nullptr, true, true);
    ShowPage(page);
}

}  // namespace vyn
