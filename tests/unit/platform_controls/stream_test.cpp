#include <gtest/gtest.h>

#include <set>

#include "control_support.h"
#include "platform/controls/bit_buttons.h"
#include "platform/controls/data_modules.h"
#include "platform/controls/edits.h"
#include "platform/controls/groups.h"
#include "platform/controls/image_lists.h"
#include "platform/controls/images.h"
#include "platform/controls/labels.h"
#include "platform/controls/lists.h"
#include "platform/controls/menus.h"
#include "platform/controls/pages.h"
#include "platform/controls/panels.h"
#include "platform/controls/status_bars.h"
#include "platform/controls/timers.h"
#include "platform/controls/tool_bars.h"
#include "platform/controls/tree_views.h"

using namespace vyn;
using namespace control_test;

namespace {

// What a new control without a parent stores, by name.
std::vector<std::string> StoredNames(TComponent& component) {
    std::vector<std::string> names;
    for (const PropertyInfo& property : component.GetClassInfo().Properties()) {
        if (!property.IsStored(component) || property.ReadOnly) continue;
        bool isDefault = false;
        switch (property.Kind) {
            case PropertyKind::Integer:
            case PropertyKind::Enumeration:
            case PropertyKind::Set:
            case PropertyKind::Character:
                isDefault = property.HasDefault && property->GetOrdinal(component) == property.Default;
                break;
            case PropertyKind::Int64:
                isDefault = property->GetOrdinal(component) == property.Default;
                break;
            case PropertyKind::String:
                isDefault = property->GetString(component).empty();
                break;
            default:
                isDefault = true;
        }
        if (!isDefault) names.push_back(property.Name);
    }
    return names;
}

std::vector<std::string> OwnNames(TClass info) {
    std::vector<std::string> names;
    const size_t inherited = info->Parent()->Properties().size();
    for (size_t i = inherited; i < info->Properties().size(); ++i) names.push_back(info->Properties()[i].Name);
    return names;
}

}  // namespace

TEST(ControlClasses, EveryClassIsCreatedAndSurvivesWriteReadWrite) {
    RegisterAll();
    for (TClass each : LinkedClasses()) {
        SCOPED_TRACE(each->Name());
        if (!each->InheritsFrom(&TComponent::StaticClass()) || each->InheritsFrom(&TCustomForm::StaticClass()) ||
            each->InheritsFrom(&TDataModule::StaticClass()))
            continue;
        TForm form(nullptr);
        form.SetName("Form1");
        auto* made = static_cast<TComponent*>(each->Create(&form));
        TPageControl* pages = nullptr;
        if (auto* control = ObjectCast<TControl>(made)) {
            if (each == &TTabSheet::StaticClass()) {
                pages = Put<TPageControl>(&form, 0, 0, 200, 100);
                pages->SetName("Pages1");
                control->SetParent(pages);
            } else {
                control->SetParent(&form);
            }
        }
        made->SetName("Thing1");
        const std::string first = Stored(form);
        const auto copy = Restored(first);
        TComponent* read = copy->FindComponent("Thing1");
        if (each == &TMenuItem::StaticClass()) continue;  // stored inside its menu: see below
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(read->ClassType(), each);
        EXPECT_EQ(Stored(*copy), first);
    }
}

TEST(ControlClasses, PropertyNamesAreUniqueAndGettersAgreeWithSetters) {
    RegisterAll();
    for (TClass each : LinkedClasses()) {
        std::set<std::string> names;
        for (const PropertyInfo& property : each->Properties())
            EXPECT_TRUE(names.insert(property.Name).second) << each->Name() << "." << property.Name;
    }
}

