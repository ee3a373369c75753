#include "platform/controls/bit_buttons.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/forms.h"
#include "platform/controls/shortcuts.h"
#include "platform/system/application.h"

namespace vyn {

namespace bit_button_detail {

constexpr int kMostGlyphs = 4;

struct KindInfo {
    const char* caption;
    TModalResult modalResult;
    bool isDefault;
    bool isCancel;
};

// In the order of TBitBtnKind.
constexpr KindInfo kKinds[] = {
    {"", mrNone, false, false},           {"OK", mrOk, true, false},
    {"Cancel", mrCancel, false, true},    {"&Help", mrNone, false, false},
    {"&Yes", mrYes, true, false},         {"&No", mrNo, false, true},
    {"&Close", mrNone, false, false},     {"Abort", mrAbort, false, true},
    {"&Retry", mrRetry, true, false},     {"&Ignore", mrIgnore, false, false},
    {"Yes to &All", mrAll, false, false},
};

const KindInfo& InfoOf(TBitBtnKind kind) { return kKinds[static_cast<size_t>(kind)]; }

}  // namespace bit_button_detail

VYN_ENUM_NAMES(TBitBtnKind, "bkCustom", "bkOK", "bkCancel", "bkHelp", "bkYes", "bkNo", "bkClose", "bkAbort", "bkRetry",
               "bkIgnore", "bkAll")
VYN_ENUM_NAMES(TButtonLayout, "blGlyphLeft", "blGlyphRight", "blGlyphTop", "blGlyphBottom")
VYN_ENUM_NAMES(TButtonStyle, "bsAutoDetect", "bsWin31", "bsNew")

ButtonGlyph::ButtonGlyph(std::function<void()> changed) : changed_(std::move(changed)) {
    bitmap_.OnChange = [this](TObject*) { Changed(); };
}

void ButtonGlyph::SetBitmap(const TBitmap* value) { bitmap_.Assign(value); }

void ButtonGlyph::SetCount(int value) {
    count_ = static_cast<TNumGlyphs>(std::clamp(value, 1, bit_button_detail::kMostGlyphs));
    changed_();
}

// A bitmap that is a whole number of squares wide holds that many pictures.
void ButtonGlyph::Changed() {
    if (!bitmap_.Empty() && bitmap_.Height() > 0 && bitmap_.Width() % bitmap_.Height() == 0) {
        const int count = bitmap_.Width() / bitmap_.Height();
        count_ = static_cast<TNumGlyphs>(count > bit_button_detail::kMostGlyphs ? 1 : count);
    }
    changed_();
}

const ClassInfo& TBitBtn::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&WinControlProperties());
        own.Add("Cancel", &TButton::Cancel, &TButton::SetCancel).Default(false).Stored(&TBitBtn::IsCustom);
        own.Add("Caption", &TControl::Caption, &TControl::SetCaption).Stored(&TBitBtn::IsCustomCaption);
        own.Add("Default", &TButton::Default, &TButton::SetDefault).Default(false).Stored(&TBitBtn::IsCustom);
        own.Add("Enabled", &TControl::Enabled, &TControl::SetEnabled).Default(true);
        own.Add("ModalResult", &TButton::ModalResult, &TButton::SetModalResult).Default(0).Stored(&TBitBtn::IsCustom);
        own.Add("TabStop", &TWinControl::TabStop, &TWinControl::SetTabStop).Default(true);
        own.Add("Glyph", &TBitBtn::Glyph, &TBitBtn::SetGlyph).Stored(&TBitBtn::IsCustomGlyph);
        own.Add("Kind", &TBitBtn::Kind, &TBitBtn::SetKind).Default(bkCustom);
        own.Add("Layout", &TBitBtn::Layout, &TBitBtn::SetLayout).Default(blGlyphLeft);
        own.Add("Margin", &TBitBtn::Margin, &TBitBtn::SetMargin).Default(-1);
        own.Add("NumGlyphs", &TBitBtn::NumGlyphs, &TBitBtn::SetNumGlyphs).Default(1).Stored(&TBitBtn::IsCustomGlyph);
        own.Add("Spacing", &TBitBtn::Spacing, &TBitBtn::SetSpacing).Default(4);
        own.Add("Style", &TBitBtn::Style, &TBitBtn::SetStyle).Default(bsAutoDetect);
        return Publish(DefineClass<TBitBtn, TButton>("TBitBtn"), own,
                       "Anchors BiDiMode Cancel Caption Constraints Default Enabled Glyph Kind Layout Margin "
                       "ModalResult NumGlyphs ParentShowHint ParentBiDiMode ShowHint Style Spacing TabOrder TabStop "
                       "Visible OnEnter OnExit");
    }();
    return info;
}

