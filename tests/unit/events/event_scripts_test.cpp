// Events: the list, how one runs, and how they are stored.
#include "event_fixtures.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/streams/writer.h"

using namespace vyn;
using namespace event_fixtures;

class EventScripts : public EventTest {
  protected:
    // What the component's own events tell, in order.
    void Listen() {
        events->OnExecutaEvent = [this](TComponent*, const AnsiString& name) { heard += "before " + name + ", "; };
        events->AfterExecutaEvent = [this](TComponent*, const AnsiString& name) { heard += "after " + name + ", "; };
        events->OnEventNotFound = [this](TComponent* sender, const AnsiString& name) {
            heard += "no " + name + (sender ? " for " + sender->Name() : AnsiString()) + ", ";
        };
    }
    AnsiString heard;
};

TEST_F(EventScripts, AnEventWithoutLinesIsOnlyTold) {
    Listen();
    Rule("Open", {});
    events->ExecutaEvent(form.get(), "OPEN");
    EXPECT_EQ(heard, "before Open, after Open, ");
}

TEST_F(EventScripts, TheLinesRunInOrder) {
    Rule("Sum", {{{tdcParametre, "A"}, {tdcValorDirecte, "2"}},
                 {{tdcParametre, "A"}, {tdcExpresion, "A*10"}},
                 {{tdcPropietat, "Amount.Text"}, {tdcParametre, "A"}}});
    events->ExecutaEvent(nullptr, "Sum");
    EXPECT_EQ(edit->Text(), "20");
}

TEST_F(EventScripts, OfTwoEventsOfOneNameTheFirstRuns) {
    Rule("Save", {{{tdcParametre, "WHICH"}, {tdcValorDirecte, "first"}}});
    Rule("SAVE", {{{tdcParametre, "WHICH"}, {tdcValorDirecte, "second"}}});
    events->ExecutaEvent(nullptr, "SAVE");
    EXPECT_EQ(Parametres()->GetParametreValue("WHICH"), Variant("first"));
    EXPECT_EQ(events->RetornaPosEvent("save"), 0);
}

TEST_F(EventScripts, AnEventThatIsNotThereIsToldOrPassedOver) {
    events->ExecutaEvent(edit, "None");
    Listen();
    events->ExecutaEvent(edit, "None");
    events->ExecutaEvent(nullptr, "None");
    TStringList noComponent;
    events->ExecutaEvent(&noComponent, "None");
    EXPECT_EQ(heard, "no None for Amount, no None, no None, ");
    EXPECT_FALSE(events->RunEvent("None", edit));
}

TEST_F(EventScripts, AFailureIsKeptAndRaisedAgain) {
    Listen();
    Rule("Bad", {{{tdcNul, ""}, {tdcNul, ""}}});
    EXPECT_EQ(MessageOf([&] { events->ExecutaEvent(nullptr, "Bad"); }),
              "ExcepcioEventsVyn: " + AnsiString("El Destí d'una linea de codi no pot ser NULL"_w));
    EXPECT_EQ(heard, "before Bad, after Bad, ");
    EXPECT_EQ(Parametres()->GetParametreValue("IP_ErrorExecutantEvent"),
              Variant("ExcepcioEventsVyn\n" + AnsiString("El Destí d'una linea de codi no pot ser NULL"_w)));
}

TEST_F(EventScripts, AFailureThatSomebodyHearsIsSwallowed) {
    Listen();
    events->OnErrorAlExecutar = [&](TComponent* sender, const AnsiString& name) {
        EXPECT_EQ(sender, events);
        heard += "failed " + name + ", ";
    };
    Rule("Bad", {{{tdcNul, ""}, {tdcNul, ""}}, {{tdcParametre, "A"}, {tdcValorDirecte, "1"}}});
    events->ExecutaEvent(nullptr, "Bad");
    EXPECT_EQ(heard, "before Bad, after Bad, failed Bad, ");
    EXPECT_FALSE(Parametres()->ParamExists("A")) << "the lines after the failure do not run";
}

