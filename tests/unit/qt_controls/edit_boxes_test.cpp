// Lookup boxes on shown forms, with real keys, an input method and the mouse.
#include <QAccessible>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <cmath>

#include "unit/datasources/lookup_fixtures.h"
#include "unit/qt/qt_tests.h"

#include "controls/Uvyneditbox.h"
#include "qt/light_peer.h"
#include "qt/snapshot.h"
#include "qt/text.h"

using namespace vyn;

namespace {

class EditBoxWindow : public lookup_fixtures::LookupTest {
  protected:
    void SetUp() override {
        LookupTest::SetUp();
        form->SetBounds(0, 0, 400, 160);
        box = Make<TVynEditBox>("Box");
        box->SetParent(form.get());
        box->SetBounds(20, 20, 200, 25);
        box->SetDataField("Customer");
        box->SetDataLinkType(dlt_Search);
        box->SetNChild(10);
        box->SetChildDataKey("Code");
        box->SetChildDataShow("Name");
        box->SetAutoSearch(true);
        box->SetVynDataSource(source);
        other = Make<TEdit>("Other");
        other->SetParent(form.get());
        other->SetBounds(20, 60, 200, 25);
        form->Show();
        LookupTest::Settle();
        box->SetFocus();
        vyn::Settle();
        LookupTest::Settle();
        customers.Log.clear();
    }
    QLineEdit& Line() { return *static_cast<QLineEdit*>(WidgetOf(*box)); }
    QString Shown() { return Line().text(); }
    void Pause() {
        clock.Advance(1000);
        LookupTest::Settle();
    }
    void Compose(const QString& preedit, const QString& commit) {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(&Line(), &event);
    }
    // What the screen shows of the button.
    QPoint ButtonMiddle() const {
        const TVynEditBoxSpeedButton& button = box->Button();
        return {button.Left() + button.Width() / 2, button.Top() + button.Height() / 2};
    }
    void Mouse(QEvent::Type type, const QPoint& at, Qt::MouseButton button = Qt::LeftButton) {
        QWidget* target = Line().childAt(at) ? Line().childAt(at) : &Line();
        QMouseEvent event(type, target->mapFrom(&Line(), at), Line().mapToGlobal(at), button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button), Qt::NoModifier);
        QCoreApplication::sendEvent(target, &event);
    }

    TVynEditBox* box = nullptr;
    TEdit* other = nullptr;
};

TEST_F(EditBoxWindow, TypingIsCompletedInTheWidget) {
    EXPECT_EQ(Shown(), QString::fromUtf8("García"));
    EXPECT_EQ(Line().selectedText(), QString::fromUtf8("García")) << "selected when it is entered";
    Type(*box, "gar");
    EXPECT_EQ(Shown(), "gar");
    EXPECT_FALSE(Line().isReadOnly());
    Pause();
    EXPECT_EQ(Shown(), QString::fromUtf8("garcía"));
    EXPECT_EQ(Line().selectedText(), QString::fromUtf8("cía"));
    Type(*box, QString::fromUtf8("c"));
    EXPECT_EQ(Shown(), QString::fromUtf8("garcía"));
    EXPECT_EQ(Line().selectedText(), QString::fromUtf8("ía"));
    Type(*box, QString::fromUtf8("í"));
    EXPECT_EQ(Line().selectedText(), "a") << "accents too";
    Press(*box, Qt::Key_Backspace);
    EXPECT_EQ(Shown(), QString::fromUtf8("garcí"));
    Pause();
    EXPECT_EQ(Shown(), QString::fromUtf8("garcí"));
}

TEST_F(EditBoxWindow, TypingWhileTheSearchRunsLosesNothing) {
    Type(*box, "g");
    Application()->ProcessMessages();
    ASSERT_EQ(box->Link().VynComponentState(), vyncs_Searching);
    Type(*box, "as");
    EXPECT_EQ(Shown(), "gas");
    EXPECT_FALSE(Line().isReadOnly());
    Pause();
    EXPECT_EQ(Shown(), "gasol");
    QTest::keyClick(&Line(), Qt::Key_Tab);
    EXPECT_TRUE(other->Focused());
    EXPECT_EQ(orders->FindField("Customer")->AsInteger(), 4);
}

TEST_F(EditBoxWindow, WhatAnInputMethodCommitsIsOneEditAndIsSearched) {
    int changes = 0;
    box->OnChange = [&](TObject*) { ++changes; };
    Line().selectAll();
    Compose("gar", "");
    changes = 0;
    EXPECT_EQ(TakeLog(), "") << "what is composed is no text yet";
    Compose("", "gar");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(box->Text(), "gar");
    Pause();
    EXPECT_EQ(Shown(), QString::fromUtf8("garcía"));
}