TBitBtn::TBitBtn(TComponent* owner) : TButton(owner), glyph_([this] { GlyphChanged(); }) {}

void TBitBtn::GlyphChanged() {
    modifiedGlyph_ = true;
    PeerChanged(PeerChange::Picture);
}

// A button whose caption, result or role is no longer its kind's own is a custom one.
TBitBtnKind TBitBtn::Kind() const {
    if (kind_ == bkCustom || settingKind_) return kind_;
    const auto& info = bit_button_detail::InfoOf(kind_);
    const bool same = info.isDefault == Default() && info.isCancel == Cancel() &&
                      (kind_ == bkClose || kind_ == bkHelp || info.modalResult == ModalResult()) && !modifiedGlyph_;
    return same ? kind_ : bkCustom;
}

void TBitBtn::SetKind(TBitBtnKind value) {
    if (value == Kind()) return;
    if (value != bkCustom) {
        const auto& info = bit_button_detail::InfoOf(value);
        settingKind_ = true;
        SetDefault(info.isDefault);
        SetCancel(info.isCancel);
        // A stored caption of its own comes before or after the kind: it wins.
        if (!HasState(csLoading) || Caption().empty()) SetCaption(info.caption);
        TButton::SetModalResult(info.modalResult);
        settingKind_ = false;
        modifiedGlyph_ = false;
    }
    kind_ = value;
    PeerChanged(PeerChange::Picture);
}

bool TBitBtn::IsCustomCaption() const { return Caption() != bit_button_detail::InfoOf(Kind()).caption; }
bool TBitBtn::IsCustomGlyph() const { return !glyph_.BitmapRef().Empty(); }

void TBitBtn::SetModalResult(vyn::TModalResult value) { TButton::SetModalResult(value); }

void TBitBtn::SetLayout(TButtonLayout value) {
    layout_ = value;
    PeerChanged(PeerChange::Style);
}
void TBitBtn::SetMargin(int value) {
    if (value < -1) return;
    margin_ = value;
    PeerChanged(PeerChange::Style);
}
void TBitBtn::SetSpacing(int value) {
    spacing_ = value;
    PeerChanged(PeerChange::Style);
}
void TBitBtn::SetStyle(TButtonStyle value) {
    style_ = value;
    PeerChanged(PeerChange::Style);
}

void TBitBtn::Click() {
    if (Kind() == bkClose) {
        if (TCustomForm* form = GetParentForm(this))
            form->Close();
        else
            TButton::Click();
        return;
    }
    TButton::Click();
}

// Speed buttons.

