// The dialog of a lookup box on the screen: its pages in light and dark, and the keyboard's way through it.
#include "controls/Ufrmeditvyneditbox.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/labels.h"
#include "platform/controls/lists.h"
#include "platform/controls/pages.h"
#include "qt/snapshot.h"
#include "unit/datasources/lookup_fixtures.h"
#include "unit/qt/qt_tests.h"

using namespace vyn;

namespace {

class EditorWindow : public lookup_fixtures::LookupTest {
  protected:
    void SetUp() override {
        LookupTest::SetUp();
        auto* box = Make<TVynEditBox>("Client");
        box->SetParent(form.get());
        box->SetDataField("Customer");
        box->SetDataLinkType(dlt_Search);
        box->SetNChild(10);
        box->SetChildDataKey("Code");
        box->SetChildDataShow("Name");
        box->SetAutoSearch(true);
        box->SetExecuteEventName("Calcula_linia");
        box->RelationedFields()->Add("City>Town");
        box->RelationedFields()->Add("Name>Title");
        box->SetVynDataSource(source);
        LookupTest::Settle();
        dialog.reset(CreateForm<TFRMeditVynEditBox>(nullptr));
        dialog->SetEdit_EditBox(box);
    }
    void TearDown() override {
        dialog.reset();
        LookupTest::TearDown();
    }
    template <class T>
    T& Part(const char* name) {
        return vyn::Find<T>(*dialog, name);
    }

    std::unique_ptr<TFRMeditVynEditBox> dialog;
};

TEST_F(EditorWindow, DrawsItsPagesOnLightAndDarkDesktops) {
    const QPalette before = QApplication::palette();
    QPalette dark(QColor(55, 55, 58), QColor(45, 45, 48));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Highlight, QColor(42, 130, 218));
    for (const bool night : {false, true}) {
        if (night) QApplication::setPalette(dark);
        for (const char* page : {"tsGeneral", "tsBuscar", "tsAutoAssign"}) {
            Part<TPageControl>("pcPages").SetActivePage(&Part<TTabSheet>(page));
            const std::string png = qt::GrabForm(*dialog);
            const QImage image =
                QImage::fromData(reinterpret_cast<const uchar*>(png.data()), static_cast<int>(png.size()));
            EXPECT_EQ(image.size(), QSize(440, 352));
            EXPECT_EQ(image.pixelColor(3, 3).lightness() < 128, night) << page;
            if (const char* folder = std::getenv("VYN_PICTURES"))
                qt::GrabFormToFile(*dialog, std::string(folder) + "/editor_" + page + (night ? "_dark.png" : ".png"));
        }
    }
    QApplication::setPalette(before);
}

// No text is cut: each label, check box and button has room for its caption.
TEST_F(EditorWindow, EveryCaptionFits) {
    dialog->Show();
    for (const char* page : {"tsGeneral", "tsBuscar", "tsAutoAssign"}) {
        Part<TPageControl>("pcPages").SetActivePage(&Part<TTabSheet>(page));
        vyn::Settle();
    }
    for (int i = 0; i < dialog->ComponentCount(); ++i) {
        auto* control = ObjectCast<TControl>(dialog->Components(i));
        const auto* label = ObjectCast<TLabel>(control);
        if (!label || label->WordWrap()) continue;
        const QFontMetrics metrics(QApplication::font());
        EXPECT_LE(metrics.horizontalAdvance(QString::fromLatin1(label->Caption().c_str()).remove('&')), label->Width())
            << label->Caption();
    }
    dialog->Close();
}

TEST_F(EditorWindow, TabGoesThroughEachPageInReadingOrder) {
    const std::pair<const char*, std::vector<const char*>> pages[] = {
        {"tsGeneral",
         {"cbDataSource", "cbFieldName", "cbDataLinkType", "ebExecuteEventName", "cbShowButton", "cbReadOnly"}},
        {"tsBuscar",
         {"cbNChild", "cbClassName", "cbChildDataKey", "cbChildDataShow", "cbAutoSearch", "cbAutoSearchMiliseconds",
          "cbAutoRefresh"}},
        {"tsAutoAssign",
         {"memoAutoAssign", "cbAutoAssignSourceParamName", "cbAutoAssignDestFieldName", "bbAddAutoAssign"}},
    };
    dialog->Show();
    for (const auto& [page, parts] : pages) {
        Part<TPageControl>("pcPages").SetActivePage(&Part<TTabSheet>(page));
        vyn::Settle();
        Part<TWinControl>(parts.front()).SetFocus();
        vyn::Settle();
        for (size_t i = 1; i < parts.size(); ++i) {
            vyn::Press(*dialog->ActiveControl(), Qt::Key_Tab);
            vyn::Settle();
            ASSERT_NE(dialog->ActiveControl(), nullptr);
            EXPECT_EQ(dialog->ActiveControl()->Name(), parts[i]);
        }
    }
    vyn::Press(*dialog->ActiveControl(), Qt::Key_Escape);
    EXPECT_FALSE(dialog->Visible());
}

}  // namespace