TEST_F(EditBoxWindow, ACompletionWaitsForAnInputMethodThatComposes) {
    Type(*box, "gar");
    Compose("c", "");
    EXPECT_TRUE(box->IsComposing());
    Pause();
    EXPECT_EQ(Shown(), "gar") << "nothing is put beside what is composed";
    EXPECT_TRUE(box->IsComposing());
    Compose("", "c");
    EXPECT_FALSE(box->IsComposing());
    EXPECT_EQ(Shown(), QString::fromUtf8("garcía")) << "known by now";
    EXPECT_EQ(Line().selectedText(), QString::fromUtf8("ía"));
}

TEST_F(EditBoxWindow, WhatIsPastedIsOneEditAndNoSearch) {
    QTest::keyClick(&Line(), Qt::Key_A, Qt::ControlModifier);
    Type(*box, "g");
    Pause();
    TakeLog();
    int changes = 0;
    box->OnChange = [&](TObject*) { ++changes; };
    Line().selectAll();
    Line().insert("gas");  // as the menu does
    EXPECT_EQ(box->Text(), "gas");
    EXPECT_EQ(changes, 1);
    Pause();
    EXPECT_EQ(Shown(), "gas");
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(EditBoxWindow, EscapeTakesBackAndSelectsAll) {
    Type(*box, "gas");
    Press(*box, Qt::Key_Escape);
    LookupTest::Settle();
    EXPECT_EQ(Shown(), QString::fromUtf8("García"));
    EXPECT_EQ(Line().selectedText(), QString::fromUtf8("García"));
}

TEST_F(EditBoxWindow, F2OpensTheSearch) {
    customers.Chosen = 0;
    Press(*box, Qt::Key_F2);
    LookupTest::Settle();
    EXPECT_EQ(Shown(), "Abad");
}

TEST_F(EditBoxWindow, TheTextKeepsClearOfTheButton) {
    EXPECT_EQ(Line().textMargins().right(), box->Button().Width());
    box->SetShowButton(false);
    EXPECT_EQ(Line().textMargins().right(), 0);
    box->SetShowButton(true);
    EXPECT_EQ(Line().textMargins().right(), box->Button().Width());
}

TEST_F(EditBoxWindow, TheButtonIsDrawnByItsBoxUntilTheMouseComes) {
    EXPECT_EQ(static_cast<qt::WidgetPeer*>(box->Button().Peer())->Widget(), nullptr);
    Mouse(QEvent::MouseMove, ButtonMiddle(), Qt::NoButton);
    QWidget* button = static_cast<qt::WidgetPeer*>(box->Button().Peer())->Widget();
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->cursor().shape(), Qt::ArrowCursor) << "not the text's";
    EXPECT_EQ(button->focusPolicy(), Qt::NoFocus) << "never has the keyboard";
    EXPECT_EQ(button->geometry(),
              QRect(box->Button().Left(), box->Button().Top(), box->Button().Width(), box->Button().Height()));
}

TEST_F(EditBoxWindow, APressOfTheMouseFocusesAndSearches) {
    other->SetFocus();
    vyn::Settle();
    LookupTest::Settle();
    TakeLog();
    Mouse(QEvent::MouseMove, ButtonMiddle(), Qt::NoButton);
    Mouse(QEvent::MouseButtonPress, ButtonMiddle());
    EXPECT_EQ(TakeLog(), "");
    Mouse(QEvent::MouseButtonRelease, ButtonMiddle());
    EXPECT_EQ(TakeLog(), "modal Name=García"_w);
    EXPECT_TRUE(box->Focused());
}

