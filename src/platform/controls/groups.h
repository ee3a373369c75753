#pragma once

#include <memory>
#include <vector>

#include "platform/controls/buttons.h"
#include "platform/objects/strings.h"

namespace vyn {

// A frame with a caption.
class TCustomGroupBox : public TCustomControl {
    VYN_OBJECT
  public:
    explicit TCustomGroupBox(TComponent* owner);
    void AdjustClientRect(TRect& rect) const override;
    bool DialogChar(char key) override;

  protected:
    void TextChanged() override;
    void FontChanged() override;
};

class TGroupBox : public TCustomGroupBox {
    VYN_OBJECT
  public:
    explicit TGroupBox(TComponent* owner) : TCustomGroupBox(owner) {}
};

// A frame with a radio button for each line of Items. The buttons are the group's own and are not stored.
class TCustomRadioGroup : public TCustomGroupBox {
    VYN_OBJECT
  public:
    explicit TCustomRadioGroup(TComponent* owner);
    ~TCustomRadioGroup() override;

    TStrings* Items() { return &items_; }
    void SetItems(TStrings* value) { items_.Assign(value); }
    int ItemIndex() const { return itemIndex_; }
    // Below -1: -1; beyond the last: the last. A change clicks.
    void SetItemIndex(int value);
    int Columns() const { return columns_; }
    // 1 to 16.
    void SetColumns(int value);
    TRadioButton* Buttons(int index) const;
    // A data-aware group refuses changes.
    virtual bool CanModify() { return true; }
    void GetChildren(const std::function<void(TComponent*)>&, TComponent*) override {}
    void Loaded() override;
    void SetFocus() override;

  protected:
    void Resize() override;
    void FontChanged() override;
    void EnabledChanged() override;
    virtual void ButtonClicked(int index);

  private:
    void ItemsChanged();
    void ArrangeButtons();

    TStringList items_;
    std::vector<TRadioButton*> buttons_;
    int itemIndex_ = -1;
    int columns_ = 1;
    bool updating_ = false;
};
const PropertyCatalogue& RadioGroupProperties();

class TRadioGroup : public TCustomRadioGroup {
    VYN_OBJECT
  public:
    explicit TRadioGroup(TComponent* owner) : TCustomRadioGroup(owner) {}
};

}  // namespace vyn
