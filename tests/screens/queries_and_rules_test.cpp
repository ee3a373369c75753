// Screens whose queries follow parameters, and whose rules calculate.
#include "platform/controls/buttons.h"
#include "platform/controls/groups.h"
#include "platform/controls/menus.h"
#include "platform/controls/status_bars.h"
#include "platform/controls/tree_views.h"
#include "query/Uquerysql.h"
#include "screens/screen.h"

namespace vyn::screens {

TEST_F(ScreenTest, ATotalsQueryCountsTheCustomersOfEachRegion) {
    Open("Clients per regió");
    EXPECT_EQ(form->ClassName(), "TFRMDBGridTotals");
    EXPECT_EQ(Caption("Titol"), "Clients per regió");
    EXPECT_EQ(Titles("Graella"), "Regió|Clients|Actius|Crèdit");
    EXPECT_EQ(Rows("Consulta"), 13);
    EXPECT_EQ(Row("Graella", 0), "Gironès|39|35|223,500.00");
    EXPECT_EQ(Row("Graella", 12), "Bages|38|32|180,500.00");
    Parametres()->SetParametreValue("MINIM_CLIENTS", 39);
    EXPECT_EQ(Rows("Consulta"), 13) << "it does not depend on a parameter that was not there";
    Press("Actualitzar");
    EXPECT_EQ(Rows("Consulta"), 6);
    Parametres()->SetParametreValue("MINIM_CLIENTS", 40);
    EXPECT_EQ(Rows("Consulta"), 0);
}

TEST_F(ScreenTest, TheYearThatIsTypedChoosesTheInvoices) {
    Open("Factures per any");
    EXPECT_EQ(Titles("Graella"), "Número|Data|Client|Base|IVA|Total");
    EXPECT_EQ(Row("Graella", 0), "F2026/03600|08/08/2026|Ferreteria Ferrer|1,753.15|368.16|2,121.31");
    Type("Any", "2024");
    EXPECT_EQ(Parametres()->AsString("ANY", ""), "2024");
    EXPECT_EQ(Row("Graella", 0).substr(0, 22), "F2024/01372|12/31/2024");
}

TEST_F(ScreenTest, WhatIsTypedIntoTheYearIsNeverSql) {
    Open("Factures per any");
    for (const char* text : {"1850", "'", "' OR '1'='1", "2026\xA1X\xA1", "--", ":1"}) {
        Type("Any", text);
        EXPECT_EQ(Rows("Consulta"), 0) << text;
    }
    EXPECT_EQ(Part<TStatusBar>("Estat").SimpleText(), "Registre 0 de 0");
    Type("Any", "");
    EXPECT_EQ(Rows("Consulta"), 3600);
}

TEST_F(ScreenTest, TheLinesFollowTheOrder) {
    Open("Comandes i línies");
    EXPECT_EQ(Titles("Graella"), "Número|Data|Client|Població|Estat");
    EXPECT_EQ(Row("Graella", 0), "20244000|11/16/2026|Serralleria Ferrer|Tortosa|preparació");
    EXPECT_EQ(Titles("GraellaDetall"), "Article|Nom|Quantitat|Preu|Import");
    EXPECT_EQ(Row("GraellaDetall", 0), "A107-05|Olla inox|16|55.20|883.20");
    Down("Graella", 2);
    EXPECT_EQ(Part<TDataSet>("Consulta").FieldByName("numero")->AsInteger(), 20243998);
    EXPECT_EQ(Rows("ConsultaDetall"), 5);
    EXPECT_NE(Row("GraellaDetall", 0), "A107-05|Olla inox|16|55.20|883.20");
    // The master's refresh stays at its order, and takes the lines along.
    const std::string line = Row("GraellaDetall", 0);
    Part<TQuerySQL>("Comandes").RefrescaSQL();
    EXPECT_EQ(Part<TDataSet>("Consulta").FieldByName("numero")->AsInteger(), 20243998);
    EXPECT_EQ(Row("GraellaDetall", 0), line);
}

TEST_F(ScreenTest, AScreenWithOthersBelowItStandsAboveThemInTheMenu) {
    TFRMtnAplicacio& main = session->MainForm();
    const TMenuItem* files = ObjectCast<TMainMenu>(main.FindComponent("MenuPrincipal"))->Items()->Items(0);
    TMenuItem* orders = nullptr;
    for (int i = 0; i < files->Count(); ++i)
        if (files->Items(i)->Caption() == "Entrada de comandes") orders = files->Items(i);
    ASSERT_NE(orders, nullptr);
    ASSERT_EQ(orders->Count(), 3);
    EXPECT_EQ(orders->Items(0)->Caption(), "Entrada de comandes");
    EXPECT_EQ(orders->Items(1)->Caption(), "-");
    EXPECT_EQ(orders->Items(2)->Caption(), "Cerca de clients");
    orders->Items(0)->Click();
    EXPECT_GE(session->App().NodesList().IndexOf(24), 0);
    orders->Items(2)->Items(2)->Click();
    EXPECT_GE(session->App().NodesList().IndexOf(26), 0);
}

TEST_F(ScreenTest, AnotherUsersOrderDoesNotMoveTheCurrentOne) {
    Open("Comandes i línies");
    Down("Graella", 1);
    const std::string line = Row("GraellaDetall", 0);
    auto* connection = ObjectCast<TADOConnection>(FindGlobalComponent("Dades.Connexio"));
    connection->Execute("INSERT INTO comandes VALUES (4001, 20244001, 1, '2026-11-17', 'pendent', NULL, 0)");
    Press("Actualitzar");
    EXPECT_EQ(Row("Graella", 0).substr(0, 8), "20244001");
    EXPECT_EQ(Part<TDataSet>("Consulta").FieldByName("numero")->AsInteger(), 20243999);
    EXPECT_EQ(Row("GraellaDetall", 0), line);
}

TEST_F(ScreenTest, ATableThatIsMissingIsToldInTheStatusBar) {
    ObjectCast<TADOConnection>(FindGlobalComponent("Dades.Connexio"))->Execute("DROP TABLE linies");
    Open("Línies d'una comanda");
    EXPECT_NE(Part<TStatusBar>("Estat").SimpleText().find("linies"), AnsiString::npos);
    EXPECT_FALSE(Part<TDataSet>("Consulta").Active());
}

TEST_F(ScreenTest, ARuleCalculatesLineAndOrder) {
    Open("Línies d'una comanda");
    EXPECT_EQ(Titles("Graella"), "Article|Quantitat|Preu|Import");
    EXPECT_EQ(Row("Graella", 0), "Olla inox|16|55.20|883.20");
    EXPECT_EQ(Text("Quantitat") + " x " + Text("Preu"), "16 x 55.2");
    EXPECT_EQ(Caption("Import"), "883.2");
    EXPECT_EQ(Caption("Base") + "|" + Caption("Iva") + "|" + Caption("Total"), "2155.97|452.75|2608.72");
    Type("Quantitat", "10");
    Type("Descompte", "50");
    EXPECT_EQ(Caption("Import"), "276");
    EXPECT_EQ(Caption("Base") + "|" + Caption("Iva") + "|" + Caption("Total"), "1548.77|325.24|1874.01");
    Down("Graella", 1);
    EXPECT_EQ(Text("Quantitat") + " x " + Text("Preu") + " - " + Text("Descompte"), "5 x 73.84 - 0");
    EXPECT_EQ(Caption("Import") + "|" + Caption("Base"), "369.2|2155.97");
}

TEST_F(ScreenTest, AnotherOrderIsCalculatedAtOnce) {
    Open("Línies d'una comanda");
    Type("Numero", "20243999");
    EXPECT_EQ(Rows("Consulta"), 5);
    EXPECT_EQ(Caption("Base") + "|" + Caption("Missatge"), "988.21|");
    Type("Numero", "1");
    EXPECT_EQ(Rows("Consulta"), 0);
    EXPECT_EQ(Text("Quantitat") + Caption("Import") + Caption("Base") + Caption("Total") + Caption("Missatge"), "");
}

TEST_F(ScreenTest, WhatIsNoNumberIsToldAndNothingElseHappens) {
    Open("Línies d'una comanda");
    Type("Preu", "12x");
    EXPECT_EQ(Caption("Missatge"), "El que hi ha escrit no es pot calcular.");
    EXPECT_NE(Parametres()->AsString("IP_ErrorExecutantEvent", "").find("'12x' is not a valid floating point value"),
              AnsiString::npos);
    Type("Preu", "12");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(Caption("Import"), "192");
}

TEST_F(ScreenTest, ALineIsSavedWithItsDiscount) {
    Open("Línies d'una comanda");
    Down("Graella", 1);
    Type("Quantitat", "6");
    Type("Preu", "80");
    Type("Descompte", "25");
    EXPECT_EQ(Caption("Import"), "360");
    const std::string total = Caption("Total");
    Press("Desar");
    EXPECT_EQ(Row("Graella", 1), "Pany profesional|6|60.00|360.00");
    EXPECT_EQ(Part<TDataSet>("Consulta").RecNo(), 2) << "the line that was saved is the current one again";
    EXPECT_EQ(Text("Quantitat") + " x " + Text("Preu") + " - " + Text("Descompte"), "6 x 60 - 0");
    EXPECT_EQ(Caption("Import"), "360");
    EXPECT_EQ(Caption("Total"), total);
    Open("Comandes i línies");
    EXPECT_EQ(Row("GraellaDetall", 1), "A104-04|Pany profesional|6|60.00|360.00");
}

TEST_F(ScreenTest, MoneyIsConvertedBothWays) {
    Open("Conversió de moneda");
    EXPECT_EQ(Caption("Euros") + "|" + Caption("Pessetes") + "|" + Caption("Contravalor"), "6.01|1000|6.01");
    Type("Import", "166386");
    EXPECT_EQ(Caption("Euros") + "|" + Caption("Pessetes") + "|" + Caption("Contravalor"), "1000|166386|1000");
    Part<TRadioGroup>("Moneda").SetItemIndex(1);
    Type("Import", "12.5");
    EXPECT_EQ(Caption("Euros") + "|" + Caption("Pessetes") + "|" + Caption("Contravalor"), "12.5|2080|2080");
    Type("Import", "dotze");
    EXPECT_EQ(Caption("Euros") + Caption("Pessetes") + Caption("Contravalor"), "");
    EXPECT_EQ(Caption("Missatge"), "L'import no és un número.");
    Type("Import", "");
    EXPECT_EQ(Caption("Euros") + Caption("Missatge"), "");
}

TEST_F(ScreenTest, TheScreensAreOpenedThroughTheTree) {
    TFRMtnAplicacio& main = session->MainForm();
    auto* tree = ObjectCast<TTreeView>(main.FindComponent("Arbre"));
    ASSERT_NE(tree, nullptr);
    int opened = 0;
    for (int i = 0; i < tree->Items()->Count(); ++i) {
        TTreeNode* node = tree->Items()->Item(i);
        for (const char* caption : {"Factures per any", "Clients per regió", "Comandes i línies",
                                    "Línies d'una comanda", "Conversió de moneda"}) {
            if (AnsiToUtf8(node->Text()) != caption) continue;
            tree->SetSelected(node);
            main.ObrirClick(nullptr);
            EXPECT_GE(session->App().NodesList().IndexOf(static_cast<int>(node->Data)), 0) << caption;
            ++opened;
        }
    }
    // The four lists stand below the shortcut, too.
    EXPECT_EQ(opened, 5 + 4);
}

}  // namespace vyn::screens