TEST_F(EditBoxWindow, AssistiveTechnologyFindsAndPressesTheButton) {
    QWidget* button = Main(box->Button());
    QAccessibleInterface* heard = QAccessible::queryAccessibleInterface(button);
    ASSERT_NE(heard, nullptr);
    EXPECT_EQ(heard->role(), QAccessible::Button);
    QAccessibleActionInterface* actions = heard->actionInterface();
    ASSERT_NE(actions, nullptr);
    EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(TakeLog(), "modal Name=García"_w);
    EXPECT_EQ(qt::PeerOfControl(&box->Button())->AccessibleName(), "Cerca (F2)");
    box->SetReadOnly(true);
    EXPECT_TRUE(actions->actionNames().isEmpty());
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(EditBoxWindow, ItsBorderFollowsTheKeyboardAndTheMouse) {
    const auto border = [&] { return Line().grab().toImage().pixelColor(Line().width() / 2, 0); };
    const QColor focused = border();
    other->SetFocus();
    vyn::Settle();
    const QColor rest = border();
    EXPECT_NE(focused, rest);
    box->ProcessMouseEnter();
    EXPECT_NE(border(), rest);
    box->SetCtrlBorderStyles({});
    EXPECT_EQ(border(), rest);
    box->ProcessMouseLeave();
}

// How bright a colour is, as the eye takes it: 0 to 1.
double Luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

// The contrast between a button's ground and what stands out of it most: 1 (none) to 21.
double ContrastOf(const QImage& window, const TVynEditBoxSpeedButton& button) {
    constexpr double kFlare = 0.05;
    constexpr int kPicture = 16;
    const QPoint corner(button.Box().Left() + button.Left() + (button.Width() - kPicture) / 2,
                        button.Box().Top() + button.Top() + (button.Height() - kPicture) / 2);
    const double ground = Luminance(window.pixelColor(corner));
    double most = 1;
    for (int y = 0; y < kPicture; ++y)
        for (int x = 0; x < kPicture; ++x) {
            const double ink = Luminance(window.pixelColor(corner + QPoint(x, y)));
            most = std::max(most, (std::max(ink, ground) + kFlare) / (std::min(ink, ground) + kFlare));
        }
    return most;
}

TEST_F(EditBoxWindow, AGreyPictureTakesTheTextsColourAndAColouredOneStays) {
    TBitmap glyph;
    constexpr int kSize = 4;
    PixelImage pixels{kSize, kSize, std::vector<uint32_t>(kSize * kSize, 0xFF000000)};
    pixels.Pixels[kSize * (kSize - 1)] = 0xFFFFFFFF;  // see-through
    const auto middle = [&] {
        glyph.SetPixels(pixels);
        box->SetButtonGlyph(&glyph);
        vyn::Settle();
        const TVynEditBoxSpeedButton& button = box->Button();
        return Line().grab().toImage().pixelColor(button.Left() + button.Width() / 2,
                                                  button.Top() + button.Height() / 2);
    };
    QPalette palette = Line().palette();
    palette.setColor(QPalette::Text, QColor(200, 30, 90));
    Line().setPalette(palette);
    EXPECT_EQ(middle(), QColor(200, 30, 90));
    for (uint32_t& pixel : pixels.Pixels)
        if (pixel == 0xFF000000) pixel = 0xFF0000A0;
    EXPECT_EQ(middle(), QColor(0, 0, 0xA0));
}

// The states of a box below each other; somebody who sets VYN_PICTURES looks at them.
TEST_F(EditBoxWindow, DrawsItsStatesOnLightAndDarkDesktops) {
    form->SetCaption("Edit boxes");
    other->SetBounds(20, 60, 200, 25);
    other->SetText("a plain edit");
    auto* disabled = Make<TVynEditBox>("Disabled");
    auto* plain = Make<TVynEditBox>("Plain");
    auto* pressed = Make<TVynEditBox>("Pressed");
    int top = 95;
    for (TVynEditBox* each : {disabled, plain, pressed}) {
        each->SetParent(form.get());
        each->SetBounds(20, top, 200, 25);
        each->SetDataField(each == plain ? "Title" : "Customer");
        if (each != plain) each->SetDataLinkType(dlt_Search);
        each->SetNChild(10);
        each->SetChildDataKey("Code");
        each->SetChildDataShow("Name");
        each->SetVynDataSource(source);
        top += 35;
    }
    form->SetBounds(0, 0, 240, 240);
    disabled->SetEnabled(false);
    LookupTest::Settle();
    pressed->ProcessMouseEnter();
    pressed->Button().ProcessMouseEnter();
    pressed->Button().ProcessMouseDown(mbLeft, {ssLeft}, 2, 2);
    const QPalette before = QApplication::palette();
    const QPalette dark = [] {
        QPalette palette(QColor(55, 55, 58), QColor(45, 45, 48));
        palette.setColor(QPalette::Base, QColor(30, 30, 30));
        palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
        return palette;
    }();
    const auto grab = [&](const char* name) {
        vyn::Settle();
        if (const char* folder = std::getenv("VYN_PICTURES")) qt::GrabFormToFile(*form, std::string(folder) + name);
        return Line().window()->grab().toImage();
    };
    const QImage light = grab("/edit_boxes_light.png");
    QApplication::setPalette(dark);
    const QImage night = grab("/edit_boxes_dark.png");
    QApplication::setPalette(before);
    EXPECT_GT(light.pixelColor(5, 5).lightness(), 200);
    EXPECT_LT(night.pixelColor(5, 5).lightness(), 80);
    // The pictures of the buttons are seen in both.
    constexpr double kLeastContrast = 3;
    for (const QImage& image : {light, night})
        for (const TVynEditBox* each : {box, pressed}) EXPECT_GT(ContrastOf(image, each->Button()), kLeastContrast);
    pressed->Button().ProcessMouseUp(mbLeft, {}, 2, -200);
}

}  // namespace
