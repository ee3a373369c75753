// Sources and destinations of rules, over a live form and a live table.
#include "event_fixtures.h"
#include "platform/objects/component_handle.h"

using namespace vyn;
using namespace event_fixtures;

class Operands : public EventTest {};

TEST_F(Operands, NothingIsNull) { EXPECT_TRUE(Source(tdcNul, "x").IsNull()); }

TEST_F(Operands, AParameterIsReadAndSet) {
    Put(tdcParametre, "YEAR", 2026);
    EXPECT_EQ(Parametres()->GetParametreValue("year"), Variant(2026));
    EXPECT_EQ(Source(tdcParametre, "YEAR"), Variant(2026));
    Put(tdcInternalParam, "YEAR", 2027);
    EXPECT_EQ(Source(tdcInternalParam, "YEAR"), Variant(2027));
    EXPECT_EQ(Source(tdcParametre, "YEAR"), Variant(2026)) << "the two sets are apart";
}

TEST_F(Operands, WithoutItsOwnSetAnInternalParameterIsAnError) {
    events->SetParametresList(nullptr);
    EXPECT_EQ(SourceError(tdcInternalParam, "A"), "ExcepcioEventsVyn: There is no ParametresList with the parameter A");
    EXPECT_EQ(PutError(tdcInternalParam, "A"), "ExcepcioEventsVyn: There is no ParametresList for the parameter A");
}

TEST_F(Operands, AnErrorOfTheSetIsThisComponentsError) {
    Parametres()->CreaAutomaticParams = false;
    const AnsiString error = SourceError(tdcParametre, "NONE");
    EXPECT_EQ(error.substr(0, 19), "ExcepcioEventsVyn: ") << error;
}

TEST_F(Operands, AComponentIsAReferenceThatFindsItAgain) {
    const Variant reference = Source(tdcObjecte, "Amount");
    EXPECT_EQ(TEventsVyn::ComponentOfReference(reference), edit);
    EXPECT_EQ(TEventsVyn::ComponentOfReference(0), nullptr);
    delete edit;
    EXPECT_EQ(MessageOf([&] { TEventsVyn::ComponentOfReference(reference); }),
              "ExcepcioEventsVyn: The component that the reference " + reference.AsText() + " stood for is no more");
}

TEST_F(Operands, AComponentThatNobodyOwnsHasNoOwnerToRefer) {
    TEventsVyn alone(nullptr);
    Variant value;
    alone.CapturaValorOrigen(nullptr, {tdcObjecte, "OWNER"}, value);
    EXPECT_EQ(value, Variant(0));
    EXPECT_EQ(MessageOf([&] {
                  alone.CapturaValorOrigen(nullptr, {tdcPropietat, "OWNER.Caption"}, value);
              }),
              "ExcepcioEventsVyn: No trobat el component: OWNER");
    EXPECT_EQ(MessageOf([&] {
                  alone.ExecutaCodiDesti(nullptr, {tdcFieldName, "owner.Code"}, 1);
              }),
              "ExcepcioEventsVyn: No trobat el component de tipus TDataSet: owner");
    EXPECT_EQ(MessageOf([&] {
                  alone.CapturaValorOrigen(nullptr, {tdcFieldName, "owner.Code"}, value);
              }),
              "ExcepcioEventsVyn: No trobat el component: owner");
}

TEST_F(Operands, TheTextItselfIsAString) { EXPECT_EQ(Source(tdcValorDirecte, "12"), Variant("12")); }

TEST_F(Operands, OwnerIsTheFormOfTheRules) {
    EXPECT_EQ(Source(tdcPropietat, "OWNER.Caption"), Variant("All orders"));
    EXPECT_EQ(Source(tdcPropietat, "owner.caption"), Variant("All orders"));
}