TEST(ControlClasses, ANewControlStoresItsPlaceAlone) {
    const std::vector<std::string> place = {"Left", "Top", "Width", "Height"};
    const auto check = [&](TControl& control, const std::vector<std::string>& wanted) {
        EXPECT_EQ(StoredNames(control), wanted) << control.ClassName();
    };
    check(*std::make_unique<TLabel>(nullptr), place);
    check(*std::make_unique<TEdit>(nullptr), place);
    check(*std::make_unique<TMemo>(nullptr), place);
    check(*std::make_unique<TButton>(nullptr), place);
    check(*std::make_unique<TBitBtn>(nullptr), place);
    check(*std::make_unique<TSpeedButton>(nullptr), place);
    check(*std::make_unique<TCheckBox>(nullptr), place);
    check(*std::make_unique<TRadioButton>(nullptr), place);
    check(*std::make_unique<TGroupBox>(nullptr), place);
    check(*std::make_unique<TRadioGroup>(nullptr), place);
    check(*std::make_unique<TPanel>(nullptr), place);
    check(*std::make_unique<TImage>(nullptr), place);
    check(*std::make_unique<TBevel>(nullptr), place);
    check(*std::make_unique<TScrollBox>(nullptr), place);
    check(*std::make_unique<TStaticText>(nullptr), place);
    check(*std::make_unique<TPageControl>(nullptr), place);
    check(*std::make_unique<TSplitter>(nullptr), {"Left", "Top", "Height"});
    check(*std::make_unique<TToolBar>(nullptr), {"Left", "Top", "Width"});
    check(*std::make_unique<TStatusBar>(nullptr), {"Left", "Top", "Width", "Height", "SimplePanel"});
    check(*std::make_unique<TListBox>(nullptr), {"Left", "Top", "Width", "Height", "ItemHeight"});
    check(*std::make_unique<TComboBox>(nullptr), {"Left", "Top", "Width", "Height", "ItemHeight"});
    check(*std::make_unique<TTreeView>(nullptr), {"Left", "Top", "Width", "Height", "Indent"});
    check(*std::make_unique<TTabSheet>(nullptr), {"Left", "Top"});
    check(*std::make_unique<TToolButton>(nullptr), {"Left", "Top", "Height"});
    EXPECT_EQ(StoredNames(*std::make_unique<TTimer>(nullptr)), std::vector<std::string>());
    EXPECT_EQ(StoredNames(*std::make_unique<TMenuItem>(nullptr)), std::vector<std::string>());
}

TEST(ControlClasses, PublishedPropertiesStandInTheirOrder) {
    EXPECT_EQ(OwnNames(&TButton::StaticClass()),
              (std::vector<std::string>{
                  "Anchors",        "BiDiMode",    "Cancel",         "Caption",        "Constraints", "Default",
                  "DragCursor",     "DragKind",    "DragMode",       "Enabled",        "Font",        "ModalResult",
                  "ParentBiDiMode", "ParentFont",  "ParentShowHint", "PopupMenu",      "ShowHint",    "TabOrder",
                  "TabStop",        "Visible",     "OnClick",        "OnContextPopup", "OnDragDrop",  "OnDragOver",
                  "OnEndDock",      "OnEndDrag",   "OnEnter",        "OnExit",         "OnKeyDown",   "OnKeyPress",
                  "OnKeyUp",        "OnMouseDown", "OnMouseMove",    "OnMouseUp",      "OnStartDock", "OnStartDrag"}));
    std::vector<std::string> control;
    for (const PropertyInfo& property : TControl::StaticClass().Properties()) control.push_back(property.Name);
    EXPECT_EQ(control, (std::vector<std::string>{"Name", "Tag", "Left", "Top", "Width", "Height", "Cursor", "Hint"}));
    const auto edit = OwnNames(&TEdit::StaticClass());
    EXPECT_EQ(std::vector<std::string>(edit.begin(), edit.begin() + 5),
              (std::vector<std::string>{"Anchors", "AutoSelect", "AutoSize", "BiDiMode", "BorderStyle"}));
    const auto form = OwnNames(&TForm::StaticClass());
    EXPECT_EQ(std::vector<std::string>(form.begin(), form.begin() + 6),
              (std::vector<std::string>{"ActiveControl", "Align", "Anchors", "AutoScroll", "AutoSize", "BiDiMode"}));
}

