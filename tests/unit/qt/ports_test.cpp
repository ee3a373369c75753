#include <QBuffer>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QImage>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

#include "platform/controls/buttons.h"
#include "platform/controls/edits.h"
#include "platform/controls/images.h"
#include "platform/controls/lists.h"
#include "platform/controls/menus.h"
#include "platform/controls/panels.h"
#include "platform/controls/screen.h"
#include "platform/controls/text_metrics.h"
#include "platform/system/clipboard.h"
#include "platform/system/message_dialogs.h"
#include "platform/system/threads.h"
#include "qt/keys.h"
#include "qt/text.h"
#include "qt_tests.h"

using namespace vyn;

namespace {

constexpr std::string_view kEmptyForm = "object F: TForm\n  ClientWidth = 300\n  ClientHeight = 200\nend\n";

QWidget* WidgetFor(const TControl& control) { return qt::PeerOfControl(&control)->Widget(); }

AnsiString PngOf(int width, int height, const QColor& color) {
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

// Presses the button with this answer when the message box is there.
void Answer(QMessageBox::StandardButton button, QString* text = nullptr) {
    TThread::Queue([=] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        if (text) *text = box->text();
        ASSERT_NE(box->button(button), nullptr);
        box->button(button)->click();
    });
}

}  // namespace

TEST(Texts, EveryByteGoesToTheToolkitAndBack) {
    AnsiString all;
    for (int c = 1; c < 256; ++c) all += static_cast<char>(c);
    EXPECT_EQ(qt::FromQt(qt::ToQt(all)), all);
    EXPECT_EQ(qt::ToQt(all).size(), static_cast<qsizetype>(all.size()));
    EXPECT_EQ(qt::ToQt("à€"_w), QStringLiteral("à€"));
    EXPECT_EQ(qt::WithoutMnemonic("&Save && go"), QStringLiteral("Save & go"));
}

TEST(Texts, ShortCutsBecomeKeySequences) {
    EXPECT_EQ(qt::ToKeySequence(ShortCut('N', {ssCtrl})), QKeySequence(QStringLiteral("Ctrl+N")));
    EXPECT_EQ(qt::ToKeySequence(ShortCut(VK_F1 + 4, {ssShift, ssAlt})), QKeySequence(QStringLiteral("Alt+Shift+F5")));
    EXPECT_TRUE(qt::ToKeySequence(scNone).isEmpty());
}

TEST(Ports, TheClipboardIsTheDesktops) {
    Clipboard()->SetAsText("accents: àéñ"_w);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("accents: àéñ"));
    QGuiApplication::clipboard()->setText(QStringLiteral("other"));
    EXPECT_TRUE(Clipboard()->HasText());
    EXPECT_EQ(Clipboard()->AsText(), "other");
    Clipboard()->Clear();
    EXPECT_EQ(Clipboard()->AsText(), "");
}

TEST(Ports, AMessageBoxAsksAndTellsTheAnswer) {
    QString text;
    Answer(QMessageBox::No, &text);
    EXPECT_EQ(MessageDlg("Delete <it>?", mtConfirmation, {mbYes, mbNo, mbCancel}), mrNo);
    EXPECT_EQ(text, QStringLiteral("Delete <it>?"));
    Answer(QMessageBox::YesToAll);
    EXPECT_EQ(MessageDlg("All?", mtWarning, {mbYesToAll, mbNoToAll}), mrYesToAll);
}

TEST(Ports, ClosingAMessageBoxChangesLeast) {
    TThread::Queue([] { QApplication::activeModalWidget()->close(); });
    EXPECT_EQ(MessageDlg("Save?", mtConfirmation, {mbYes, mbNo, mbCancel}), mrCancel);
    TThread::Queue([] { QApplication::activeModalWidget()->close(); });
    EXPECT_EQ(MessageDlg("Done.", mtInformation, {mbOK}), mrOk);
}

TEST(Ports, TextIsMeasuredAsItIsDrawn) {
    const TextMetrics& metrics = CurrentTextMetrics();
    EXPECT_GT(metrics.TextExtent(DefaultFont(), "wide text").cx, metrics.TextExtent(DefaultFont(), "wide").cx);
    TFont bold;
    bold.SetStyle({fsBold});
    EXPECT_GT(metrics.TextExtent(bold, "text").cx, metrics.TextExtent(DefaultFont(), "text").cx);
    EXPECT_EQ(DefaultFont().LineHeight(), QFontMetrics(QApplication::font()).height());
    EXPECT_GT(Screen()->Width(), 0);
    EXPECT_GT(metrics.MenuHeight(), 10);
}

