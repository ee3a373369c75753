#pragma once

#include <vector>

#include "platform/controls/control_types.h"
#include "platform/controls/pictures.h"
#include "platform/controls/shortcuts.h"
#include "platform/objects/component.h"

namespace vyn {

class TCustomForm;
class TCustomImageList;
class TMenu;

enum class TMenuBreak { mbNone, mbBreak, mbBarBreak };
using enum TMenuBreak;
const EnumType& TypeInfoOf(TypeTag<TMenuBreak>);
enum class TPopupAlignment { paLeft, paRight, paCenter };
using enum TPopupAlignment;
const EnumType& TypeInfoOf(TypeTag<TPopupAlignment>);
enum class TTrackButton { tbRightButton, tbLeftButton };
using enum TTrackButton;
const EnumType& TypeInfoOf(TypeTag<TTrackButton>);

extern const char* const kMenuLine;  // "-", the caption of a separator

// One entry of a menu, with the entries below it. Frees them. Raises EMenuError for a place that is none
// ("Menu index out of range") and for an item that is in a menu already ("Menu inserted twice").
class TMenuItem : public TComponent {
    VYN_OBJECT
  public:
    explicit TMenuItem(TComponent* owner);
    ~TMenuItem() override;

    // Entries below.
    int Count() const { return static_cast<int>(items_.size()); }
    TMenuItem* Items(int index) const;
    void Insert(int index, TMenuItem* item);
    void Add(TMenuItem* item) { Insert(Count(), item); }
    // Takes the item out; it lives on.
    void Delete(int index);
    void Remove(TMenuItem* item);
    int IndexOf(const TMenuItem* item) const;
    TMenuItem* Find(const AnsiString& caption) const;
    void Clear();
    TMenuItem* Parent() const { return parent_; }
    int MenuIndex() const { return parent_ ? parent_->IndexOf(this) : -1; }
    void SetMenuIndex(int value);
    // The menu at the top, or null.
    TMenu* GetParentMenu() const;
    bool IsLine() const { return caption_ == kMenuLine; }

    const AnsiString& Caption() const { return caption_; }
    void SetCaption(const AnsiString& value);
    bool Checked() const { return checked_; }
    // Checking a radio item unchecks the others of its group around it.
    void SetChecked(bool value);
    bool Default() const { return default_; }
    void SetDefault(bool value);
    bool Enabled() const { return enabled_; }
    void SetEnabled(bool value);
    uint8_t GroupIndex() const { return groupIndex_; }
    void SetGroupIndex(uint8_t value);
    bool RadioItem() const { return radioItem_; }
    void SetRadioItem(bool value);
    TMenuBreak Break() const { return break_; }
    void SetBreak(TMenuBreak value);
    TShortCut ShortCut() const { return shortCut_; }
    void SetShortCut(TShortCut value);
    bool Visible() const { return visible_; }
    void SetVisible(bool value);
    int32_t ImageIndex() const { return imageIndex_; }
    void SetImageIndex(int32_t value);
    TCustomImageList* SubMenuImages() const { return subMenuImages_; }
    void SetSubMenuImages(TCustomImageList* value);
    TBitmap* Bitmap();
    void SetBitmap(TBitmap* value);
    bool IsBitmapStored() const { return bitmap_ && !bitmap_->Empty(); }
    const TBitmap* BitmapOrNull() const { return bitmap_.get(); }
    AnsiString Hint;
    THelpContext HelpContext = 0;
    TNotifyEvent OnClick;

    // What choosing the entry does; nothing when it is disabled.
    virtual void Click();

    bool HasParent() const override { return parent_ != nullptr; }
    TComponent* GetParentComponent() const override;
    void SetParentComponent(TComponent* parent) override;
    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;
    void SetChildOrder(TComponent* child, int order) override;
    void Loaded() override;

  protected:
    void Notification(TComponent* component, TOperation operation) override;

  private:
    friend class TMenu;
    void Changed();
    void TurnSiblingsOff();

    TMenuItem* parent_ = nullptr;
    TMenu* menu_ = nullptr;  // of the topmost entry
    std::vector<TMenuItem*> items_;
    AnsiString caption_;
    std::unique_ptr<TBitmap> bitmap_;
    TCustomImageList* subMenuImages_ = nullptr;
    TShortCut shortCut_ = 0;
    int32_t imageIndex_ = -1;
    TMenuBreak break_ = mbNone;
    uint8_t groupIndex_ = 0;
    bool checked_ = false;
    bool default_ = false;
    bool enabled_ = true;
    bool radioItem_ = false;
    bool visible_ = true;
};

class TMenu : public TComponent {
    VYN_OBJECT
  public:
    explicit TMenu(TComponent* owner);
    ~TMenu() override;

    // The entry that holds the topmost ones.
    TMenuItem* Items() { return items_.get(); }
    TCustomImageList* Images() const { return images_; }
    void SetImages(TCustomImageList* value);
    // Clicks the enabled entry with this short cut, after clicking those above it (so that they may update it); true
    // when there was one.
    virtual bool IsShortCut(TShortCut shortCut);
    TMenuItem* FindShortCut(TShortCut shortCut);
    // The form of a main menu, or whatever shows this menu.
    TCustomForm* Form = nullptr;
    TNotifyEvent OnChange;

    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;
    void SetChildOrder(TComponent* child, int order) override;

  protected:
    void Notification(TComponent* component, TOperation operation) override;

  private:
    friend class TMenuItem;
    void MenuChanged(TMenuItem* item);

    std::unique_ptr<TMenuItem> items_;
    TCustomImageList* images_ = nullptr;
};

class TMainMenu : public TMenu {
    VYN_OBJECT
  public:
    explicit TMainMenu(TComponent* owner) : TMenu(owner) {}
    bool AutoMerge = false;  // kept for forms that store it; menus are not merged
};

class TPopupMenu : public TMenu {
    VYN_OBJECT
  public:
    explicit TPopupMenu(TComponent* owner) : TMenu(owner) {}
    TPopupAlignment Alignment = paLeft;
    bool AutoPopup = true;
    THelpContext HelpContext = 0;
    TTrackButton TrackButton = tbRightButton;
    // The control that it was opened for.
    TComponent* PopupComponent = nullptr;
    TNotifyEvent OnPopup;
    // Fires OnPopup and shows the menu at a place of the screen, when there is a toolkit.
    virtual void Popup(int x, int y);
};

}  // namespace vyn
