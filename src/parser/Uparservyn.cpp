#include "parser/Uparservyn.h"

#include <algorithm>
#include <cmath>

namespace vyn {

namespace parser_detail {

constexpr char kInternalError[] = "TParser internal error";

std::shared_ptr<const TFunctionList> NoFunctions() {
    static const auto none = std::make_shared<const TFunctionList>();
    return none;
}

void CheckFunctionName(const AnsiString& name) {
    const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (name.empty() || isDigit(name[0]) ||
        !std::all_of(name.begin(), name.end(), [&](char c) { return isLetter(c) || isDigit(c); }))
        throw EBadName(name);
}

// Lists are shared between parsers until one of them changes its own.
void AddFunction(std::shared_ptr<const TFunctionList>& list, const AnsiString& name, TMathRoutine routine) {
    CheckFunctionName(name);
    auto changed = std::make_shared<TFunctionList>(*list);
    changed->Add(name, routine);
    list = std::move(changed);
}

bool RemoveFunction(std::shared_ptr<const TFunctionList>& list, const AnsiString& name) {
    if (!list->Find(name)) return false;
    auto changed = std::make_shared<TFunctionList>(*list);
    changed->Remove(name);
    list = std::move(changed);
    return true;
}

}  // namespace parser_detail

// Handlers run while variables are read: they may not take the list away from under the calculation.
class TCustomParserVyn::Calculation {
  public:
    explicit Calculation(TCustomParserVyn& parser) : parser_(parser) {
        if (parser.calculating_) throw EParserInternalError(parser_detail::kInternalError);
        parser.calculating_ = true;
    }
    ~Calculation() { parser_.calculating_ = false; }