TEST_F(EventScripts, AFailureBeforeTheLinesCountsToo) {
    events->OnExecutaEvent = [](TComponent*, const AnsiString&) { throw Exception("not now"); };
    events->AfterExecutaEvent = [this](TComponent*, const AnsiString& name) { heard += "after " + name; };
    Rule("Open", {{{tdcParametre, "A"}, {tdcValorDirecte, "1"}}});
    EXPECT_EQ(MessageOf([&] { events->ExecutaEvent(0); }), "Exception: not now");
    EXPECT_EQ(heard, "after Open");
    EXPECT_FALSE(Parametres()->ParamExists("A"));
}

TEST_F(EventScripts, AnExcusedSourceGivesNull) {
    Parametres()->AddParam("A", 5);
    AnsiString asked;
    events->OnErrorOnValue = [&](TEventsVyn* sender, const TPartAssignacioEvent& part, const Variant& value,
                                 bool& raiseError) {
        EXPECT_EQ(sender, events);
        EXPECT_TRUE(value.IsNull());
        EXPECT_TRUE(raiseError);
        asked += part.Valor + " ";
        raiseError = part.Valor != "Nobody.Text";
    };
    Rule("Excused",
         {{{tdcParametre, "A"}, {tdcPropietat, "Nobody.Text"}}, {{tdcParametre, "B"}, {tdcPropietat, "Noone.Text"}}});
    EXPECT_EQ(MessageOf([&] { events->ExecutaEvent(0); }), "Exception: Componente: Noone no encontrado");
    EXPECT_TRUE(Parametres()->GetParametreValue("A").IsNull());
    EXPECT_EQ(asked, "Nobody.Text Noone.Text ");
}

TEST_F(EventScripts, AFailureIsKeptInASetThatMakesNoParametersItself) {
    Parametres()->CreaAutomaticParams = false;
    Rule("Bad", {{{tdcNul, ""}, {tdcNul, ""}}});
    EXPECT_EQ(MessageOf([&] { events->ExecutaEvent(0); }).substr(0, 17), "ExcepcioEventsVyn");
    EXPECT_TRUE(Parametres()->ParamExists("IP_ErrorExecutantEvent"));
}

TEST_F(EventScripts, AFailureAfterTheLinesCountsToo) {
    events->AfterExecutaEvent = [](TComponent*, const AnsiString&) { throw Exception("too late"); };
    Rule("Open", {{{tdcParametre, "A"}, {tdcValorDirecte, "1"}}});
    Rule("Bad", {{{tdcNul, ""}, {tdcNul, ""}}});
    for (int index : {0, 1}) {
        EXPECT_EQ(MessageOf([&] { events->ExecutaEvent(index); }), "Exception: too late");
        EXPECT_EQ(Parametres()->GetParametreValue("IP_ErrorExecutantEvent"), Variant("Exception\ntoo late"));
    }
}

TEST_F(EventScripts, AnAbortIsKeptAsAnyFailure) {
    events->OnExecutaEvent = [](TComponent*, const AnsiString&) { Abort(); };
    Rule("Quiet", {});
    EXPECT_EQ(MessageOf([&] { events->ExecutaEvent(0); }), "EAbort: Operation aborted");
    EXPECT_EQ(Parametres()->GetParametreValue("IP_ErrorExecutantEvent"), Variant("EAbort\nOperation aborted"));
    events->OnErrorAlExecutar = [](TComponent*, const AnsiString&) {};
    EXPECT_EQ(MessageOf([&] { events->ExecutaEvent(0); }), "no error");
}

TEST_F(EventScripts, AnErrorOfADestinationIsNotExcused) {
    events->OnErrorOnValue = [](TEventsVyn*, const TPartAssignacioEvent&, const Variant&, bool& raiseError) {
        raiseError = false;
    };
    Rule("Bad", {{{tdcPropietat, "Nobody.Text"}, {tdcValorDirecte, "1"}}});
    EXPECT_EQ(MessageOf([&] { events->ExecutaEvent(0); }), "Exception: Componente: Nobody no encontrado");
}