TEST(ControlStreams, AFormOfManyKindsSurvivesWriteReadWrite) {
    RegisterAll();
    TForm form(nullptr);
    form.SetName("OrderForm");
    form.SetCaption("Orders");
    form.SetAutoScroll(false);
    form.SetClientSize(500, 300);
    auto* panel = Put<TPanel>(&form, 0, 0, 500, 40);
    panel->SetName("Top");
    panel->SetAlign(alTop);
    auto* label = Put<TLabel>(panel, 8, 8, 40, 13);
    label->SetName("Title");
    label->SetCaption("&Name");
    label->Font()->SetStyle({fsBold, fsItalic});
    auto* edit = Put<TEdit>(panel, 60, 8, 100, 21);
    edit->SetName("NameEdit");
    edit->SetText(
        "Garc\xED"
        "a");
    label->SetFocusControl(edit);
    auto* combo = Put<TComboBox>(&form, 8, 60, 120, 21);
    combo->SetName("Combo");
    combo->Items()->SetCommaText("one,two,three");
    combo->SetItemIndex(1);
    auto* group = Put<TRadioGroup>(&form, 8, 90, 120, 80);
    group->SetName("Group");
    group->Items()->SetCommaText("a,b,c");
    group->SetItemIndex(2);
    auto* pages = Put<TPageControl>(&form, 200, 60, 200, 150);
    pages->SetName("Pages");
    for (const char* name : {"First", "Second"}) {
        auto* sheet = new TTabSheet(&form);
        sheet->SetPageControl(pages);
        sheet->SetName(name);
        sheet->SetCaption(name);
    }
    pages->SetActivePageIndex(1);
    auto* menu = new TMainMenu(&form);
    menu->SetName("Menu");
    auto* file = new TMenuItem(&form);
    file->SetName("FileItem");
    file->SetCaption("&File");
    menu->Items()->Add(file);
    auto* open = new TMenuItem(&form);
    open->SetName("OpenItem");
    open->SetShortCut(TextToShortCut("Ctrl+O"));
    file->Add(open);
    form.SetMenu(menu);
    auto* bar = Put<TStatusBar>(&form, 0, 280, 500, 19);
    bar->SetName("Bar");
    static_cast<TStatusPanel*>(bar->Panels()->Add())->SetText("ready");
    auto* tree = Put<TTreeView>(&form, 8, 180, 100, 80);
    tree->SetName("Tree");
    auto* node = tree->Items()->Add(nullptr, "root");
    tree->Items()->AddChild(node, "leaf")->Data = 42;
    form.SetActiveControl(edit);

    const std::string bytes = Stored(form);
    const auto copy = Restored(bytes);
    EXPECT_EQ(Stored(*copy), bytes);
    EXPECT_EQ(copy->ClientWidth(), 500);
    EXPECT_EQ(copy->ClientHeight(), 300);
    auto* readLabel = static_cast<TLabel*>(copy->FindComponent("Title"));
    EXPECT_EQ(readLabel->FocusControl(), copy->FindComponent("NameEdit"));
    EXPECT_EQ(readLabel->EffectiveFont().Style(), TFontStyles({fsBold, fsItalic}));
    EXPECT_FALSE(readLabel->ParentFont());
    EXPECT_EQ(static_cast<TComboBox*>(copy->FindComponent("Combo"))->Text(), "two");
    auto* readGroup = static_cast<TRadioGroup*>(copy->FindComponent("Group"));
    EXPECT_EQ(readGroup->ItemIndex(), 2);
    EXPECT_TRUE(readGroup->Buttons(2)->Checked());
    auto* readPages = static_cast<TPageControl*>(copy->FindComponent("Pages"));
    ASSERT_EQ(readPages->PageCount(), 2);
    EXPECT_EQ(readPages->ActivePageIndex(), 1);
    EXPECT_TRUE(readPages->Pages(1)->Visible());
    EXPECT_FALSE(readPages->Pages(0)->Visible());
    EXPECT_EQ(copy->Menu()->Items()->Items(0)->Items(0)->ShortCut(), TextToShortCut("Ctrl+O"));
    auto* readTree = static_cast<TTreeView*>(copy->FindComponent("Tree"));
    EXPECT_EQ(readTree->Items()->Item(1)->Text(), "leaf");
    EXPECT_EQ(readTree->Items()->Item(1)->Data, 42);
    EXPECT_EQ(copy->ActiveControl(), copy->FindComponent("NameEdit"));
    EXPECT_EQ(static_cast<TStatusBar*>(copy->FindComponent("Bar"))->Panel(0)->Text(), "ready");
}