TEST_F(Operands, PropertiesAreReadByTheirKinds) {
    edit->SetText("12.5");
    edit->SetLeft(40);
    check->SetChecked(true);
    EXPECT_EQ(Source(tdcPropietat, "Amount.Text"), Variant("12.5"));
    EXPECT_EQ(Source(tdcPropietat, "Amount.Left"), Variant(40));
    EXPECT_EQ(Source(tdcPropietat, "Paid.Checked"), Variant(1)) << "an enumeration is its number";
    edit->SetAnchors({akLeft, akTop});
    EXPECT_EQ(Source(tdcPropietat, "Amount.Anchors"), Variant(3)) << "a set is its bits";
    edit->SetPasswordChar('*');
    EXPECT_EQ(Source(tdcPropietat, "Amount.PasswordChar"), Variant("*"));
    EXPECT_EQ(Source(tdcPropietat, "Amount.Text.Length"), Variant("12.5")) << "a third name is passed over";
}

TEST_F(Operands, PropertiesAreSetByTheirKinds) {
    Put(tdcPropietat, "Amount.Text", 12);
    EXPECT_EQ(edit->Text(), "12");
    Put(tdcPropietat, "Amount.Text", Variant::Null());
    EXPECT_EQ(edit->Text(), "");
    Put(tdcPropietat, "Amount.Left", "31");
    EXPECT_EQ(edit->Left(), 31);
    Put(tdcPropietat, "Paid.Checked", true);
    EXPECT_TRUE(check->Checked());
    Put(tdcPropietat, "Amount.PasswordChar", "#");
    EXPECT_EQ(edit->PasswordChar(), '#');
    EXPECT_EQ(PutError(tdcPropietat, "Amount.PasswordChar", "ab"),
              AnsiString("ExcepcioEventsVyn: El tipus de la propietat PasswordChar no és vàlida"_w));
    EXPECT_NE(PutError(tdcPropietat, "Amount.Left", "abc"), "no error");
    EXPECT_EQ(edit->Left(), 31);
}

// A component with a property of each kind.
class TEveryKind : public TComponent {
    VYN_OBJECT
  public:
    explicit TEveryKind(TComponent* owner) : TComponent(owner) {}
    int64_t Long = 1;
    double Real = 1.5;
    WideString Wide = u"caf\u00E9";
    Variant Any;
    TComponent* Other() const { return nullptr; }
    void SetOther(TComponent*) {}
    AnsiString ReadOnly() const { return "fixed"; }
    AnsiString Troubled() const { throw Exception("out of order"); }
    void SetTroubled(const AnsiString&) { throw Exception("out of order"); }
};
const ClassInfo& TEveryKind::StaticClass() {
    static const ClassInfo info = DefineClass<TEveryKind, TComponent>("TEveryKind")
                                      .Published("Long", &TEveryKind::Long, &TEveryKind::Long)
                                      .Published("Real", &TEveryKind::Real, &TEveryKind::Real)
                                      .Published("Wide", &TEveryKind::Wide, &TEveryKind::Wide)
                                      .Published("Any", &TEveryKind::Any, &TEveryKind::Any)
                                      .Published("Other", &TEveryKind::Other, &TEveryKind::SetOther)
                                      .Published("ReadOnly", &TEveryKind::ReadOnly)
                                      .Published("Troubled", &TEveryKind::Troubled, &TEveryKind::SetTroubled);
    return info;
}

TEST_F(Operands, WideTextsAndVariantsAreReadAndSet) {
    auto* every = Make<TEveryKind>("Every");
    EXPECT_EQ(Source(tdcPropietat, "Every.Wide"), Variant(AnsiString("café"_w)));
    Put(tdcPropietat, "Every.Wide", AnsiString("posició"_w));
    EXPECT_EQ(every->Wide, u"posici\u00F3");
    for (const Variant& value : {Variant(7), Variant("text"), Variant(2.5), Variant::Null()}) {
        Put(tdcPropietat, "Every.Any", value);
        EXPECT_EQ(every->Any.Type(), value.Type()) << "a variant is set as it is";
        EXPECT_EQ(Source(tdcPropietat, "Every.Any").Type(), value.Type());
    }
}