TEST_F(EventScripts, RulesThatStartEachOtherForEverEndWithTheStack) {
    Rule("Flip", {{{tdcPropietat, "Amount.Text"}, {tdcExpresion, "COUNT*10"}},
                  {{tdcParametre, "COUNT"}, {tdcExpresion, "COUNT+1"}}});
    Parametres()->AddParam("COUNT", 1);
    edit->OnChange = [this](TObject*) {
        Parametres()->SetParametreValue("COUNT", Parametres()->GetParametreValue("COUNT").AsInteger() + 1);
        events->ExecutaEvent(0);
    };
    EXPECT_EQ(MessageOf([&] { events->ExecutaEvent(0); }), "EStackOverflow: Stack overflow");
    EXPECT_EQ(Parametres()->GetParametreValue("IP_ErrorExecutantEvent"), Variant("EStackOverflow\nStack overflow"));
    edit->OnChange = nullptr;
    events->ExecutaEvent(0);
    EXPECT_NE(edit->Text(), "");
}

TEST_F(EventScripts, AListThatChangesWhileItRunsRunsToItsEnd) {
    events->OnExecuteProcedureVyn = [this](TObject*, const AnsiString&, bool& executed) {
        executed = true;
        events->Clear();
    };
    Rule("Clear", {{{tdcInternalProc, "Clear"}, {tdcNul, ""}}, {{tdcParametre, "A"}, {tdcValorDirecte, "1"}}});
    events->ExecutaEvent(0);
    EXPECT_EQ(events->Count(), 0);
    EXPECT_EQ(Parametres()->GetParametreValue("A"), Variant("1"));
}

TEST_F(EventScripts, WhoIsAskedMayFreeTheForm) {
    const TLlistaCodiEvents line = {{{tdcParametre, "A"}, {tdcPropietat, "Nobody.Text"}}};
    Rule("Ask", line);
    events->OnErrorOnValue = [this](TEventsVyn*, const TPartAssignacioEvent&, const Variant&, bool& raiseError) {
        raiseError = false;
        form.reset();
    };
    TEventsVyn* rules = events;
    rules->ExecutaEvent(0);
    EXPECT_EQ(form, nullptr);
    EXPECT_FALSE(Parametres()->ParamExists("A"));
}

TEST_F(EventScripts, TheComponentThatIsFoundForARuleMayGoWithTheForm) {
    Rule("Ask", {{{tdcParametre, "A"}, {tdcPropietat, "Nobody.Text"}}});
    events->OnNeedComponent = [this](TEventsVyn*, const AnsiString&, TComponent*&) { form.reset(); };
    TEventsVyn* rules = events;
    EXPECT_EQ(MessageOf([&] { rules->ExecutaEvent(0); }), "Exception: Componente: Nobody no encontrado");
    EXPECT_EQ(Parametres()->GetParametreValue("IP_ErrorExecutantEvent"),
              Variant("Exception\nComponente: Nobody no encontrado"));
}

TEST_F(EventScripts, ARuleMayFreeItsOwnForm) {
    events->OnExecuteProcedureVyn = [this](TObject*, const AnsiString&, bool& executed) {
        executed = true;
        form.reset();
    };
    events->AfterExecutaEvent = [this](TComponent*, const AnsiString&) { heard += "after"; };
    Rule("Close", {{{tdcInternalProc, "Free"}, {tdcNul, ""}}, {{tdcParametre, "A"}, {tdcValorDirecte, "1"}}});
    TEventsVyn* rules = events;
    rules->ExecutaEvent(0);
    EXPECT_EQ(form, nullptr);
    EXPECT_FALSE(Parametres()->ParamExists("A"));
    EXPECT_EQ(heard, "");
}

TEST_F(EventScripts, TheListIsKept) {
    Rule("A", {});
    Rule("B", {{{tdcParametre, "X"}, {tdcNul, ""}}});
    Rule("C", {});
    EXPECT_EQ(events->GetNames()->CommaText(), "A,B,C");
    EXPECT_EQ(events->ExisteixEvent("b").Codi.size(), 1u);
    EXPECT_EQ(events->ExisteixEvent("none"), TEventVyn_NUL());
    events->SetEvent(2, {"D", {}});
    events->Delete({"a", {}});
    events->Delete({"none", {}});
    EXPECT_EQ(events->GetNames()->CommaText(), "B,D");
    EXPECT_EQ(MessageOf([&] { events->GetEvent(2); }), "EListError: List index out of bounds (2)");
    EXPECT_EQ(MessageOf([&] { events->SetEvent(-1, {}); }), "EListError: List index out of bounds (-1)");
    EXPECT_EQ(MessageOf([&] { events->ExecutaEvent(7); }), "EListError: List index out of bounds (7)");
    events->Clear();
    EXPECT_EQ(events->Count(), 0);
}

