// Controls that their parent draws: they look as their widgets do, and become widgets when one is needed.
#include <QAccessible>
#include <QMouseEvent>
#include <utility>

#include "platform/controls/buttons.h"
#include "platform/controls/edits.h"
#include "platform/controls/images.h"
#include "platform/controls/labels.h"
#include "platform/controls/panels.h"
#include "qt_tests.h"

using namespace vyn;

namespace {

constexpr std::string_view kLightForm = R"(object F: TForm
  ClientWidth = 320
  ClientHeight = 200
  object Group: TPanel
    Left = 10
    Top = 10
    Width = 300
    Height = 150
    object Plain: TLabel
      Left = 8
      Top = 8
      Caption = 'Customer'
    end
    object Marked: TLabel
      Left = 8
      Top = 30
      Caption = '&Region'
    end
    object Wrapped: TLabel
      Left = 8
      Top = 52
      Width = 60
      Height = 60
      AutoSize = False
      WordWrap = True
      Caption = 'Several words on lines'
    end
    object Off: TLabel
      Left = 120
      Top = 8
      Enabled = False
      Caption = 'Off'
    end
    object Big: TLabel
      Left = 120
      Top = 30
      Font.Height = -24
      ParentFont = False
      Caption = 'Big'
    end
    object Right: TLabel
      Left = 120
      Top = 70
      Width = 100
      Alignment = taRightJustify
      AutoSize = False
      Caption = 'Right'
    end
    object Line: TBevel
      Left = 100
      Top = 100
      Width = 100
      Height = 20
      Shape = bsFrame
    end
  end
end
)";

qt::WidgetPeer& PeerFor(const TControl& control) { return *qt::PeerOfControl(&control); }
bool IsLight(const TControl& control) { return PeerFor(control).Widget() == nullptr; }

QImage Picture(const TForm& form) {
    Settle();
    return PeerFor(form).Widget()->grab().toImage();
}