TEST_F(Operands, LongNumbersRealNumbersAndReferencesAreRefused) {
    Make<TEveryKind>("Every");
    for (const char* name : {"Long", "Real", "Other"}) {
        const AnsiString refused =
            "ExcepcioEventsVyn: El tipus de la propietat "_w + AnsiString(name) + " no és vàlida"_w;
        EXPECT_EQ(SourceError(tdcPropietat, "Every." + AnsiString(name)), refused);
        EXPECT_EQ(PutError(tdcPropietat, "Every." + AnsiString(name)), refused);
    }
    EXPECT_EQ(SourceError(tdcPropietat, "Every.REAL"),
              AnsiString("ExcepcioEventsVyn: El tipus de la propietat REAL no és vàlida"_w))
        << "as the rule has it";
}

TEST_F(Operands, TroubleOfReadingIsThisComponentsError) {
    Make<TEveryKind>("Every");
    EXPECT_EQ(SourceError(tdcPropietat, "Every.Troubled"), "ExcepcioEventsVyn: out of order");
    EXPECT_EQ(PutError(tdcPropietat, "Every.Troubled"), "Exception: out of order");
    EXPECT_EQ(Source(tdcPropietat, "Every.ReadOnly"), Variant("fixed"));
    EXPECT_EQ(PutError(tdcPropietat, "Every.ReadOnly").substr(0, 14), "EPropertyError");
}

TEST_F(Operands, ANumberThatIsNoValueOfAPropertyIsRefused) {
    EXPECT_EQ(PutError(tdcPropietat, "Amount.BorderStyle", 99),
              "EPropertyError: Invalid property value: 99 is no value of TBorderStyle");
    EXPECT_EQ(PutError(tdcPropietat, "Amount.BorderStyle", -1),
              "EPropertyError: Invalid property value: -1 is no value of TBorderStyle");
    EXPECT_EQ(PutError(tdcPropietat, "Amount.Anchors", 16),
              "EPropertyError: Invalid property value: 16 is no value of TAnchorKind");
    EXPECT_EQ(PutError(tdcPropietat, "Amount.Anchors", -1),
              "EPropertyError: Invalid property value: -1 is no value of TAnchorKind");
    Put(tdcPropietat, "Amount.Anchors", 15);
    EXPECT_EQ(Source(tdcPropietat, "Amount.Anchors"), Variant(15));
    EXPECT_EQ(PutError(tdcPropietat, "Amount.Left", 4e9).substr(0, 13), "EVariantError");
    EXPECT_EQ(PutError(tdcPropietat, "Amount.Left", Variant::Null()).substr(0, 13), "EVariantError");
}

TEST_F(Operands, AnyNumberButZeroIsTrue) {
    for (const Variant& value : {Variant(true), Variant(-1), Variant(7), Variant("1"), Variant(0.7)}) {
        check->SetChecked(false);
        Put(tdcPropietat, "Paid.Checked", value);
        EXPECT_TRUE(check->Checked()) << value.AsText();
    }
    for (const Variant& value : {Variant(false), Variant(0), Variant("0")}) {
        check->SetChecked(true);
        Put(tdcPropietat, "Paid.Checked", value);
        EXPECT_FALSE(check->Checked()) << value.AsText();
    }
}

TEST_F(Operands, PropertiesOfOtherKindsAreRefused) {
    const AnsiString refused = "ExcepcioEventsVyn: El tipus de la propietat Font no és vàlida"_w;
    EXPECT_EQ(SourceError(tdcPropietat, "Amount.Font"), refused);
    EXPECT_EQ(PutError(tdcPropietat, "Amount.Font"), refused);
    const AnsiString event = "ExcepcioEventsVyn: El tipus de la propietat OnClick no és vàlida"_w;
    EXPECT_EQ(SourceError(tdcPropietat, "Amount.OnClick"), event);
    EXPECT_EQ(PutError(tdcPropietat, "Amount.OnClick"), event);
}

