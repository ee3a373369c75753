#include "platform/controls/db_navigators.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/shortcuts.h"
#include "platform/system/message_dialogs.h"

namespace vyn {

VYN_ENUM_NAMES(TNavigateBtn, "nbFirst", "nbPrior", "nbNext", "nbLast", "nbInsert", "nbDelete", "nbEdit", "nbPost",
               "nbCancel", "nbRefresh")

namespace navigator_detail {

constexpr const char* kHints[kNavigateButtons] = {"First record",  "Prior record",  "Next record", "Last record",
                                                  "Insert record", "Delete record", "Edit record", "Post edit",
                                                  "Cancel edit",   "Refresh data"};

TNavigateBtn At(int index) { return static_cast<TNavigateBtn>(index); }

TButtonSet All() {
    TButtonSet all;
    for (int i = 0; i < kNavigateButtons; ++i) all.Include(At(i));
    return all;
}

}  // namespace navigator_detail

const ClassInfo& TNavButton::StaticClass() {
    static const ClassInfo info = DefineClass<TNavButton, TSpeedButton>("TNavButton");
    return info;
}

bool TNavButton::HasKeyboard() const {
    const auto* navigator = ObjectCast<TDBNavigator>(Parent());
    return navigator && navigator->Focused() && navigator->FocusedButton() == index_;
}

void TNavButton::Click() {
    if (auto* navigator = ObjectCast<TDBNavigator>(Parent())) {
        navigator->FocusButton(index_);
        navigator->BtnClick(index_);
    }
}

// The navigator's ear at its source.
class TDBNavigator::Link : public TDataLink {
  public:
    explicit Link(TDBNavigator& navigator) : navigator_(navigator) {}

  protected:
    void Changed(DataEvent event, TField*) override {
        if (event != DataEvent::UpdateRecord && event != DataEvent::CheckBrowse) navigator_.UpdateButtons();
    }

  private:
    TDBNavigator& navigator_;
};

const ClassInfo& TDBNavigator::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&PanelProperties());
        own.Add("DataSource", &TDBNavigator::DataSource, &TDBNavigator::SetDataSource);
        own.Add("VisibleButtons", &TDBNavigator::VisibleButtons, &TDBNavigator::SetVisibleButtons)
            .Default(navigator_detail::All());
        own.Add("Flat", &TDBNavigator::Flat, &TDBNavigator::SetFlat).Default(false);
        own.Add("Hints", &TDBNavigator::Hints, &TDBNavigator::SetHints);
        own.Add("ConfirmDelete", &TDBNavigator::ConfirmDelete, &TDBNavigator::ConfirmDelete).Default(true);
        own.Event("BeforeAction", &TDBNavigator::BeforeAction);
        own.Event("OnClick", &TDBNavigator::OnClick);
        return Publish(DefineClass<TDBNavigator, TCustomPanel>("TDBNavigator"), own,
                       "DataSource VisibleButtons Align Anchors Constraints DragCursor DragKind DragMode Enabled Flat "
                       "Ctl3D Hints ParentCtl3D ParentShowHint PopupMenu ConfirmDelete ShowHint TabOrder TabStop "
                       "Visible BeforeAction OnClick OnContextPopup OnDblClick OnDragDrop OnDragOver OnEndDock "
                       "OnEndDrag OnEnter OnExit OnResize OnStartDock OnStartDrag");
    }();
    return info;
}

TDBNavigator::TDBNavigator(TComponent* owner) : TCustomPanel(owner), link_(std::make_unique<Link>(*this)) {
    constexpr int kWidth = 241;
    constexpr int kHeight = 25;
    ControlStyle.Exclude(csAcceptsControls);
    ControlStyle.Exclude(csSetCaption);
    SetBevelOuter(bvNone);
    visible_ = navigator_detail::All();
    for (int i = 0; i < kNavigateButtons; ++i) {
        auto* button = new TNavButton(this);
        button->index_ = navigator_detail::At(i);
        button->SetEnabled(false);
        buttons_[static_cast<size_t>(i)] = button;
        button->SetParent(this);
    }
    hints_.OnChange = [this](TObject*) { UpdateHints(); };
    UpdateHints();
    SetInitialSize(kWidth, kHeight);
    Arrange();
}

TDBNavigator::~TDBNavigator() {
    BeginDestruction();
    link_.reset();
}

TDataSource* TDBNavigator::DataSource() const { return link_ ? link_->DataSource() : nullptr; }

void TDBNavigator::SetDataSource(TDataSource* value) {
    if (value == DataSource()) return;
    link_->SetDataSource(value);
    if (value) value->FreeNotification(this);
}

void TDBNavigator::Notification(TComponent* component, TOperation operation) {
    TCustomPanel::Notification(component, operation);
    if (operation == opRemove && link_ && component == link_->DataSource()) link_->SetDataSource(nullptr);
}

void TDBNavigator::SetVisibleButtons(TButtonSet value) {
    visible_ = value;
    Arrange();
}