TEST(Images, APngIsDrawnStretchedAndCentred) {
    const Shown form(kEmptyForm);
    auto* image = new TImage(&*form);
    image->SetParent(&*form);
    image->SetBounds(10, 10, 40, 40);
    image->Picture()->LoadFromBytes(PngOf(10, 10, Qt::red));
    const auto at = [&](int x, int y) { return WidgetFor(*form)->grab().toImage().pixelColor(x, y); };
    EXPECT_EQ(at(12, 12), QColor(Qt::red));
    EXPECT_NE(at(45, 45), QColor(Qt::red));
    image->SetCenter(true);
    EXPECT_EQ(at(30, 30), QColor(Qt::red));
    EXPECT_NE(at(12, 12), QColor(Qt::red));
    image->SetStretch(true);
    EXPECT_EQ(at(12, 12), QColor(Qt::red));
    EXPECT_EQ(at(45, 45), QColor(Qt::red));
}

TEST(Images, TheLowerLeftPixelOfABitmapIsSeeThrough) {
    const Shown form(kEmptyForm);
    auto* image = new TImage(&*form);
    image->SetParent(&*form);
    image->SetBounds(0, 0, 20, 20);
    PixelImage pixels{2, 2, {0xFF00FF00, 0xFF00FF00, 0xFFFF00FF, 0xFF00FF00}};
    TBitmap bitmap;
    bitmap.SetPixels(pixels);
    image->Picture()->SetGraphic(&bitmap);
    const auto at = [&](int x, int y) { return WidgetFor(*form)->grab().toImage().pixelColor(x, y); };
    EXPECT_EQ(at(0, 1), QColor(255, 0, 255));
    image->SetTransparent(true);
    EXPECT_EQ(at(0, 0), QColor(0, 255, 0));
    EXPECT_EQ(at(0, 1), QApplication::palette().color(QPalette::Window));
}

TEST(Images, APictureThatNobodyCanDecodeIsShownAsNone) {
    const Shown form(kEmptyForm);
    auto* image = new TImage(&*form);
    image->SetParent(&*form);
    AnsiString broken = PngOf(10, 10, Qt::red);
    broken.resize(40);
    image->Picture()->LoadFromBytes(broken);
    EXPECT_FALSE(WidgetFor(*form)->grab().isNull());
}

TEST(Menus, TheRightButtonOpensTheControlsMenu) {
    const Shown form(kEmptyForm);
    TPopupMenu popup(nullptr);
    auto* item = new TMenuItem(&popup);
    item->SetCaption("Only");
    popup.Items()->Add(item);
    auto* panel = new TPanel(&*form);
    panel->SetParent(&*form);
    form->SetPopupMenu(&popup);
    TComponent* component = nullptr;
    popup.OnPopup = [&](TObject*) { component = popup.PopupComponent; };
    TThread::Queue([] {
        ASSERT_NE(QApplication::activePopupWidget(), nullptr);
        QApplication::activePopupWidget()->close();
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), WidgetFor(*panel)->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(WidgetFor(*panel), &event);
    EXPECT_EQ(component, &*form);
}

TEST(Dragging, AnAutomaticDragDropsOnWhatAccepts) {
    const Shown form(kEmptyForm);
    auto* source = new TPanel(&*form);
    auto* target = new TPanel(&*form);
    source->SetParent(&*form);
    target->SetParent(&*form);
    source->SetBounds(0, 0, 50, 50);
    target->SetBounds(100, 0, 50, 50);
    source->DragMode = dmAutomatic;
    target->OnDragOver = [](TObject*, TObject*, int, int, TDragState, bool& accept) { accept = true; };
    TObject* dropped = nullptr;
    TPoint at;
    target->OnDragDrop = [&](TObject*, TObject* what, int x, int y) {
        dropped = what;
        at = {x, y};
    };
    QWidget* widget = WidgetFor(*source);
    QTest::mousePress(widget, Qt::LeftButton, Qt::NoModifier, QPoint(10, 10));
    QMouseEvent move(QEvent::MouseMove, QPointF(110, 20), widget->mapToGlobal(QPointF(110, 20)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &move);
    QTest::mouseRelease(widget, Qt::LeftButton, Qt::NoModifier, QPoint(110, 20));
    EXPECT_EQ(dropped, source);
    EXPECT_EQ(at, (TPoint{10, 20}));
}

TEST(Embedding, AFormInsideAPanelIsAChildWidget) {
    const Shown form(kEmptyForm);
    auto* panel = new TPanel(&*form);
    panel->SetParent(&*form);
    panel->SetBounds(10, 10, 200, 150);
    auto* inner = new TForm(&*form);
    inner->SetBorderStyle(bsNone);
    auto* edit = new TEdit(inner);
    edit->SetParent(inner);
    inner->SetParent(panel);
    inner->SetAlign(alClient);
    inner->Show();
    Settle();
    ASSERT_NE(inner->Peer(), nullptr);
    EXPECT_FALSE(WidgetFor(*inner)->isWindow());
    EXPECT_TRUE(WidgetFor(*edit)->isVisible());
    EXPECT_EQ(WidgetFor(*inner)->window(), WidgetFor(*form));
    QTest::mouseClick(WidgetFor(*edit), Qt::LeftButton);
    Type(*edit, QStringLiteral("inside"));
    EXPECT_EQ(edit->Text(), "inside");
    EXPECT_EQ(Screen()->ActiveForm(), &*form);
}
