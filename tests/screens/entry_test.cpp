// Records are entered, corrected and deleted, on the embedded engine and on a server: the same story, and the same rows
// in the tables afterwards.
#include "entry.h"

namespace vyn::screens {

TEST_P(EntryTest, ACustomerIsEnteredWithMistakesThatAreCaught) {
    Open("Fitxa de client");
    EXPECT_EQ(form->ClassName(), "TFRMDBEntradaDades");
    EXPECT_EQ(Part<TStatusBar>("Estat").SimpleText(), "Registre 1 de 256+");
    EXPECT_EQ(Text("Codi") + "|" + Text("Nom") + "|" + Text("Credit"), "C00001|Ferreteria Puig|500.00");
    EXPECT_FALSE(Enabled("Desar"));
    Press("Nou");
    EXPECT_TRUE(Enabled("Desar"));
    EXPECT_FALSE(Enabled("Nou"));
    EXPECT_EQ(Text("Credit"), "500.00") << "what a new customer begins with";
    TypeACustomer();
    Type("Nom", "");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"), "Cal omplir el camp «Nom».");
    Type("Nom",
         "N\xFA\xF1"
         "ez & Fills");
    Type("Credit", "60000");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"), "El crèdit ha de ser entre 0 i 50.000.");
    Type("Credit", "1500.5");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_FALSE(Enabled("Desar"));
    EXPECT_EQ(RowsOf("SELECT * FROM clients WHERE id > 500"),
              std::vector<std::string>{
                  "501|X00501|Núñez & Fills|Olot|Garrotxa|972 000 111|11/20/2026|1500.5|True|Paga tard||0"});
}

TEST_P(EntryTest, ACodeThatIsTakenIsTold) {
    Open("Fitxa de client");
    Press("Nou");
    TypeACustomer();
    Type("Codi", "C00007");
    Press("Desar");
    EXPECT_NE(Caption("Missatge"), "");
    EXPECT_TRUE(Enabled("Desar")) << "what was typed stays";
    EXPECT_EQ(Text("Poblacio"), "Olot");
    Type("Codi", "x00502");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(RowsOf("SELECT codi FROM clients WHERE id > 500"), std::vector<std::string>{"X00502"});
}

TEST_P(EntryTest, TwoUsersChangeACustomer) {
    Open("Fitxa de client");
    Type("Credit", "700");
    Meanwhile("UPDATE clients SET credit = 900 WHERE id = 1");
    Press("Desar");
    EXPECT_EQ(
        Caption("Missatge"),
        "Un altre usuari ha canviat aquest registre. Crèdit: era «500», ara és «900». Premeu Cancel·la per veure-ho.");
    EXPECT_EQ(RowsOf("SELECT credit FROM clients WHERE id = 1"), std::vector<std::string>{"900"});
    Press("Cancelar");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(Text("Credit"), "900.00");
    Type("Credit", "950");
    Press("Desar");
    EXPECT_EQ(RowsOf("SELECT credit FROM clients WHERE id = 1"), std::vector<std::string>{"950"});
    // Different fields of a customer do not meet.
    Type("Poblacio", "Torell\xF3");
    Meanwhile("UPDATE clients SET credit = 1000 WHERE id = 1");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(RowsOf("SELECT poblacio, credit FROM clients WHERE id = 1"), std::vector<std::string>{"Torelló|1000"});
}

TEST_P(EntryTest, AnOrderOfThreeLinesIsEnteredAndOneIsDeleted) {
    Open("Entrada de comandes");
    EXPECT_EQ(form->ClassName(), "TFRMDBEntradaDadesMD");
    EXPECT_EQ(Total(), "2,155.97");
    EXPECT_EQ(Row("GraellaDetall", 0), "Olla inox|16|55.20|883.20");
    EXPECT_EQ(Looked("Client"), "Serralleria Ferrer") << "the customer of the order that is shown";
    EXPECT_EQ(Looked("Article"), "A107-05");
    Press("Nou");
    EXPECT_EQ(Part<TDataSet>("ConsultaDetall").RecordCount(), 0);
    EXPECT_EQ(Looked("Client"), "");
    Type("Numero", "20249001");
    Type("Data", "11/20/2026");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"), "Cal omplir el camp «Client».");
    Type("Client", "hardware l");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(Looked("Client"), "Hardware López");
    EXPECT_EQ(Text("Adreca") + "|" + Text("Descompte"), "Raval de Sant Pere, 36|15") << "the customer's";
    TypeALine("a100-00", "3");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(Row("GraellaDetall", 0), "Martell petit|3|8.50|25.50") << "the article's price, less the discount";
    EXPECT_EQ(Total(), "25.50");
    TypeALine("A111-09", "0");
    EXPECT_EQ(Caption("Missatge"), "La quantitat ha de ser més gran que zero.");
    Type("Quantitat", "2");
    Press("Desar");
    EXPECT_EQ(Row("GraellaDetall", 1), "Serra antic|2|20.66|41.32");
    EXPECT_EQ(Total(), "66.82");
    TypeALine("A103-02", "10");
    EXPECT_EQ(Total(), "139.12");
    EXPECT_EQ(Row("GraellaDetall", 2), "Cargol gran|10|7.23|72.30");
    Press("EliminarLinia");
    EXPECT_EQ(Total(), "66.82");
    Type("Preu", "20");
    Press("Desar");
    EXPECT_EQ(Total(), "65.50");
    EXPECT_EQ(RowsOf("SELECT * FROM comandes WHERE id > 4000"),
              std::vector<std::string>{"4001|20249001|195|11/20/2026|pendent|Raval de Sant Pere, 36|15"});
    EXPECT_EQ(RowsOf("SELECT * FROM linies WHERE id > 20000 ORDER BY id"),
              (std::vector<std::string>{"20001|4001|1|3|8.5", "20002|4001|120|2|20"}));
}

TEST_P(EntryTest, ACustomerThatIsNotThereIsToldAndWhatWasTypedStays) {
    Open("Entrada de comandes");
    Press("Nou");
    EXPECT_EQ(Looked("Client"), "");
    Type("Numero", "20249002");
    Type("Client", "Nobody i Cia");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"),
              "\"Nobody i Cia\" was not found.\nPress F2 to choose from the list, or Escape to take it back");
    EXPECT_EQ(Text("Client"), "Nobody i Cia");
    Type("Client", "menaje b");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(RowsOf("SELECT client FROM comandes WHERE id > 4000"), std::vector<std::string>{"127"});
}

