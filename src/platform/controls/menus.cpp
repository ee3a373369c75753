#include "platform/controls/menus.h"

#include <algorithm>

#include "platform/controls/control_peer.h"
#include "platform/controls/enum_names.h"
#include "platform/controls/forms.h"
#include "platform/controls/image_lists.h"
#include "platform/objects/class_info.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

const char* const kMenuLine = "-";

VYN_ENUM_NAMES(TMenuBreak, "mbNone", "mbBreak", "mbBarBreak")
VYN_ENUM_NAMES(TPopupAlignment, "paLeft", "paRight", "paCenter")
VYN_ENUM_NAMES(TTrackButton, "tbRightButton", "tbLeftButton")

const ClassInfo& TMenuItem::StaticClass() {
    using Item = TMenuItem;
    static const ClassInfo info = DefineClass<Item, TComponent>("TMenuItem")
                                      .Published("Bitmap", &Item::Bitmap, &Item::SetBitmap)
                                      .Stored(&Item::IsBitmapStored)
                                      .Published("Break", &Item::Break, &Item::SetBreak)
                                      .Default(mbNone)
                                      .Published("Caption", &Item::Caption, &Item::SetCaption)
                                      .Published("Checked", &Item::Checked, &Item::SetChecked)
                                      .Default(false)
                                      .Published("SubMenuImages", &Item::SubMenuImages, &Item::SetSubMenuImages)
                                      .Published("Default", &Item::Default, &Item::SetDefault)
                                      .Default(false)
                                      .Published("Enabled", &Item::Enabled, &Item::SetEnabled)
                                      .Default(true)
                                      .Published("GroupIndex", &Item::GroupIndex, &Item::SetGroupIndex)
                                      .Default(0)
                                      .Published("HelpContext", &Item::HelpContext, &Item::HelpContext)
                                      .Default(0)
                                      .Published("Hint", &Item::Hint, &Item::Hint)
                                      .Published("ImageIndex", &Item::ImageIndex, &Item::SetImageIndex)
                                      .Default(-1)
                                      .Published("RadioItem", &Item::RadioItem, &Item::SetRadioItem)
                                      .Default(false)
                                      .Published("ShortCut", &Item::ShortCut, &Item::SetShortCut)
                                      .Default(0)
                                      .Published("Visible", &Item::Visible, &Item::SetVisible)
                                      .Default(true)
                                      .Event("OnClick", &Item::OnClick);
    return info;
}

TMenuItem::TMenuItem(TComponent* owner) : TComponent(owner) {}

TMenuItem::~TMenuItem() {
    BeginDestruction();
    if (parent_) parent_->Remove(this);
    while (!items_.empty()) delete items_.back();
    DestroyComponents();
}

void TMenuItem::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove && component == subMenuImages_) subMenuImages_ = nullptr;
}

TMenuItem* TMenuItem::Items(int index) const {
    if (index < 0 || index >= Count()) throw EMenuError("Menu index out of range");
    return items_[static_cast<size_t>(index)];
}

void TMenuItem::Insert(int index, TMenuItem* item) {
    if (item->parent_) throw EMenuError("Menu inserted twice");
    if (index < 0 || index > Count()) throw EMenuError("Menu index out of range");
    for (const TMenuItem* at = this; at; at = at->parent_)
        if (at == item) throw EMenuError("Menu inserted twice");
    // Radio groups go up along a menu, so that an entry never splits the groups around it.
    if (!HasState(csLoading) && index > 0 && item->groupIndex_ < items_[static_cast<size_t>(index) - 1]->groupIndex_)
        item->groupIndex_ = items_[static_cast<size_t>(index) - 1]->groupIndex_;
    items_.insert(items_.begin() + index, item);
    item->parent_ = this;
    Changed();
}

void TMenuItem::Delete(int index) {
    TMenuItem* item = Items(index);
    items_.erase(items_.begin() + index);
    item->parent_ = nullptr;
    if (!HasState(csDestroying)) Changed();
}

void TMenuItem::Remove(TMenuItem* item) {
    const int index = IndexOf(item);
    if (index < 0) throw EMenuError("Sub-menu is not in menu");
    Delete(index);
}