void TDBNavigator::SetFlat(bool value) {
    flat_ = value;
    for (TNavButton* button : buttons_) button->SetFlat(value);
}

void TDBNavigator::UpdateHints() {
    for (int i = 0; i < kNavigateButtons; ++i) {
        const bool own = i < hints_.Count() && !hints_.At(i).empty();
        buttons_[static_cast<size_t>(i)]->SetHint(own ? hints_.At(i) : AnsiString(navigator_detail::kHints[i]));
    }
}

// The buttons share the width; what does not divide goes to the first ones, a pixel each.
void TDBNavigator::Arrange() {
    int count = 0;
    for (const TNavButton* button : buttons_) count += button && visible_.Contains(button->Index());
    if (count == 0) count = 1;
    const int width = Width() / count;
    int rest = Width() % count;
    int left = 0;
    for (TNavButton* button : buttons_) {
        if (!button) return;  // while the navigator is made
        const bool shown = visible_.Contains(button->Index());
        button->SetVisible(shown);
        if (!shown) continue;
        const int own = width + (rest > 0);
        rest -= rest > 0;
        button->SetBounds(left, 0, own, Height());
        left += own;
    }
}

void TDBNavigator::Resize() {
    TCustomPanel::Resize();
    Arrange();
}

void TDBNavigator::Loaded() {
    TCustomPanel::Loaded();
    Arrange();
    UpdateButtons();
}

void TDBNavigator::EnabledChanged() {
    TCustomPanel::EnabledChanged();
    UpdateButtons();
}

void TDBNavigator::UpdateButtons() {
    if (HasState(csDestroying)) return;
    TDataSet* data = link_ && Enabled() ? link_->ActiveDataSet() : nullptr;
    const bool empty = !data || (data->Bof() && data->Eof());
    const bool changes = data && data->CanModify();
    const bool editing = data && data->IsEditing();
    const auto put = [&](TNavigateBtn button, bool enabled) { Buttons(button)->SetEnabled(enabled); };
    put(nbFirst, data && !data->Bof());
    put(nbPrior, data && !data->Bof());
    put(nbNext, data && !data->Eof());
    put(nbLast, data && !data->Eof());
    put(nbInsert, changes);
    put(nbDelete, changes && !empty);
    put(nbEdit, changes && !editing);
    put(nbPost, changes && editing);
    put(nbCancel, changes && editing);
    put(nbRefresh, data != nullptr);
}

void TDBNavigator::BtnClick(TNavigateBtn button) {
    TDataSet* data = link_->ActiveDataSet();
    if (data) {
        BeforeAction(this, button);
        switch (button) {
            case nbFirst:
                data->First();
                break;
            case nbPrior:
                data->Prior();
                break;
            case nbNext:
                data->Next();
                break;
            case nbLast:
                data->Last();
                break;
            case nbInsert:
                data->Insert();
                break;
            case nbDelete:
                if (!ConfirmDelete || MessageDlg("Delete record?", mtConfirmation, {mbOK, mbCancel}) != mrCancel)
                    data->Delete();
                break;
            case nbEdit:
                data->Edit();
                break;
            case nbPost:
                data->Post();
                break;
            case nbCancel:
                data->Cancel();
                break;
            case nbRefresh:
                data->Refresh();
                break;
        }
    }
    OnClick(this, button);
}

void TDBNavigator::FocusButton(TNavigateBtn button) {
    if (TabStop() && !Focused() && CanFocus()) SetFocus();
    const TNavigateBtn last = focused_;
    focused_ = button;
    Buttons(last)->Invalidate();
    Buttons(button)->Invalidate();
}

void TDBNavigator::DoEnter() {
    if (!visible_.Contains(focused_))
        for (int i = kNavigateButtons - 1; i >= 0; --i)
            if (visible_.Contains(navigator_detail::At(i))) focused_ = navigator_detail::At(i);
    Buttons(focused_)->Invalidate();
    TCustomPanel::DoEnter();
}

void TDBNavigator::DoExit() {
    Buttons(focused_)->Invalidate();
    TCustomPanel::DoExit();
}

bool TDBNavigator::WantsKey(uint16_t key, TShiftState shift) const {
    return key == VK_LEFT || key == VK_RIGHT || TCustomPanel::WantsKey(key, shift);
}

void TDBNavigator::KeyDown(uint16_t& key, TShiftState shift) {
    TCustomPanel::KeyDown(key, shift);
    if (key == VK_SPACE) {
        key = 0;
        if (Buttons(focused_)->Enabled()) Buttons(focused_)->Click();
        return;
    }
    if (key != VK_LEFT && key != VK_RIGHT) return;
    const int step = key == VK_LEFT ? -1 : 1;
    key = 0;
    for (int at = static_cast<int>(focused_) + step; at >= 0 && at < kNavigateButtons; at += step)
        if (visible_.Contains(navigator_detail::At(at))) {
            FocusButton(navigator_detail::At(at));
            return;
        }
}

}  // namespace vyn