TEST_F(EventScripts, AreStoredByteForByte) {
    Rule("Go", {{{tdcPropietat, "E.Text"}, {tdcExpresion, "1"}}});
    Rule("No", {});
    TMemoryStream stream;
    {
        TWriter writer(stream);
        events->WriteData(writer);
    }
    const std::string expected(
        "\x01"
        "\x06\x02Go\x01\x02\x03\x06\x06"
        "E.Text\x02\x09\x06\x01"
        "1\0"
        "\x06\x02No\x01\0"
        "\0",
        29);
    EXPECT_EQ(stream.Bytes(), expected);
    stream.SetPosition(0);
    TReader reader(stream);
    events->ReadData(reader);
    ASSERT_EQ(events->Count(), 4) << "reading adds to what is there";
    EXPECT_EQ(events->GetEvent(2), events->GetEvent(0));
    EXPECT_EQ(events->GetEvent(3), events->GetEvent(1));
}

TEST_F(EventScripts, TravelWithTheirForm) {
    const auto stored = [this] {
        TMemoryStream stream;
        WriteComponentToStream(stream, *events);
        stream.SetPosition(0);
        return BinaryToText(stream);
    };
    EXPECT_EQ(stored().find("EventsVyn ="), std::string::npos) << "without events there is nothing to store";
    Rule("Go", {{{tdcParametre, "A"}, {tdcValorDirecte, "1"}}});
    EXPECT_NE(stored().find("EventsVyn = ("), std::string::npos) << stored();
    TMemoryStream stream;
    WriteComponentToStream(stream, *events);
    stream.SetPosition(0);
    TEventsVyn again(nullptr);
    ReadComponentFromStream(stream, &again);
    ASSERT_EQ(again.Count(), 1);
    EXPECT_EQ(again.GetEvent(0), events->GetEvent(0));
}

TEST_F(EventScripts, AnEmptyListIsStoredAgainstAnAncestor) {
    TForm ancestor(nullptr);
    ancestor.SetName("Orders");
    auto* inherited = new TEventsVyn(&ancestor);
    inherited->SetName("Rules");
    inherited->Add({"Go", {}});
    TMemoryStream stream;
    {
        TWriter writer(stream);
        writer.WriteDescendent(*form, &ancestor);
    }
    stream.SetPosition(0);
    EXPECT_NE(BinaryToText(stream).find("EventsVyn = ("), std::string::npos);
}

TEST_F(EventScripts, NumbersThatAreNoTypeAreKept) {
    Rule("Odd", {{{static_cast<TTipusDadaCodi>(99), "a"}, {static_cast<TTipusDadaCodi>(-1), "b"}}});
    TMemoryStream stream;
    {
        TWriter writer(stream);
        events->WriteData(writer);
    }
    stream.SetPosition(0);
    TReader reader(stream);
    events->ReadData(reader);
    ASSERT_EQ(events->Count(), 2);
    EXPECT_EQ(events->GetEvent(1), events->GetEvent(0));
}

TEST_F(EventScripts, ATruncatedListIsAReadError) {
    Rule("Go", {{{tdcPropietat, "E.Text"}, {tdcExpresion, "1"}}});
    TMemoryStream whole;
    {
        TWriter writer(whole);
        events->WriteData(writer);
    }
    for (int64_t size = 0; size < whole.Size(); ++size) {
        TViewStream cut(whole.Bytes().substr(0, static_cast<size_t>(size)));
        TReader reader(cut);
        TEventsVyn fresh(nullptr);
        EXPECT_EQ(MessageOf([&] { fresh.ReadData(reader); }).substr(0, 10), "EReadError") << size;
    }
}

TEST_F(EventScripts, TheWayToAnEventIsPublishedInOrder) {
    std::vector<AnsiString> names;
    for (const PropertyInfo& property : TEventsVyn::StaticClass().Properties()) names.push_back(property.Name);
    EXPECT_EQ(names, (std::vector<AnsiString>{"Name", "Tag", "OnExecutaEvent", "AfterExecutaEvent", "OnEventNotFound",
                                              "OnErrorAlExecutar", "OnExecuteProcedureVyn", "ParametresList",
                                              "OnErrorOnValue", "OnNeedComponent"}));
}