int TMenuItem::IndexOf(const TMenuItem* item) const {
    for (size_t i = items_.size(); i-- > 0;)
        if (items_[i] == item) return static_cast<int>(i);
    return -1;
}

TMenuItem* TMenuItem::Find(const AnsiString& caption) const {
    const AnsiString wanted = StripHotkey(caption);
    for (TMenuItem* item : items_)
        if (AnsiSameText(StripHotkey(item->caption_), wanted)) return item;
    return nullptr;
}

void TMenuItem::Clear() {
    while (!items_.empty()) delete items_.back();
}

void TMenuItem::SetMenuIndex(int value) {
    if (!parent_) return;
    TMenuItem* parent = parent_;
    value = std::clamp(value, 0, parent->Count() - 1);
    parent->Remove(this);
    parent->Insert(value, this);
}

TMenu* TMenuItem::GetParentMenu() const {
    const TMenuItem* at = this;
    while (at->parent_) at = at->parent_;
    return at->menu_;
}

void TMenuItem::Changed() {
    if (HasState(csLoading)) return;
    if (TMenu* menu = GetParentMenu()) menu->MenuChanged(this);
}

void TMenuItem::SetCaption(const AnsiString& value) {
    if (caption_ == value) return;
    caption_ = value;
    Changed();
}

void TMenuItem::TurnSiblingsOff() {
    if (!parent_) return;
    for (TMenuItem* item : parent_->items_)
        if (item != this && item->radioItem_ && item->groupIndex_ == groupIndex_) item->checked_ = false;
}

void TMenuItem::SetChecked(bool value) {
    if (checked_ == value) return;
    checked_ = value;
    if (value && radioItem_ && !HasState(csLoading)) TurnSiblingsOff();
    Changed();
}

void TMenuItem::SetDefault(bool value) {
    if (default_ == value) return;
    if (value && parent_)
        for (TMenuItem* item : parent_->items_) item->default_ = false;
    default_ = value;
    Changed();
}

void TMenuItem::SetEnabled(bool value) {
    if (enabled_ == value) return;
    enabled_ = value;
    Changed();
}

void TMenuItem::SetGroupIndex(uint8_t value) {
    if (groupIndex_ == value) return;
    groupIndex_ = value;
    if (checked_ && radioItem_ && !HasState(csLoading)) TurnSiblingsOff();
}

void TMenuItem::SetRadioItem(bool value) {
    if (radioItem_ == value) return;
    radioItem_ = value;
    if (checked_ && value && !HasState(csLoading)) TurnSiblingsOff();
    Changed();
}

void TMenuItem::SetBreak(TMenuBreak value) {
    break_ = value;
    Changed();
}
void TMenuItem::SetShortCut(TShortCut value) {
    if (shortCut_ == value) return;
    shortCut_ = value;
    Changed();
}
void TMenuItem::SetVisible(bool value) {
    if (visible_ == value) return;
    visible_ = value;
    Changed();
}
void TMenuItem::SetImageIndex(int32_t value) {
    if (imageIndex_ == value) return;
    imageIndex_ = value;
    Changed();
}
void TMenuItem::SetSubMenuImages(TCustomImageList* value) {
    subMenuImages_ = value;
    if (value) value->FreeNotification(this);
    Changed();
}

TBitmap* TMenuItem::Bitmap() {
    if (!bitmap_) {
        bitmap_ = std::make_unique<TBitmap>();
        bitmap_->OnChange = [this](TObject*) { Changed(); };
    }
    return bitmap_.get();
}

void TMenuItem::SetBitmap(TBitmap* value) { Bitmap()->Assign(value); }

void TMenuItem::Click() {
    if (enabled_) OnClick(this);
}

TComponent* TMenuItem::GetParentComponent() const {
    if (parent_ && parent_->menu_) return parent_->menu_;
    return parent_;
}

void TMenuItem::SetParentComponent(TComponent* parent) {
    if (parent_) parent_->Remove(this);
    if (auto* menu = ObjectCast<TMenu>(parent))
        menu->Items()->Add(this);
    else if (auto* item = ObjectCast<TMenuItem>(parent))
        item->Add(this);
}

void TMenuItem::GetChildren(const std::function<void(TComponent*)>& visit, TComponent*) {
    for (TMenuItem* item : items_) visit(item);
}