  private:
    TCustomParserVyn& parser_;
};

const ClassInfo& TCustomParserVyn::StaticClass() {
    static const ClassInfo info =
        DefineClass<TCustomParserVyn, TComponent>("TCustomParserVyn")
            .Published("Expression", &TCustomParserVyn::Expression, &TCustomParserVyn::SetStoredExpression)
            .Event("OnVariableNotFound", &TCustomParserVyn::OnVariableNotFound)
            .Event("OnParserError", &TCustomParserVyn::OnParserError);
    return info;
}

TCustomParserVyn::TCustomParserVyn(TComponent* owner)
    : TComponent(owner),
      oneParam_(parser_detail::NoFunctions()),
      twoParam_(parser_detail::NoFunctions()),
      variables_(new TParametresList(this)) {}

TCustomParserVyn::~TCustomParserVyn() { BeginDestruction(); }

void TCustomParserVyn::SetStoredExpression(const AnsiString& text) {
    if (HasState(csLoading) || HasState(csReading)) {
        // Its variables may not be there yet: it is compiled when it is first calculated.
        FreeExpression();
        expression_ = text;
        compileLater_ = !text.empty();
        return;
    }
    SetExpression(text);
}

bool TCustomParserVyn::SetExpression(const AnsiString& text) {
    AnsiString copy = text;  // may be this parser's own
    FreeExpression();
    expression_ = std::move(copy);
    return Compile();
}

bool TCustomParserVyn::Compile() {
    compileLater_ = false;
    try {
        const Calculation guard(*this);
        const uint64_t version = TParametres::BindingVersion();
        const VariableSearch search = [this](const AnsiString& name) {
            OnVariableNotFound(this, name);
            return variables_->ParamByName(name) != nullptr;
        };
        ParseFunction(expression_, *variables_, *oneParam_, *twoParam_, operations_, parseFailed_,
                      OnVariableNotFound ? search : VariableSearch());
        operations_.FixRoutines();
        // The compiler has found the variables where they are, unless a handler moved them.
        if (version == TParametres::BindingVersion()) foundVersion_ = version;
        return true;
    } catch (const Exception& error) {
        if (!OnParserError) throw;
        OnParserError(this, error);
        return false;
    }
}

void TCustomParserVyn::FreeExpression() {
    if (calculating_) throw EParserInternalError(parser_detail::kInternalError);
    operations_.Clear();
    calculatedBefore_ = false;
    foundVersion_ = boundVersion_ = plainVersion_ = kNoVersion;
    constantResult_ = nullptr;
    expression_.clear();
    parseFailed_ = false;
    compileLater_ = false;
}

double TCustomParserVyn::CalcValue() {
    if (constantResult_) return *constantResult_;
    if (plainVersion_ != TParametres::BindingVersion()) return CalcAnew();
    for (const TParametres* params : boundSets_)
        if (params->ReadsMayBeWatched()) return CalcFollowed();
    return operations_.Run();
}

// Somebody follows the parameters, and may watch the reads.
double TCustomParserVyn::CalcFollowed() {
    for (const TParametres* params : boundSets_)
        if (params->ReadsAreWatched()) return CalcAnew();
    return operations_.Run();
}

double TCustomParserVyn::CalcAnew() {
    if (compileLater_) Compile();
    if (operations_.Empty()) return 0;
    const Calculation guard(*this);
    if (foundVersion_ != TParametres::BindingVersion()) FindVariables();
    if (!calculatedBefore_) {
        calculatedBefore_ = true;
        if (!ReadVariables(true)) ReadVariablesByName();
        return operations_.RunList();
    }
    if (!operations_.HasProgram()) {
        operations_.BuildProgram();
        const double* constant = operations_.ConstantResult();
        if (constant && std::isfinite(*constant)) constantResult_ = constant;
    }
    if (boundVersion_ != foundVersion_) BindVariables();
    if (!ReadVariables(false)) ReadVariablesByName();
    return operations_.Run();
}

// Where the variables' parameters are now.
void TCustomParserVyn::FindVariables() {
    for (OperationVariable& variable : operations_.Variables()) {
        int index = -1;
        variable.Params = variables_->ParamByName(variable.Name, index);
        variable.Stored = variable.Params ? &variable.Params->StoredValue(index) : nullptr;
    }
    foundVersion_ = TParametres::BindingVersion();
}

void TCustomParserVyn::BindVariables() {
    boundSets_.clear();
    boundPlaces_.clear();
    bool plain = true;
    for (const OperationVariable& variable : operations_.Variables()) {
        if (variable.Params && std::find(boundSets_.begin(), boundSets_.end(), variable.Params) == boundSets_.end())
            boundSets_.push_back(variable.Params);
        const double* stored = variable.Stored ? variable.Stored->IfDouble() : nullptr;
        boundPlaces_.push_back(stored ? stored : variable.Place);
        plain = plain && stored;
    }
    operations_.BindVariables(boundPlaces_);
    boundVersion_ = foundVersion_;
    plainVersion_ = plain ? foundVersion_ : kNoVersion;
}

// Puts the variables' values into their places: all of them, or those that are no doubles. False when they have to be
// read by name instead: where somebody watches, so that the events fire, and when reading one has moved the others.
bool TCustomParserVyn::ReadVariables(bool all) {
    std::vector<OperationVariable>& variables = operations_.Variables();
    for (const OperationVariable& variable : variables)
        if (variable.Params && variable.Params->ReadsAreWatched()) return false;
    for (const OperationVariable& variable : variables) {
        const double* number = variable.Stored ? variable.Stored->IfDouble() : nullptr;
        if (number) {
            if (all) *variable.Place = *number;
            continue;
        }
        const int32_t* integer = variable.Stored ? variable.Stored->IfInteger() : nullptr;
        *variable.Place = integer ? *integer : GetVariable(variable.Name);
        if (foundVersion_ != TParametres::BindingVersion()) return false;
    }
    return true;
}

void TCustomParserVyn::ReadVariablesByName() {
    boundPlaces_.clear();
    for (const OperationVariable& variable : operations_.Variables()) {
        *variable.Place = GetVariable(variable.Name);
        boundPlaces_.push_back(variable.Place);
    }
    // What was read is what is calculated with, whatever the handlers did to the parameters; bound anew the next time.
    if (operations_.HasProgram()) operations_.BindVariables(boundPlaces_);
    foundVersion_ = boundVersion_ = plainVersion_ = kNoVersion;
}

void TCustomParserVyn::SetVar(const AnsiString& name, long double value) {
    TParametres* global = Parametres();
    if (!global) throw EParserInternalError(parser_detail::kInternalError);
    global->SetParametreValue(name, Variant(static_cast<double>(value)));
}

double TCustomParserVyn::GetVariable(const AnsiString& name) {
    TParametres* params = variables_->ParamByName(name);
    if (!params && OnVariableNotFound) {
        OnVariableNotFound(this, name);
        params = variables_->ParamByName(name);
    }
    if (!params) throw EVarNotFound("Variable " + name + " not found");
    const Variant value = params->GetParametreValue(name);
    if (value.IsNull() || VarToStr(value).empty()) throw EVarIsNull("Variable " + name + " is null");
    return params->AsDouble(name, 0);
}

bool TCustomParserVyn::VariableExists(const AnsiString& name) {
    if (variables_->ParamByName(name)) return true;
    OnVariableNotFound(this, name);
    return variables_->ParamByName(name) != nullptr;
}

void TCustomParserVyn::ClearVariables() {
    while (variables_->Count() > 0) variables_->Delete(variables_->Count() - 1);
}

void TCustomParserVyn::ClearVariable(const AnsiString& name) {
    if (TParametres* params = variables_->ParamByName(name)) params->DeleteParam(name);
}

void TCustomParserVyn::AddFunctionOneParam(const AnsiString& name, TMathRoutine routine) {
    parser_detail::AddFunction(oneParam_, name, routine);
}

void TCustomParserVyn::AddFunctionTwoParam(const AnsiString& name, TMathRoutine routine) {
    parser_detail::AddFunction(twoParam_, name, routine);
}

void TCustomParserVyn::ClearFunction(const AnsiString& name) {
    if (parser_detail::RemoveFunction(oneParam_, name) || parser_detail::RemoveFunction(twoParam_, name))
        SetExpression({});
}

void TCustomParserVyn::ClearFunctions() {
    oneParam_ = parser_detail::NoFunctions();
    twoParam_ = parser_detail::NoFunctions();
}

const ClassInfo& TParserVyn::StaticClass() {
    static const ClassInfo info = DefineClass<TParserVyn, TCustomParserVyn>("TParserVyn");
    return info;
}

TParserVyn::TParserVyn(TComponent* owner) : TCustomParserVyn(owner) {
    oneParam_ = BuiltInOneParam();
    twoParam_ = BuiltInTwoParam();
}

AnsiString TParserVyn::RemoveBlanks(const AnsiString& text) {
    AnsiString result = text;
    std::erase(result, ' ');
    return result;
}

}  // namespace vyn
