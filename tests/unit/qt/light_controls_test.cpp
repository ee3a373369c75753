// Controls that their parent draws: they look as their widgets do, and become widgets when one is needed.
#include <QAccessible>
#include <QMouseEvent>

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
