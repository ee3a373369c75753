// What assistive technology hears of the sample's screens.
#include <QAccessible>

#include "screens/entry.h"
#include "screens/window_of.h"

namespace vyn::screens {

namespace {

class Heard : public EntryTest {
  protected:
    void SetUp() override {
        EntryTest::SetUp();
        QAccessible::setActive(true);
    }
    void TearDown() override {
        QAccessible::setActive(false);
        EntryTest::TearDown();
    }
    static std::string NameOf(TComponent& window, const AnsiString& control) {
        const auto* found = ObjectCast<TControl>(window.FindComponent(control));
        if (!found) throw Exception("there is no " + control);
        return QAccessible::queryAccessibleInterface(qt::PeerOfControl(found)->Widget())
            ->text(QAccessible::Name)
            .toStdString();
    }
};

TEST_P(Heard, ASearchScreensGridIsCalledAsWhatItLists) {
    Open("Entrada de comandes");
    While("Client", [](TCustomForm& search) {
        EXPECT_EQ(NameOf(search, "Graella"), "Cerca de clients");
        EXPECT_EQ(NameOf(search, "Cerca"), "Cerca");
        search.SetModalResult(mrCancel);
    });
}

TEST_P(Heard, ListsAreCalledAsTheirScreensAndLinesAsTheirLabel) {
    Open("Entrada de comandes");
    EXPECT_EQ(NameOf(*form, "Graella"), "Entrada de comandes");
    EXPECT_EQ(NameOf(*form, "GraellaDetall"), "Línies de la comanda");
    Open("Clients");
    EXPECT_EQ(NameOf(*form, "Graella"), "Clients");
}

INSTANTIATE_TEST_SUITE_P(Engines, Heard, testing::Values("SQLite"));

}  // namespace

}  // namespace vyn::screens