TEST_F(Operands, APropertyNeedsItsTwoNames) {
    for (const auto& run :
         {std::function<AnsiString(AnsiString)>([&](AnsiString t) { return SourceError(tdcPropietat, t); }),
          std::function<AnsiString(AnsiString)>([&](AnsiString t) { return PutError(tdcPropietat, t); })}) {
        EXPECT_EQ(run(".Text"), "ExcepcioEventsVyn: El nom del component no existeix");
        EXPECT_EQ(run("Amount"), "ExcepcioEventsVyn: El nom de la propietat no existeix");
        EXPECT_EQ(run("Amount..Text"), "ExcepcioEventsVyn: El nom de la propietat no existeix");
        EXPECT_EQ(run("Amount.Wingspan"),
                  "ExcepcioEventsVyn: No trobada la propietat: Wingspan dins el component Amount");
        EXPECT_EQ(run("Nobody.Text"), "Exception: Componente: Nobody no encontrado");
    }
}

TEST_F(Operands, NamesAreLookedForUpwardThroughTheOwners) {
    EXPECT_EQ(events->ReturnComponent("Rules"), events);
    EXPECT_EQ(events->ReturnComponent("Orders"), form.get());
    EXPECT_EQ(events->ReturnComponent("amount"), edit) << "what a component owns is found whatever the letters' case";
    EXPECT_EQ(MessageOf([&] { events->ReturnComponent("orders"); }), "Exception: Componente: orders no encontrado")
        << "a component's own name is compared as it is";
    auto* outer = new TComponent(nullptr);
    outer->SetName("App");
    auto* inner = new TComponent(outer);
    auto* rules = new TEventsVyn(inner);
    auto* uncle = new TComponent(outer);
    uncle->SetName("Uncle");
    EXPECT_EQ(rules->ReturnComponent("Uncle"), uncle);
    EXPECT_EQ(rules->ReturnComponent("App"), outer);
    EXPECT_EQ(rules->ReturnComponent("Owner"), inner);
    delete outer;
}

TEST_F(Operands, TheHostIsAskedForAComponentThatIsNotFound) {
    TComponent elsewhere(nullptr);
    AnsiString asked;
    events->OnNeedComponent = [&](TEventsVyn* sender, const AnsiString& name, TComponent*& found) {
        EXPECT_EQ(sender, events);
        asked += name + " ";
        if (name == "Elsewhere") found = &elsewhere;
    };
    EXPECT_EQ(events->ReturnComponent("Elsewhere"), &elsewhere);
    EXPECT_EQ(MessageOf([&] { events->ReturnComponent("Nobody"); }), "Exception: Componente: Nobody no encontrado");
    events->ReturnComponent("Amount");
    EXPECT_EQ(asked, "Elsewhere Nobody ");
}

TEST_F(Operands, FieldsOfAnOpenDataSetAreReadAndSet) {
    TADOQuery* lines = OpenLines();
    EXPECT_EQ(Source(tdcFieldName, "Lines.Name"), Variant("Rosa"));
    EXPECT_EQ(Source(tdcFieldName, "Lines.Price"), Variant(2.5));
    EXPECT_EQ(lines->State(), dsBrowse);
    Put(tdcFieldName, "Lines.Price", 3.5);
    EXPECT_EQ(lines->State(), dsEdit) << "and it is not posted";
    EXPECT_EQ(Source(tdcFieldName, "Lines.Price"), Variant(3.5));
    lines->Cancel();
    lines->Insert();
    Put(tdcFieldName, "Lines.Name", "Pau");
    EXPECT_EQ(lines->State(), dsInsert) << "a new record stays one";
    lines->Cancel();
}

TEST_F(Operands, ACalculatedFieldIsSetWithoutEditingTheRecord) {
    TADOQuery* lines = OpenLines();
    lines->Close();
    for (const char* name : {"Price", "Twice"}) {
        auto* field = new TFloatField(lines);
        field->SetFieldName(name);
        if (name[0] == 'T') field->SetFieldKind(fkCalculated);
        field->SetDataSet(lines);
    }
    lines->OnCalcFields = [this](TDataSet*) { Put(tdcFieldName, "Lines.Twice", 5.0); };
    lines->Open();
    EXPECT_EQ(lines->FieldByName("Twice")->AsFloat(), 5.0);
    EXPECT_EQ(lines->State(), dsBrowse);
    lines->Append();
    lines->FieldByName("Price")->SetAsFloat(8);
    EXPECT_EQ(lines->FieldByName("Twice")->AsFloat(), 5.0);
    EXPECT_EQ(lines->State(), dsInsert);
    EXPECT_EQ(lines->FieldByName("Price")->AsFloat(), 8.0);
    lines->Cancel();
}

