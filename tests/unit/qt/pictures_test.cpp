#include <QImage>

#include "platform/controls/image_lists.h"
#include "platform/controls/images.h"
#include "platform/controls/lists.h"
#include "platform/controls/tool_bars.h"
#include "platform/controls/tree_views.h"
#include "qt/snapshot.h"
#include "qt_tests.h"

using namespace vyn;

namespace {

// A picture of one colour with a border, to be seen at its place.
PixelImage Square(int size, uint32_t color) {
    PixelImage image{size, size, std::vector<uint32_t>(static_cast<size_t>(size) * static_cast<size_t>(size), color)};
    for (int i = 0; i < size; ++i)
        for (const int at : {i, i * size, i * size + size - 1, (size - 1) * size + i})
            image.Pixels[static_cast<size_t>(at)] = 0xFF404040;
    return image;
}

std::unique_ptr<TForm> DemoForm() {
    std::unique_ptr<TForm> form = FormFromText(ReadTestFile("demo.form"));
    auto& tree = Find<TTreeView>(*form, "Tree1");
    TTreeNode* clients = tree.Items()->Add(nullptr, "Clients");
    tree.Items()->AddChild(clients, "Active");
    TTreeNode* old = tree.Items()->AddChild(clients, "Former");
    tree.Items()->AddChild(old, "2001");
    tree.Items()->Add(nullptr, "Suppliers");
    TTreeNode* stock = tree.Items()->Add(nullptr, "Stock");
    tree.Items()->AddChild(stock, "Articles");
    clients->Expand(false);
    tree.SetSelected(old);
    auto* images = new TImageList(form.get());
    images->AddImage(Square(16, 0xFF7FB2E5));
    images->AddImage(Square(16, 0xFFE5B27F));
    Find<TToolBar>(*form, "ToolBar1").SetImages(images);
    TBitmap bitmap;
    bitmap.SetPixels(Square(12, 0xFF80C080));
    Find<TImage>(*form, "Image1").Picture()->SetGraphic(&bitmap);
    return form;
}

}  // namespace

TEST(Pictures, AFormIsDrawnInItsClientSizeWithItsMenuBar) {
    const std::unique_ptr<TForm> form = DemoForm();
    const std::string png = qt::GrabForm(*form);
    const QImage image = QImage::fromData(reinterpret_cast<const uchar*>(png.data()), static_cast<int>(png.size()));
    EXPECT_EQ(image.width(), 760);
    EXPECT_GT(image.height(), 520 + 10);
    EXPECT_FALSE(form->Visible());
    if (const char* folder = std::getenv("VYN_PICTURES")) qt::GrabFormToFile(*form, std::string(folder) + "/demo.png");
}

// Dark palettes reach everything that has not a colour of its own.
TEST(Pictures, DarkDesktopsGiveDarkForms) {
    const QPalette before = QApplication::palette();
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(45, 45, 48));
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::Button, QColor(55, 55, 58));
    dark.setColor(QPalette::ButtonText, Qt::white);
    dark.setColor(QPalette::Mid, QColor(90, 90, 95));
    dark.setColor(QPalette::Light, QColor(70, 70, 74));
    QApplication::setPalette(dark);
    {
        const std::unique_ptr<TForm> form = FormFromText(ReadTestFile("variants.form"));
        const std::string png = qt::GrabForm(*form);
        const QImage image = QImage::fromData(reinterpret_cast<const uchar*>(png.data()), static_cast<int>(png.size()));
        EXPECT_LT(qGray(image.pixel(3, 3)), 60);
        int bright = 0;
        for (int x = 310; x < 420; ++x)
            for (int y = 256; y < 270; ++y) bright += qGray(image.pixel(x, y)) > 90;
        EXPECT_GT(bright, 0);  // the label's letters
        if (const char* folder = std::getenv("VYN_PICTURES"))
            qt::GrabFormToFile(*form, std::string(folder) + "/dark.png");
    }
    QApplication::setPalette(before);
}

TEST(Pictures, EveryVariantIsDrawn) {
    const std::unique_ptr<TForm> form = FormFromText(ReadTestFile("variants.form"));
    Find<TListBox>(*form, "List1").SetSelected(1, true);
    Find<TListBox>(*form, "List1").SetSelected(2, true);
    EXPECT_FALSE(qt::GrabForm(*form).empty());
    if (const char* folder = std::getenv("VYN_PICTURES"))
        qt::GrabFormToFile(*form, std::string(folder) + "/variants.png");
}

TEST(Pictures, TheSameFormGivesTheSamePicture) {
    const std::unique_ptr<TForm> first = DemoForm();
    const std::unique_ptr<TForm> second = DemoForm();
    EXPECT_EQ(qt::GrabForm(*first), qt::GrabForm(*second));
}

TEST(Pictures, AnotherSizeIsTheClientAreas) {
    const std::unique_ptr<TForm> form = FormFromText("object F: TForm\nend\n");
    const std::string png = qt::GrabForm(*form, 300, 200);
    const QImage image = QImage::fromData(reinterpret_cast<const uchar*>(png.data()), static_cast<int>(png.size()));
    EXPECT_EQ(image.size(), QSize(300, 200));
    EXPECT_EQ(form->ClientWidth(), 300);
}