void TMenuItem::SetChildOrder(TComponent* child, int order) {
    if (auto* item = ObjectCast<TMenuItem>(child)) item->SetMenuIndex(order);
}

void TMenuItem::Loaded() {
    TComponent::Loaded();
    Changed();
}

// Menus.

const ClassInfo& TMenu::StaticClass() {
    static const ClassInfo info = DefineClass<TMenu, TComponent>("TMenu");
    return info;
}

const ClassInfo& TMainMenu::StaticClass() {
    static const ClassInfo info = DefineClass<TMainMenu, TMenu>("TMainMenu")
                                      .Published("AutoMerge", &TMainMenu::AutoMerge, &TMainMenu::AutoMerge)
                                      .Default(false)
                                      .Published("Images", &TMainMenu::Images, &TMainMenu::SetImages)
                                      .Event("OnChange", &TMainMenu::OnChange);
    return info;
}

const ClassInfo& TPopupMenu::StaticClass() {
    using Menu = TPopupMenu;
    static const ClassInfo info = DefineClass<Menu, TMenu>("TPopupMenu")
                                      .Published("Alignment", &Menu::Alignment, &Menu::Alignment)
                                      .Default(paLeft)
                                      .Published("AutoPopup", &Menu::AutoPopup, &Menu::AutoPopup)
                                      .Default(true)
                                      .Published("HelpContext", &Menu::HelpContext, &Menu::HelpContext)
                                      .Default(0)
                                      .Published("Images", &Menu::Images, &Menu::SetImages)
                                      .Published("TrackButton", &Menu::TrackButton, &Menu::TrackButton)
                                      .Default(tbRightButton)
                                      .Event("OnChange", &Menu::OnChange)
                                      .Event("OnPopup", &Menu::OnPopup);
    return info;
}

TMenu::TMenu(TComponent* owner) : TComponent(owner), items_(std::make_unique<TMenuItem>(nullptr)) {
    items_->menu_ = this;
}

TMenu::~TMenu() {
    BeginDestruction();
    items_->menu_ = nullptr;
    items_.reset();
    DestroyComponents();
}

void TMenu::SetImages(TCustomImageList* value) {
    images_ = value;
    if (value) value->FreeNotification(this);
    MenuChanged(nullptr);
}

void TMenu::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove && component == images_) images_ = nullptr;
}

void TMenu::MenuChanged(TMenuItem*) {
    if (HasState(csLoading) || HasState(csDestroying)) return;
    OnChange(this);
    if (Form) Form->PeerChanged(PeerChange::Menu);
}

namespace menu_detail {

TMenuItem* Find(TMenuItem* item, TShortCut shortCut) {
    for (int i = 0; i < item->Count(); ++i) {
        TMenuItem* each = item->Items(i);
        if (each->ShortCut() == shortCut && each->Enabled()) return each;
        if (TMenuItem* found = Find(each, shortCut)) return found;
    }
    return nullptr;
}

}  // namespace menu_detail

TMenuItem* TMenu::FindShortCut(TShortCut shortCut) {
    return shortCut == scNone ? nullptr : menu_detail::Find(items_.get(), shortCut);
}

bool TMenu::IsShortCut(TShortCut shortCut) {
    TMenuItem* item = FindShortCut(shortCut);
    if (!item) return false;
    std::vector<TMenuItem*> above;
    for (TMenuItem* at = item->Parent(); at && at != items_.get(); at = at->Parent()) {
        if (!at->Enabled()) return true;  // a disabled menu keeps its entries' short cuts to itself
        above.insert(above.begin(), at);
    }
    for (TMenuItem* each : above) each->Click();
    // The click above may have taken the entry away or disabled it.
    item = FindShortCut(shortCut);
    if (item) item->Click();
    return true;
}

void TMenu::GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) {
    items_->GetChildren(visit, root);
}

void TMenu::SetChildOrder(TComponent* child, int order) { items_->SetChildOrder(child, order); }

void TPopupMenu::Popup(int x, int y) {
    OnPopup(this);
    if (PeerFactory* factory = GetPeerFactory()) factory->ShowPopupMenu(*this, {x, y});
}

}  // namespace vyn