TEST_F(Operands, AQueryStandsForItsDataSet) {
    auto* query = Make<TQuerySQL>("LinesQuery");
    query->SetQryDataSet(OpenLines());
    EXPECT_EQ(Source(tdcFieldName, "LinesQuery.Code"), Variant(7));
    Put(tdcFieldName, "LinesQuery.Name", "Nil");
    EXPECT_EQ(Source(tdcFieldName, "Lines.Name"), Variant("Nil"));
    query->QryDataSet()->Cancel();
}

TEST_F(Operands, AQueryWithoutADataSetIsNone) {
    Make<TQuerySQL>("Empty");
    EXPECT_EQ(SourceError(tdcFieldName, "Empty.Code"),
              AnsiString("ExcepcioEventsVyn: El componente Empty no es un TDataSet sinó un TQuerySQL"_w));
    EXPECT_EQ(PutError(tdcFieldName, "Empty.Code"),
              AnsiString("ExcepcioEventsVyn: El component Empty no és un TDataSet sinó un TQuerySQL"_w));
}

TEST_F(Operands, ADataSetThatClosesWhileItComesToBeEditedIsAnError) {
    TADOQuery* lines = OpenLines();
    lines->BeforeEdit = [](TDataSet* dataSet) { dataSet->Close(); };
    EXPECT_NE(PutError(tdcFieldName, "Lines.Name", "Pau"), "no error");
    EXPECT_EQ(lines->State(), dsInactive);
}

TEST_F(Operands, ADataSetThatClosesWhenItIsEditedHasNoField) {
    TADOQuery* lines = OpenLines();
    lines->AfterEdit = [](TDataSet* dataSet) { dataSet->Close(); };
    EXPECT_EQ(PutError(tdcFieldName, "Lines.Name", "Pau"),
              AnsiString("ExcepcioEventsVyn: El DataSet Lines no conté un Field amb el nom Name"_w));
    auto* more = OpenLines("More");
    more->AfterEdit = [](TDataSet* dataSet) { delete dataSet; };
    EXPECT_EQ(PutError(tdcFieldName, "More.Name", "Pau"),
              AnsiString("ExcepcioEventsVyn: El DataSet More no conté un Field amb el nom Name"_w));
}

TEST_F(Operands, AThirdNameOfAFieldIsPassedOver) {
    OpenLines();
    EXPECT_EQ(Source(tdcFieldName, "Lines.Code.Length"), Variant(7));
    EXPECT_EQ(SourceError(tdcFieldName, "Lines..Code"), "ExcepcioEventsVyn: El nombre del Field no existe");
}

TEST_F(Operands, AClosedDataSetHasNoFields) {
    TADOQuery* lines = OpenLines();
    lines->Close();
    EXPECT_EQ(SourceError(tdcFieldName, "Lines.Code"),
              "ExcepcioEventsVyn: El DataSet Lines no contiene un Field llamado: Code");
}

TEST_F(Operands, AFieldThatNobodyMaySetIsItsOwnError) {
    TADOQuery* lines = OpenLines();
    lines->FindField("Name")->ReadOnly = true;
    EXPECT_EQ(PutError(tdcFieldName, "Lines.Name", "Pau").substr(0, 14), "EDatabaseError");
    lines->Cancel();
}

