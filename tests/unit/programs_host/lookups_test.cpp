// Screens over queries answer those that look values up.
#include "platform/controls/db_grids.h"
#include "platform/controls/status_bars.h"
#include "unit/programs_host/host_fixture.h"

using namespace vyn;

TEST_F(HostLookups, AKeyFindsItsRecord) {
    auto& form = Open<>(2);
    EXPECT_EQ(Found(form, "id", 3), "3");
    EXPECT_EQ(ValueOf(form, "nom"), "García");
    EXPECT_EQ(ValueOf(form, "NOM"), "García");
    EXPECT_EQ(ValueOf(form, "alta"), "null");
    EXPECT_EQ(Found(form, "id", "2"), "2") << "a number as a text";
    EXPECT_EQ(Found(form, "id", 9), "");
    EXPECT_EQ(ValueOf(form, "id"), "null") << "nothing was found";
    EXPECT_EQ(Found(form, "id", "two"), "") << "no number at all";
    EXPECT_EQ(Found(form, "alta", "02/30/2020"), "") << "no date";
}

TEST_F(HostLookups, ATypedTextFindsWhatBeginsSo) {
    auto& form = Open<>(2);
    EXPECT_EQ(Found(form, "nom", "gar"), "3");
    EXPECT_EQ(Found(form, "nom", "GARR"), "4");
    EXPECT_EQ(Found(form, "nom", "s"), "5");
    EXPECT_EQ(Found(form, "nom", "x"), "");
    EXPECT_EQ(Found(form, "nom", "arc"), "") << "not in the middle";
}

TEST_F(HostLookups, AccentsAreAsTheyAreTyped) {
    connection->Execute("INSERT INTO clients (id, nom) VALUES (6, 'Ñandú'), (7, 'Nandu'), (8, 'ÀGORA')"_w);
    auto& form = Open<>(2);
    EXPECT_EQ(Found(form, "nom", "garcia"), "3");
    EXPECT_EQ(Found(form, "nom", "garc\xED"), "3");
    EXPECT_EQ(Found(form, "nom", "agor"), "8");
    EXPECT_EQ(Found(form, "nom", "\xE1g"), "8");
    EXPECT_EQ(Found(form, "nom", "Nandu"), "7") << "just as it is written comes first";
    EXPECT_EQ(Found(form, "nom", "\xD1\x61nd\xFA"), "6");
}

TEST_F(HostLookups, TheWholeTextComesBeforeLongerOnes) {
    auto& form = Open<>(2);
    EXPECT_EQ(Found(form, "nom", "pui"), "1");
    EXPECT_EQ(Found(form, "nom", "Puig"), "2");
    EXPECT_EQ(Found(form, "nom", "puig"), "2");
    EXPECT_EQ(Found(form, "codi", "C1"), "2") << "though C10 stands before it in other orders";
    connection->Execute("INSERT INTO clients (id, codi, nom) VALUES (6, 'c1', 'puig')");
    DataOf(form).Refresh();
    EXPECT_EQ(Found(form, "codi", "c1"), "6") << "just as it is written comes first";
    EXPECT_EQ(Found(form, "nom", "Puig"), "2");
    EXPECT_EQ(Found(form, "nom", "Puig &"), "1");
    EXPECT_EQ(Found(form, "nom", "PUIG"), "2") << "the first that is called so";
}

TEST_F(HostLookups, NullAndNothingFindNothing) {
    auto& form = Open<>(2);
    EXPECT_EQ(Found(form, "alta", Variant::Null()), "");
    EXPECT_EQ(Found(form, "nom", Variant()), "");
    EXPECT_EQ(Found(form, "nom", ""), "");
}

TEST_F(HostLookups, AnUnknownFieldStandsInTheStatusBar) {
    auto& form = Open<>(2);
    EXPECT_EQ(Found(form, "cognom", "Puig"), "");
    EXPECT_EQ(AnsiToUtf8(Part<TStatusBar>(form, "Estat").SimpleText()), "No hi ha cap camp «cognom».");
}

TEST_F(HostLookups, LookingUpLeavesTheScreenAsItIs) {
    auto& form = Open<>(2);
    DataOf(form).MoveBy(1);
    int events = 0;
    DataOf(form).AfterScroll = [&](TDataSet*) { ++events; };
    Part<TDataSource>(form, "Font").OnDataChange = [&](TObject*, TField*) { ++events; };
    const AnsiString status = Part<TStatusBar>(form, "Estat").SimpleText();
    EXPECT_EQ(Found(form, "nom", "sol"), "5");
    EXPECT_EQ(Found(form, "id", 9), "");
    EXPECT_EQ(events, 0);
    EXPECT_EQ(DataOf(form).RecNo(), 2);
    EXPECT_EQ(Part<TStatusBar>(form, "Estat").SimpleText(), status);
    // Also while a record is edited.
    auto& card = Open<>(3);
    DataOf(card).Edit();
    DataOf(card).FieldByName("nom")->SetAsString("Half typed");
    EXPECT_EQ(Found(card, "nom", "sol"), "5");
    EXPECT_TRUE(Locate(card, "id", 4, true)) << "what is edited is not read again";
    EXPECT_EQ(DataOf(card).State(), dsEdit);
    EXPECT_EQ(DataOf(card).FieldByName("nom")->AsString(), "Half typed");
}