TEST_P(EntryTest, ACustomerIsChosenFromTheSearchScreen) {
    Open("Entrada de comandes");
    Press("Nou");
    Type("Numero", "20249003");
    While("Client", [this](TCustomForm& search) {
        EXPECT_EQ(AnsiToUtf8(search.Caption()), "Cerca de clients");
        TypeInto(*ObjectCast<TCustomEdit>(search.FindComponent("Cerca")), "vidres g");
        ClickOn(*ObjectCast<TWinControl>(search.FindComponent("Acceptar")));
    });
    EXPECT_EQ(Looked("Client"), "Vidres García");
    EXPECT_EQ(Text("Descompte"), "5");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(RowsOf("SELECT client, descompte FROM comandes WHERE id > 4000"), std::vector<std::string>{"410|5"});
    // Another look, which is taken back.
    While("Client", [](TCustomForm& search) { ClickOn(*ObjectCast<TWinControl>(search.FindComponent("Cancelar"))); });
    EXPECT_EQ(Looked("Client"), "Vidres García");
    EXPECT_FALSE(Part<TDataSet>("Consulta").Modified());
}

TEST_P(EntryTest, ACustomerThatIsNotThereIsAddedAndComesBackChosen) {
    Open("Entrada de comandes");
    Press("Nou");
    Type("Numero", "20249004");
    While("Client", [this](TCustomForm& search) {
        TypeInto(*ObjectCast<TCustomEdit>(search.FindComponent("Cerca")), "Zinc Alba");
        InModalWindow there([](TCustomForm& card) {
            EXPECT_EQ(AnsiToUtf8(card.Caption()), "Client nou");
            const auto type = [&](const char* name, const AnsiString& text) {
                TypeInto(*ObjectCast<TCustomEdit>(card.FindComponent(name)), text);
                Settle();
            };
            EXPECT_EQ(ObjectCast<TCustomEdit>(card.FindComponent("Nom"))->Text(), "Zinc Alba");
            type("Codi", "z00001");
            type("Poblacio", "Olot");
            type("Regio", "Garrotxa");
            type("Adreca", "Ronda 1");
            type("Descompte", "20");
            ClickOn(*ObjectCast<TWinControl>(card.FindComponent("Desar")));
            Settle();
            EXPECT_EQ(AnsiToUtf8(ObjectCast<TControl>(card.FindComponent("Missatge"))->Caption()), "");
        });
        ClickOn(*ObjectCast<TWinControl>(search.FindComponent("Nou")));
        EXPECT_TRUE(there.Ran);
    });
    EXPECT_EQ(Looked("Client"), "Zinc Alba");
    EXPECT_EQ(Text("Adreca") + "|" + Text("Descompte"), "Ronda 1|20");
    Press("Desar");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(RowsOf("SELECT client, adreca FROM comandes WHERE id > 4000"), std::vector<std::string>{"501|Ronda 1"});
}

TEST_P(EntryTest, WhatIsLookedUpFollowsWhenTheScreenIsRefreshed) {
    Open("Entrada de comandes");
    EXPECT_EQ(Looked("Client"), "Serralleria Ferrer");
    // Another screen of the program.
    ObjectCast<TADOConnection>(FindGlobalComponent("Dades.Connexio"))
        ->Execute("UPDATE clients SET nom = 'Serralleria Nova' WHERE nom = 'Serralleria Ferrer'");
    EXPECT_EQ(Looked("Client"), "Serralleria Ferrer");
    Press("Actualitzar");
    EXPECT_EQ(Looked("Client"), "Serralleria Nova");
}