TEST_F(Operands, AFieldNeedsItsNamesAndADataSet) {
    OpenLines();
    EXPECT_EQ(SourceError(tdcFieldName, ".Code"), "ExcepcioEventsVyn: No existe el nombre del TDataSet");
    EXPECT_EQ(SourceError(tdcFieldName, "Lines"), "ExcepcioEventsVyn: El nombre del Field no existe");
    EXPECT_EQ(SourceError(tdcFieldName, "Amount.Code"),
              AnsiString("ExcepcioEventsVyn: El componente Amount no es un TDataSet sinó un TEdit"_w));
    EXPECT_EQ(SourceError(tdcFieldName, "Lines.Wingspan"),
              "ExcepcioEventsVyn: El DataSet Lines no contiene un Field llamado: Wingspan");
    EXPECT_EQ(PutError(tdcFieldName, ".Code"), "ExcepcioEventsVyn: El nom del component de tipus TDataSet no existeix");
    EXPECT_EQ(PutError(tdcFieldName, "Lines"), "ExcepcioEventsVyn: El nom del Field no existeix");
    EXPECT_EQ(PutError(tdcFieldName, "Amount.Code"),
              AnsiString("ExcepcioEventsVyn: El component Amount no és un TDataSet sinó un TEdit"_w));
    EXPECT_EQ(PutError(tdcFieldName, "Lines.Wingspan"),
              AnsiString("ExcepcioEventsVyn: El DataSet Lines no conté un Field amb el nom Wingspan"_w));
}

TEST_F(Operands, AProcedureIsNoSource) {
    const AnsiString refused =
        "ExcepcioEventsVyn: ERROR : Una funció es troba com a Origen del Codi, i només pot ser destí."_w;
    EXPECT_EQ(SourceError(tdcProcediment, "Save"), refused);
    EXPECT_EQ(SourceError(tdcInternalProc, "Save"), refused);
}

TEST_F(Operands, WhatIsNoDestination) {
    const AnsiString error = "ExcepcioEventsVyn: ";
    EXPECT_EQ(PutError(tdcNul, ""), error + "El Destí d'una linea de codi no pot ser NULL"_w);
    EXPECT_EQ(PutError(tdcObjecte, "Amount"), error + "El Destí d'una linea de codi no pot ser un OBJECTE"_w);
    EXPECT_EQ(PutError(tdcValorDirecte, "1"), error + "El Destí d'una linea de codi no pot ser un VALOR DIRECTE"_w);
    EXPECT_EQ(PutError(tdcExpresion, "1"), error + "El Destí d'una linea de codi no pot ser una expresió"_w);
}

TEST_F(Operands, ANumberThatIsNoTypeIsAnError) {
    EXPECT_EQ(SourceError(static_cast<TTipusDadaCodi>(10), ""),
              "ExcepcioEventsVyn: CapturaValor : Tipus de dada no valid");
    EXPECT_EQ(SourceError(static_cast<TTipusDadaCodi>(-1), ""),
              "ExcepcioEventsVyn: CapturaValor : Tipus de dada no valid");
    EXPECT_EQ(PutError(static_cast<TTipusDadaCodi>(10), ""), "ExcepcioEventsVyn: ExecutaCodi : Tipus de dada no valid");
}

TEST_F(Operands, AnExpressionReadsTheOwnSetBeforeTheGlobalOne) {
    Parametres()->AddParam("A", 2);
    Parametres()->AddParam("B", 10);
    EXPECT_EQ(Source(tdcExpresion, "A*B"), Variant(20.0));
    own->AddParam("A", 3);
    EXPECT_EQ(Source(tdcExpresion, "A*B"), Variant(30.0));
    events->SetParametresList(nullptr);
    EXPECT_EQ(Source(tdcExpresion, "A*B"), Variant(20.0));
}

TEST_F(Operands, AnExpressionReadsTheValuesOfTheMoment) {
    Parametres()->AddParam("A", 2);
    Rule("Twice", {{{tdcParametre, "A"}, {tdcExpresion, "A*2"}}});
    for (int i = 0; i < 3; ++i) events->ExecutaEvent(0);
    EXPECT_EQ(Parametres()->GetParametreValue("A"), Variant(16.0));
    EXPECT_EQ(Source(tdcExpresion, "A/5").Type(), varDouble);
}

