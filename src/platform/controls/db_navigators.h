#pragma once

#include <array>

#include "platform/controls/bit_buttons.h"
#include "platform/controls/panels.h"
#include "platform/data/data_set.h"
#include "platform/objects/strings.h"

namespace vyn {

enum class TNavigateBtn {
    nbFirst,
    nbPrior,
    nbNext,
    nbLast,
    nbInsert,
    nbDelete,
    nbEdit,
    nbPost,
    nbCancel,
    nbRefresh,
};
using enum TNavigateBtn;
const EnumType& TypeInfoOf(TypeTag<TNavigateBtn>);
using TButtonSet = Set<TNavigateBtn>;
inline constexpr int kNavigateButtons = 10;

class TDBNavigator;

// One button of a navigator; the peer draws its picture. Not stored.
class TNavButton : public TSpeedButton {
    VYN_OBJECT
  public:
    explicit TNavButton(TComponent* owner) : TSpeedButton(owner) {}
    TNavigateBtn Index() const { return index_; }
    // The one that the keyboard stands at, while the navigator has it.
    bool HasKeyboard() const;
    void Click() override;

  private:
    friend class TDBNavigator;
    TNavigateBtn index_ = nbFirst;
};

using ENavClick = Event<void(TObject* Sender, TNavigateBtn Button)>;

// Buttons that go through the records of a dataset and edit them; each can be pressed when it would come to something.
//
// Keys: left and right go from button to button, the space bar presses. Hints are the texts of Hints, a line for each
// button in their order, or the built-in ones.
class TDBNavigator : public TCustomPanel {
    VYN_OBJECT
  public:
    explicit TDBNavigator(TComponent* owner);
    ~TDBNavigator() override;

    TDataSource* DataSource() const;
    void SetDataSource(TDataSource* value);
    TButtonSet VisibleButtons() const { return visible_; }
    void SetVisibleButtons(TButtonSet value);
    bool Flat() const { return flat_; }
    void SetFlat(bool value);
    TStrings* Hints() { return &hints_; }
    void SetHints(TStrings* value) { hints_.Assign(value); }
    // Asks before a record is deleted.
    bool ConfirmDelete = true;
    TNavButton* Buttons(TNavigateBtn button) const { return buttons_[static_cast<size_t>(button)]; }
    // The button that the keyboard stands at.
    TNavigateBtn FocusedButton() const { return focused_; }
    // Does what the button says, whether or not it can be pressed now: BeforeAction, the dataset's operation, OnClick.
    void BtnClick(TNavigateBtn button);

    ENavClick BeforeAction;
    ENavClick OnClick;

    void KeyDown(uint16_t& key, TShiftState shift) override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;
    void DoEnter() override;
    void DoExit() override;
    void Loaded() override;
    void GetChildren(const std::function<void(TComponent*)>&, TComponent*) override {}

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    void EnabledChanged() override;
    void Resize() override;

  private:
    friend class TNavButton;
    class Link;
    void Arrange();
    void UpdateHints();
    void UpdateButtons();
    void FocusButton(TNavigateBtn button);

    std::unique_ptr<Link> link_;
    std::array<TNavButton*, kNavigateButtons> buttons_{};
    TStringList hints_;
    TButtonSet visible_;
    TNavigateBtn focused_ = nbFirst;
    bool flat_ = false;
};

}  // namespace vyn