TEST(ControlStreams, PicturesComeBackByteForByte) {
    PixelImage pixels;
    pixels.Width = 3;
    pixels.Height = 2;
    pixels.Pixels = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFF000000, 0xFFFFFFFF, 0xFF123456};
    TForm form(nullptr);
    form.SetName("F");
    auto* image = Put<TImage>(&form, 0, 0, 10, 10);
    image->SetName("I");
    image->Picture()->Bitmap()->SetPixels(pixels);
    auto* other = Put<TImage>(&form, 0, 20, 10, 10);
    other->SetName("J");
    TEncodedGraphic unknown("TMetafile");
    TViewStream data("whatever bytes");
    unknown.LoadFromStream(data);
    other->Picture()->SetGraphic(&unknown);
    const std::string bytes = Stored(form);
    const auto copy = Restored(bytes);
    EXPECT_EQ(Stored(*copy), bytes);
    auto* read = static_cast<TImage*>(copy->FindComponent("I"));
    EXPECT_EQ(read->Picture()->Bitmap()->Pixels().Pixels, pixels.Pixels);
    EXPECT_EQ(static_cast<TImage*>(copy->FindComponent("J"))->Picture()->Graphic()->FileBytes(), "whatever bytes");
}

TEST(ControlStreams, AnImageListKeepsItsPicturesAndBytesOfAnotherFormat) {
    TForm form(nullptr);
    form.SetName("F");
    auto* list = new TImageList(&form);
    list->SetName("L");
    TBitmap strip;
    strip.SetSize(32, 16);
    EXPECT_EQ(list->Add(strip), 0);
    EXPECT_EQ(list->Count(), 2);
    const std::string bytes = Stored(form);
    const auto copy = Restored(bytes);
    EXPECT_EQ(static_cast<TImageList*>(copy->FindComponent("L"))->Count(), 2);
    EXPECT_EQ(Stored(*copy), bytes);
}

TEST(ControlStreams, ATruncatedTreeRaises) {
    TTreeView tree(nullptr);
    tree.Items()->Add(nullptr, "one");
    TMemoryStream stream;
    TForm form(nullptr);
    form.SetName("F");
    tree.SetName("T");
    TTreeView target(nullptr);
    // A count that the bytes cannot hold.
    const std::string hostile("\xFF\xFF\xFF\x7F", 4);
    class Filer : public TFiler {
      public:
        explicit Filer(std::string bytes) : bytes_(std::move(bytes)) {}
        void DefineProperty(const AnsiString&, const ReadData&, const WriteData&, bool) override {}
        void DefineBinaryProperty(const AnsiString&, const std::function<void(TStream&)>& read,
                                  const std::function<void(TStream&)>&, bool) override {
            TViewStream view(bytes_);
            read(view);
        }
        void DefineIntegerProperty(const AnsiString&, const std::function<void(int)>&, int, bool) override {}
        void DefineStringListProperty(const AnsiString&, const std::function<void(std::vector<AnsiString>)>&,
                                      const std::function<std::vector<AnsiString>()>&, bool) override {}
        void FileComponentData(TComponent&) override {}
        bool IsReader() const override { return true; }

      private:
        std::string bytes_;
    } filer(hostile);
    EXPECT_THROW(target.Items()->DefineProperties(filer), ETreeViewError);
    EXPECT_EQ(target.Items()->Count(), 0);
}