TEST_F(Operands, AnExpressionWithANullVariableIsNull) {
    Parametres()->AddParam("A", Variant::Null());
    EXPECT_TRUE(Source(tdcExpresion, "A*2").IsNull());
    Parametres()->SetParametreValue("A", "");
    EXPECT_TRUE(Source(tdcExpresion, "A*2").IsNull()) << "an empty text is none either";
}

TEST_F(Operands, AVariableThatIsNowhereIsNamed) {
    EXPECT_EQ(SourceError(tdcExpresion, "NONE+1"),
              "ExcepcioEventsVyn: Expresi\xF3 inv\xE0lida : NONE+1\n\rERROR TYPE : EParserInternalError\n\r"
              "Error in Function : Variable NONE not found");
}

TEST_F(Operands, AnExpressionThatDoesNotParseIsWrapped) {
    EXPECT_EQ(SourceError(tdcExpresion, "2 + 3"),
              "ExcepcioEventsVyn: Expresi\xF3 inv\xE0lida : 2 + 3\n\rERROR TYPE : EExpressionHasBlanks\n\r"
              "Expression has blanks");
}

TEST_F(Operands, AnAbortWithinAnExpressionStaysSilent) {
    Parametres()->AddParam("A", 1);
    Parametres()->OnGetValorPRM = [](TParametres*, const AnsiString&, Variant&) { throw EAbort("quiet"); };
    EXPECT_EQ(SourceError(tdcExpresion, "A+1"), "EAbort: quiet");
}

TEST_F(Operands, TheParserOfAnExpressionIsGoneWithIt) {
    const int before = events->ComponentCount();
    Source(tdcExpresion, "1+1");
    SourceError(tdcExpresion, "NONE+1");
    EXPECT_EQ(events->ComponentCount(), before);
}

TEST_F(Operands, WithoutItsOwnSetNothingIsTakenOver) {
    Parametres()->AddParam("A", 4);
    events->SetParametresList(nullptr);
    EXPECT_EQ(MessageOf([&] { events->ParserVarNotFound(nullptr, "A"); }), "no error");
}

TEST_F(Operands, AGlobalParameterIsTakenOverIntoTheOwnSet) {
    Parametres()->AddParam("A", 4);
    events->ParserVarNotFound(nullptr, "A");
    EXPECT_EQ(own->GetParametreValue("A"), Variant(4));
    EXPECT_EQ(MessageOf([&] { events->ParserVarNotFound(nullptr, "B"); }),
              "EParserInternalError: Error in Function : Variable B not found");
}

TEST_F(Operands, AProcedureIsTheHostsFirst) {
    AnsiString heard;
    bool takes = true;
    events->OnExecuteProcedureVyn = [&](TObject* sender, const AnsiString& name, bool& executed) {
        EXPECT_EQ(sender, events);
        heard += name + " ";
        executed = takes;
    };
    Put(tdcProcediment, "Save", 1);
    Put(tdcInternalProc, "Print", 1);
    takes = false;
    Put(tdcInternalProc, "Print", 1);
    EXPECT_EQ(heard, "Save Print Print ");
    EXPECT_EQ(PutError(tdcProcediment, "Save"), "ExcepcioEventsVyn: FATAL ERROR : VynApp not assigned");
}

namespace {
TObject* theProcedureGot = nullptr;
void Remember(TObject* object) { theProcedureGot = object; }
}  // namespace

TEST_F(Operands, AProcedureOfTheApplicationGetsTheRules) {
    TVynApp app(nullptr);
    app.Procedures().RegisterProcedure("Save", &Remember);
    events->SetVynApp(&app);
    theProcedureGot = nullptr;
    Put(tdcInternalProc, "Save", 1);
    EXPECT_EQ(theProcedureGot, nullptr) << "an internal one never leaves the form";
    Put(tdcProcediment, "save", 1);
    EXPECT_EQ(theProcedureGot, events);
}

TEST_F(Operands, AnApplicationThatGoesIsForgotten) {
    {
        TVynApp app(nullptr);
        events->SetVynApp(&app);
    }
    EXPECT_EQ(events->VynApp(), nullptr);
    own.reset();
    EXPECT_EQ(events->ParametresList(), nullptr);
}