TEST_F(HostLookups, BeforeTheFirstSearchTheCurrentRecordAnswers) {
    auto& form = Open<>(2);
    EXPECT_EQ(ValueOf(form, "id"), "1");
    DataOf(form).Last();
    EXPECT_EQ(ValueOf(form, "id"), "5");
}

TEST_F(HostLookups, PicturesAndFieldsWithoutAParametersNameAreLeftOut) {
    auto& form = Open<>(2);
    EXPECT_EQ(ValueOf(form, "foto"), "none");
    EXPECT_EQ(ValueOf(form, "població"_w), "none");
    EXPECT_EQ(ValueOf(form, "codi"), "C3");
}

TEST_F(HostLookups, WhatIsLookedUpIsReadAgainWhenItMayHaveChanged) {
    auto& form = Open<>(2);
    EXPECT_EQ(Found(form, "id", 5), "5");
    connection->Execute("UPDATE clients SET nom = 'Soler i Coll' WHERE id = 5");
    EXPECT_TRUE(Locate(form, "id", 5));
    EXPECT_EQ(ValueOf(form, "nom"), "Soler");
    EXPECT_TRUE(Locate(form, "id", 5, true));
    EXPECT_EQ(ValueOf(form, "nom"), "Soler i Coll");
    EXPECT_EQ(DataOf(form).RecNo(), 1);
}

TEST_F(HostLookups, ValuesThatAreWrittenAreLocatedOrKept) {
    auto& form = Open<>(2);
    TParametres values(nullptr);
    values.SetParametreValue("id", 4);
    values.SetParametreValue("Tarifa", "B");
    EXPECT_EQ(Request(form, VynParamsWrite, values), VynAnswerYes);
    EXPECT_EQ(ValueOf(form, "nom"), "Garrofa");
    EXPECT_EQ(ValueOf(form, "tarifa"), "B");
    values.SetParametreValue("id", 44);
    EXPECT_EQ(Request(form, VynParamsWrite, values), VynAnswerNo);
    EXPECT_EQ(ValueOf(form, "nom"), "null");
    EXPECT_EQ(ValueOf(form, "tarifa"), "B");
}

TEST_F(HostLookups, MasksAreThoseOfTheFields) {
    auto& card = Open<>(3);
    TParametres values(nullptr);
    values.SetParametreValue("codi", 1);
    values.SetParametreValue("nom", 1);
    values.SetParametreValue("altre", 1);
    EXPECT_EQ(Request(card, VynParamsMasks, values), VynAnswerYes);
    EXPECT_EQ(values.AsString("codi", ""), ">L09;1;_");
    EXPECT_EQ(values.AsString("nom", "x"), "");
    EXPECT_EQ(values.AsString("altre", "x"), "");
}

TEST_F(HostLookups, UnknownRequestsAndEmptyHandsGetNo) {
    auto& form = Open<>(2);
    TParametres values(nullptr);
    EXPECT_EQ(Request(form, 0, values), VynAnswerNo);
    EXPECT_EQ(Request(form, 4, values), VynAnswerNo);
    EXPECT_EQ(values.Count(false), 0);
    for (uint32_t message : {VYN_MESSAGE_LOCATE, VYN_MESSAGE_SHOWMODALSEARCH, VYN_MESSAGE_TPARAMETRESLIST})
        EXPECT_EQ(SendMessage(form.Handle(), message, VynParamsRead, 0), VynAnswerNo);
}

TEST_F(HostLookups, AFailingDatabaseIsRaised) {
    connection->Execute("ALTER TABLE clients RENAME TO altres");
    auto& form = Open<>(2);
    EXPECT_NE(Part<TStatusBar>(form, "Estat").SimpleText(), "");
    EXPECT_THROW(Locate(form, "id", 1), EDatabaseError);
    connection->Execute("ALTER TABLE altres RENAME TO clients");
    EXPECT_EQ(Found(form, "id", 1), "1") << "it opens when it can";
}

TEST_F(HostLookups, AScreenWithoutItsQuerySaysSo) {
    Store(5, 1, 7, "object FRMSQLGeneric: TFRMSQLGeneric\nend\n");
    auto& form = Open<>(5);
    try {
        Locate(form, "id", 1);
        FAIL();
    } catch (const EDatabaseError& error) {
        EXPECT_EQ(AnsiToUtf8(error.Message()), "La consulta de la pantalla «Consulta» no s'obre.");
    }
    delete form.FindComponent("Consulta");
    try {
        Locate(form, "id", 1);
        FAIL();
    } catch (const EDatabaseError& error) {
        EXPECT_EQ(AnsiToUtf8(error.Message()), "La pantalla «Consulta» no té cap consulta.");
    }
}

TEST_F(HostLookups, AQueryScreenAnswersWithoutAList) {
    auto& form = Open<>(4);
    EXPECT_EQ(form.ClassName(), "TFRMSQLGeneric");
    EXPECT_EQ(Found(form, "nom", "gar"), "3");
    EXPECT_EQ(ValueOf(form, "codi"), "none");
}