const ClassInfo& TSpeedButton::StaticClass() {
    static const ClassInfo info = [] {
        using Button = TSpeedButton;
        PropertyCatalogue own(&ControlProperties());
        own.Add("AllowAllUp", &Button::AllowAllUp, &Button::SetAllowAllUp).Default(false);
        own.Add("GroupIndex", &Button::GroupIndex, &Button::SetGroupIndex).Default(0);
        own.Add("Down", &Button::Down, &Button::SetDown).Default(false);
        own.Add("Flat", &Button::Flat, &Button::SetFlat).Default(false);
        own.Add("Glyph", &Button::Glyph, &Button::SetGlyph).Stored(&Button::IsGlyphStored);
        own.Add("Layout", &Button::Layout, &Button::SetLayout).Default(blGlyphLeft);
        own.Add("Margin", &Button::Margin, &Button::SetMargin).Default(-1);
        own.Add("NumGlyphs", &Button::NumGlyphs, &Button::SetNumGlyphs).Default(1);
        own.Add("Spacing", &Button::Spacing, &Button::SetSpacing).Default(4);
        own.Add("Transparent", &Button::Transparent, &Button::SetTransparent).Default(true);
        return Publish(DefineClass<Button, TGraphicControl>("TSpeedButton"), own,
                       "AllowAllUp Anchors BiDiMode Constraints GroupIndex Down Caption Enabled Flat Font Glyph Layout "
                       "Margin NumGlyphs ParentFont ParentShowHint ParentBiDiMode PopupMenu ShowHint Spacing "
                       "Transparent Visible OnClick OnDblClick OnMouseDown OnMouseMove OnMouseUp");
    }();
    return info;
}

TSpeedButton::TSpeedButton(TComponent* owner)
    : TGraphicControl(owner), glyph_([this] { PeerChanged(PeerChange::Picture); }) {
    // A click comes from ProcessPress, which moves the button first.
    ControlStyle = {csCaptureMouse, csDoubleClicks};
    SetInitialSize(23, 22);
}

void TSpeedButton::SetAllowAllUp(bool value) {
    if (allowAllUp_ == value) return;
    allowAllUp_ = value;
    UpdateExclusive();
}

void TSpeedButton::SetGroupIndex(int value) {
    if (groupIndex_ == value) return;
    groupIndex_ = value;
    UpdateExclusive();
}

void TSpeedButton::SetDown(bool value) {
    if (groupIndex_ == 0) value = false;
    if (value == down_) return;
    if (down_ && !allowAllUp_ && !HasState(csLoading)) return;
    down_ = value;
    PeerChanged(PeerChange::Selection);
    if (value) UpdateExclusive();
}

// The other buttons of the group hear of it: they come up and share AllowAllUp.
void TSpeedButton::UpdateExclusive() {
    if (groupIndex_ == 0 || !Parent()) return;
    for (TControl* control : Parent()->GraphicControls()) {
        auto* other = ObjectCast<TSpeedButton>(control);
        if (!other || other == this || other->groupIndex_ != groupIndex_) continue;
        if (down_ && other->down_) {
            other->down_ = false;
            other->PeerChanged(PeerChange::Selection);
        }
        if (!HasState(csLoading)) other->allowAllUp_ = allowAllUp_;
    }
}

void TSpeedButton::SetFlat(bool value) {
    flat_ = value;
    PeerChanged(PeerChange::Style);
}
void TSpeedButton::SetLayout(TButtonLayout value) {
    layout_ = value;
    PeerChanged(PeerChange::Style);
}
void TSpeedButton::SetMargin(int value) {
    if (value < -1) return;
    margin_ = value;
    PeerChanged(PeerChange::Style);
}
void TSpeedButton::SetSpacing(int value) {
    spacing_ = value;
    PeerChanged(PeerChange::Style);
}
void TSpeedButton::SetTransparent(bool value) {
    transparent_ = value;
    PeerChanged(PeerChange::Style);
}

void TSpeedButton::ProcessPress() {
    if (!EffectivelyEnabled()) return;
    if (groupIndex_ != 0) SetDown(!down_);
    Click();
}

bool TSpeedButton::DialogChar(char key) {
    if (!IsAccel(static_cast<uint8_t>(key), Caption()) || !Enabled() || !Visible() || !Parent() || !Parent()->Showing())
        return false;
    ProcessPress();
    return true;
}

}  // namespace vyn