TEST_P(EntryTest, TheOrderScreenStoresNeitherItsNodeNorWhatItLooksUpIn) {
    Open("Entrada de comandes");
    EXPECT_EQ(Looked("Client"), "Serralleria Ferrer");
    auto* screen = ObjectCast<TCustomFRM>(form);
    session->App().GrabaResourceTComponent(screen, screen->IDNode(), screen->Component());
    const auto stored = session->App().Components().GetStreamComponent(screen->Component().IDComponent);
    stored->SetPosition(0);
    const std::string text = BinaryToText(*stored);
    EXPECT_EQ(text.find("IDNode"), std::string::npos);
    EXPECT_EQ(text.find("TFRMDBGrid"), std::string::npos);
    EXPECT_EQ(text.find("TFRMSQLGeneric"), std::string::npos);
    EXPECT_NE(text.find("TVynEditBox"), std::string::npos);
}

TEST_P(EntryTest, ACustomerIsDeletedOnlyWhenAskedAndNotWithOrders) {
    Open("Fitxa de client");
    answer_ = mrNo;
    Press("Eliminar");
    EXPECT_EQ(asked_, std::vector<std::string>{"Voleu eliminar aquest registre?"});
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(FieldText("id"), "1");
    answer_ = mrYes;
    Press("Eliminar");
    EXPECT_NE(Caption("Missatge"), "") << "it has orders";
    EXPECT_EQ(RowsOf("SELECT count(*) FROM clients"), std::vector<std::string>{"500"});
    Press("Nou");
    TypeACustomer();
    Press("Desar");
    Press("Eliminar");
    EXPECT_EQ(Caption("Missatge"), "");
    EXPECT_EQ(RowsOf("SELECT count(*) FROM clients"), std::vector<std::string>{"500"});
}

TEST_P(EntryTest, AScreenWithChangesAsksBeforeItCloses) {
    Open("Fitxa de client");
    EXPECT_TRUE(form->CloseQuery());
    Type("Nom", "Altre nom");
    answer_ = mrCancel;
    EXPECT_FALSE(form->CloseQuery());
    EXPECT_EQ(asked_, std::vector<std::string>{"Hi ha canvis sense desar. Els voleu desar?"});
    EXPECT_TRUE(Enabled("Desar"));
    answer_ = mrNo;
    EXPECT_TRUE(form->CloseQuery());
    EXPECT_EQ(RowsOf("SELECT nom FROM clients WHERE id = 1"), std::vector<std::string>{"Ferreteria Puig"});
    Press("Nou");
    Type("Codi", "x00600");
    answer_ = mrYes;
    EXPECT_FALSE(form->CloseQuery()) << "it cannot be saved";
    Press("Cancelar");
    Type("Nom", "Altre nom");
    EXPECT_TRUE(form->CloseQuery());
    EXPECT_EQ(RowsOf("SELECT nom FROM clients WHERE id = 1"), std::vector<std::string>{"Altre nom"});
}

TEST_P(EntryTest, EveryScreenOfTheSampleOpensOnThisDatabase) {
    for (const char* caption :
         {"Clients", "Articles", "Comandes", "Factures", "Factures per any", "Clients per regió", "Comandes i línies",
          "Línies d'una comanda", "Fitxa de client", "Entrada de comandes"}) {
        Open(caption);
        ASSERT_NE(form, nullptr);
        EXPECT_TRUE(Part<TDataSet>("Consulta").Active()) << caption;
        EXPECT_GT(Part<TDataSet>("Consulta").RecordsFetched(), 0) << caption;
    }
}

TEST_P(EntryTest, TheDatabaseIsFilledOnce) {
    Meanwhile("DELETE FROM linies");
    FillDatabase(where_, VYN_SAMPLE "/database.sql");
    EXPECT_EQ(RowsOf("SELECT count(*) FROM linies"), std::vector<std::string>{"0"});
    EXPECT_EQ(RowsOf("SELECT count(*), sum(credit) FROM clients"), std::vector<std::string>{"500|2625000"});
    EXPECT_EQ(RowsOf("SELECT count(*), round(sum(total), 2) FROM factures").size(), 1u);
}

// The sample has got further columns since the database was made.
TEST_P(EntryTest, ADatabaseOfAnEarlierSampleGetsTheColumnsThatItLacks) {
    Meanwhile("ALTER TABLE clients DROP COLUMN notes");
    FillDatabase(where_, VYN_SAMPLE "/database.sql");
    EXPECT_EQ(RowsOf("SELECT count(*), count(notes) FROM clients"), std::vector<std::string>{"500|0"});
}

INSTANTIATE_TEST_SUITE_P(Engines, EntryTest, testing::Values("SQLite", "PostgreSQL"));

}  // namespace vyn::screens