void SendMouse(QWidget& widget, QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons) {
    QMouseEvent event(type, at, widget.mapToGlobal(at), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

}  // namespace

TEST(LightControls, LookAsTheirWidgetsDo) {
    const Shown form(kLightForm);
    for (const char* name : {"Plain", "Marked", "Wrapped", "Off", "Big", "Right", "Line"})
        EXPECT_TRUE(IsLight(form.Get<TControl>(name))) << name;
    const QImage light = Picture(*form);
    for (const char* name : {"Plain", "Marked", "Wrapped", "Off", "Big", "Right", "Line"}) {
        PeerFor(form.Get<TControl>(name)).BecomeWidget();
        ASSERT_FALSE(IsLight(form.Get<TControl>(name)));
        EXPECT_EQ(Picture(*form), light) << name;
    }
    form.Get<TLabel>("Plain").SetVisible(false);
    EXPECT_NE(Picture(*form), light) << "the picture does show the labels";
}

TEST(LightControls, ChangesAreDrawn) {
    const Shown form(kLightForm);
    auto& label = form.Get<TLabel>("Plain");
    const QImage before = Picture(*form);
    label.SetCaption("Article");
    const QImage renamed = Picture(*form);
    EXPECT_NE(renamed, before);
    label.SetLeft(20);
    const QImage moved = Picture(*form);
    EXPECT_NE(moved, renamed);
    label.SetEnabled(false);
    EXPECT_NE(Picture(*form), moved);
    EXPECT_TRUE(IsLight(label));
    label.SetEnabled(true);
    label.SetLeft(8);
    label.SetCaption("Customer");
    EXPECT_EQ(Picture(*form), before);
}

TEST(LightControls, TheMouseOverOneFindsAWidget) {
    const Shown form(kLightForm);
    auto& label = form.Get<TLabel>("Plain");
    QWidget& panel = *PeerFor(form.Get<TPanel>("Group")).ClientWidget();
    SendMouse(panel, QEvent::MouseMove, {200, 140}, Qt::NoButton, Qt::NoButton);
    EXPECT_TRUE(IsLight(label)) << "it is somewhere else";
    SendMouse(panel, QEvent::MouseMove, {label.Left() + 2, label.Top() + 2}, Qt::NoButton, Qt::NoButton);
    EXPECT_FALSE(IsLight(label));
    EXPECT_TRUE(IsLight(form.Get<TLabel>("Marked")));
}

TEST(LightControls, APressWithoutAMoveBeforeItClicks) {
    const Shown form(kLightForm);
    auto& label = form.Get<TLabel>("Plain");
    auto& panel = form.Get<TPanel>("Group");
    std::string heard;
    label.OnClick = [&](TObject*) { heard += "label "; };
    panel.OnClick = [&](TObject*) { heard += "panel "; };
    QWidget& client = *PeerFor(panel).ClientWidget();
    const QPoint at(label.Left() + 2, label.Top() + 2);
    SendMouse(client, QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
    SendMouse(client, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(heard, "label ");
    SendMouse(client, QEvent::MouseButtonPress, {200, 140}, Qt::LeftButton, Qt::LeftButton);
    SendMouse(client, QEvent::MouseButtonRelease, {200, 140}, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(heard, "label panel ");
}

TEST(LightControls, AFrameLetsTheMouseThrough) {
    const Shown form(kLightForm);
    auto& line = form.Get<TBevel>("Line");
    QWidget& client = *PeerFor(form.Get<TPanel>("Group")).ClientWidget();
    SendMouse(client, QEvent::MouseMove, {line.Left() + 5, line.Top() + 5}, Qt::NoButton, Qt::NoButton);
    EXPECT_TRUE(IsLight(line));
}

TEST(LightControls, OwnColoursAndCursorsNeedAWidget) {
    const Shown form(kLightForm);
    form.Get<TLabel>("Plain").SetColor(clRed);
    EXPECT_FALSE(IsLight(form.Get<TLabel>("Plain")));
    form.Get<TLabel>("Marked").SetCursor(crHandPoint);
    EXPECT_FALSE(IsLight(form.Get<TLabel>("Marked")));
    form.Get<TLabel>("Right").Font()->SetColor(clBlue);
    EXPECT_FALSE(IsLight(form.Get<TLabel>("Right")));
    EXPECT_TRUE(IsLight(form.Get<TLabel>("Wrapped")));
}

TEST(LightControls, AWidgetKeepsItsPlaceAmongWhatOverlapsIt) {
    const Shown form(R"(object F: TForm
  ClientWidth = 200
  ClientHeight = 100
  object Below: TLabel
    Left = 10
    Top = 10
    Caption = 'Below'
  end
  object Above: TLabel
    Left = 12
    Top = 12
    Caption = 'Above'
  end
  object Away: TLabel
    Left = 100
    Top = 60
    Caption = 'Away'
  end
end
)");
    const QImage light = Picture(*form);
    PeerFor(form.Get<TLabel>("Below")).BecomeWidget();
    EXPECT_FALSE(IsLight(form.Get<TLabel>("Above"))) << "or the widget would cover it";
    EXPECT_TRUE(IsLight(form.Get<TLabel>("Away")));
    EXPECT_EQ(Picture(*form), light);
}

TEST(LightControls, SomebodyWhoAsksForTheHandleGetsAWidget) {
    const Shown form(kLightForm);
    auto& label = form.Get<TLabel>("Plain");
    EXPECT_NE(label.Peer()->NativeHandle(), nullptr);
    EXPECT_FALSE(IsLight(label));
}

TEST(LightControls, AFreedOneIsDrawnNoMore) {
    const Shown form(kLightForm);
    const QImage before = Picture(*form);
    delete &form.Get<TLabel>("Plain");
    EXPECT_NE(Picture(*form), before);
}

namespace {

constexpr std::string_view kButtonForm = R"(object F: TForm
  ClientWidth = 320
  ClientHeight = 260
  object Code: TEdit
    Left = 10
    Top = 10
    Width = 80
    Height = 24
    TabOrder = 0
  end
  object Plain: TButton
    Left = 10
    Top = 40
    Width = 90
    Height = 26
    Caption = 'Search'
    TabOrder = 1
  end
  object Marked: TButton
    Left = 110
    Top = 40
    Width = 90
    Height = 26
    Caption = '&Accept'
    Default = True
    TabOrder = 2
  end
  object Off: TButton
    Left = 210
    Top = 40
    Width = 90
    Height = 26
    Enabled = False
    Caption = 'Off'
    TabOrder = 3
  end
  object Narrow: TButton
    Left = 10
    Top = 70
    Width = 40
    Height = 12
    Caption = 'More than fits'
    TabOrder = 4
  end
  object Open: TCheckBox
    Left = 10
    Top = 100
    Width = 120
    Height = 20
    Caption = 'O&pen'
    TabOrder = 5
  end
  object Paid: TCheckBox
    Left = 10
    Top = 122
    Width = 120
    Height = 20
    Caption = 'Paid'
    Checked = True
    TabOrder = 6
  end
  object Sent: TCheckBox
    Left = 10
    Top = 144
    Width = 120
    Height = 20
    AllowGrayed = True
    Caption = 'Sent'
    State = cbGrayed
    TabOrder = 7
  end
  object Left: TCheckBox
    Left = 150
    Top = 100
    Width = 120
    Height = 20
    Alignment = taLeftJustify
    Caption = 'On the left'
    TabOrder = 8
  end
  object Big: TCheckBox
    Left = 150
    Top = 122
    Width = 150
    Height = 30
    Caption = 'Big'
    Font.Height = -20
    ParentFont = False
    TabOrder = 9
  end
  object Day: TRadioButton
    Left = 10
    Top = 170
    Width = 100
    Height = 20
    Caption = 'Day'
    Checked = True
    TabOrder = 10
    TabStop = True
  end
  object Week: TRadioButton
    Left = 10
    Top = 192
    Width = 100
    Height = 20
    Caption = 'Week'
    TabOrder = 11
  end
end
)";
constexpr const char* kButtons[] = {"Plain", "Marked", "Off", "Narrow", "Open", "Paid",
                                    "Sent",  "Left",   "Big", "Day",    "Week"};

}  // namespace

TEST(LightButtons, LookAsTheirWidgetsDo) {
    const Shown form(kButtonForm);
    const QImage light = Picture(*form);
    for (const char* name : kButtons) {
        auto& button = form.Get<TControl>(name);
        EXPECT_TRUE(IsLight(button)) << name;
        PeerFor(button).BecomeWidget();
        ASSERT_FALSE(IsLight(button));
        EXPECT_EQ(Picture(*form), light) << name;
    }
    for (const char* name : kButtons) {
        form.Get<TControl>(name).SetVisible(false);
        EXPECT_NE(Picture(*form), light) << "the picture does show " << name;
        form.Get<TControl>(name).SetVisible(true);
    }
}

TEST(LightButtons, ChangesAreDrawn) {
    const Shown form(kButtonForm);
    QImage last = Picture(*form);
    const auto differs = [&] { return Picture(*form) != std::exchange(last, Picture(*form)); };
    form.Get<TCheckBox>("Open").SetChecked(true);
    EXPECT_TRUE(differs());
    form.Get<TRadioButton>("Week").SetChecked(true);
    EXPECT_TRUE(differs());
    form.Get<TButton>("Plain").SetCaption("Other");
    EXPECT_TRUE(differs());
    form.Get<TButton>("Marked").SetDefault(false);
    EXPECT_TRUE(differs());
    for (const char* name : kButtons) EXPECT_TRUE(IsLight(form.Get<TControl>(name))) << name;
}

TEST(LightButtons, APressIsAClick) {
    const Shown form(kButtonForm);
    std::string heard;
    for (const char* name : kButtons)
        if (auto* button = ObjectCast<TButton>(&form.Get<TControl>(name)))
            button->OnClick = [&heard](TObject* sender) { heard += static_cast<TButton*>(sender)->Name() + " "; };
    QWidget& client = *PeerFor(*form).ClientWidget();
    const auto click = [&](const TControl& control) {
        const QPoint at(control.Left() + 5, control.Top() + 5);
        SendMouse(client, QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
        SendMouse(client, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
    };
    for (const char* name : {"Plain", "Off", "Marked"}) click(form.Get<TControl>(name));
    EXPECT_EQ(heard, "Plain Marked ") << "one that is switched off hears nothing";
    click(form.Get<TControl>("Open"));
    EXPECT_TRUE(form.Get<TCheckBox>("Open").Checked());
    click(form.Get<TControl>("Week"));
    EXPECT_TRUE(form.Get<TRadioButton>("Week").Checked());
    EXPECT_FALSE(form.Get<TRadioButton>("Day").Checked());
}

TEST(LightButtons, TheKeyboardFindsAWidget) {
    const Shown form(kButtonForm);
    auto& button = form.Get<TButton>("Plain");
    ASSERT_TRUE(form.Get<TEdit>("Code").Focused());
    PressKey(Qt::Key_Tab);
    EXPECT_TRUE(button.Focused());
    ASSERT_FALSE(IsLight(button));
    EXPECT_TRUE(PeerFor(button).Widget()->hasFocus());
    std::string heard;
    button.OnClick = [&](TObject*) { heard += "plain "; };
    form.Get<TButton>("Marked").OnClick = [&](TObject*) { heard += "marked "; };
    PressKey(Qt::Key_Space);
    EXPECT_EQ(heard, "plain ");
    form.Get<TEdit>("Code").SetFocus();
    PressKey(Qt::Key_Return);
    EXPECT_EQ(heard, "plain marked ") << "the default button needs no widget to be pressed";
    EXPECT_TRUE(IsLight(form.Get<TButton>("Marked")));
}

TEST(LightButtons, WhatIsMovedBelowOneDoesNotCoverIt) {
    const Shown form(kButtonForm);
    auto& button = form.Get<TButton>("Plain");
    auto& edit = form.Get<TEdit>("Code");
    edit.SetBounds(0, 30, 150, 60);
    ASSERT_FALSE(IsLight(button));
    EXPECT_FALSE(IsLight(form.Get<TButton>("Marked")));
    EXPECT_TRUE(IsLight(form.Get<TButton>("Off")));
    const QWidget& client = *PeerFor(*form).ClientWidget();
    EXPECT_EQ(client.childAt(button.Left() + 5, button.Top() + 5), PeerFor(button).Widget());
    edit.SetBounds(200, 30, 150, 60);
    EXPECT_FALSE(IsLight(form.Get<TButton>("Off")));
    edit.BringToFront();
    EXPECT_EQ(client.childAt(215, 45), PeerFor(edit).Widget());
}

TEST(LightButtons, AControlInsideNeedsAWidget) {
    const Shown form(kButtonForm);
    auto& button = form.Get<TButton>("Plain");
    auto* inside = new TEdit(&*form);
    inside->SetParent(&button);
    Settle();
    ASSERT_FALSE(IsLight(button));
    EXPECT_EQ(PeerFor(*inside).Widget()->parentWidget(), PeerFor(button).Widget());
}
