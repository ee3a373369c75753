#pragma once

#include <memory>

#include "foundation/Uparametres.h"
#include "parser/Uparserbuildvyn.h"

namespace vyn {

using TParserVariableNotFound = Event<void(TObject* Sender, const AnsiString& VariableName)>;
using TParserExceptionEvent = Event<void(TObject* Sender, const Exception& E)>;

// An arithmetic expression that is compiled once (Uparserbuildvyn.h tells its grammar) and calculated as often as one
// wants, with doubles. Its variables are parameters of the sets in its own list, which it does not own, and are read
// anew for each calculation; texts that are numbers count as numbers.
//
// Errors of the text are raised by SetExpression and Calculate errors by CalcValue: EMathParserError and its family,
// what reading a parameter raises (EConvertError for a text that is no number), and EInvalidOp, EZeroDivide, EOverflow,
// EDivByZero for arithmetic without a finite result. After a failed compilation CalcValue is 0. Main thread only.
class TCustomParserVyn : public TComponent {
    VYN_OBJECT
  public:
    explicit TCustomParserVyn(TComponent* owner);
    ~TCustomParserVyn() override;

    // Compiles; the old list goes first. When it fails and OnParserError is assigned, the handler is told and the
    // result is false; without a handler the error is raised.
    bool SetExpression(const AnsiString& text);
    bool ParseExpression(const AnsiString& text) { return SetExpression(text); }
    const AnsiString& Expression() const { return expression_; }
    bool ParseFailed() const { return parseFailed_; }
    void FreeExpression();

    // The last operation's result; 0 without operations.
    double CalcValue();

    // The sets that hold the variables, in the order in which names are looked for.
    TParametresList& Variables() { return *variables_; }
    // Stores a double under the name in the global Parametres, not in the parser's own list.
    void SetVar(const AnsiString& name, long double value);
    // Raises EVarNotFound, or EVarIsNull for Null and for an empty text.
    double GetVariable(const AnsiString& name);
    bool VariableExists(const AnsiString& name);
    // Takes every set out of the list; the sets are others' and keep their values.
    void ClearVariables();
    // Deletes the parameter from the first set that holds it; nothing happens when none does.
    void ClearVariable(const AnsiString& name);

    // Raises EBadName (the name) for what is no identifier, EStringListError for a name that is there.
    void AddFunctionOneParam(const AnsiString& name, TMathRoutine routine);
    void AddFunctionTwoParam(const AnsiString& name, TMathRoutine routine);
    // Removes the function of one argument, or else the one of two; the expression is emptied when there was one.
    void ClearFunction(const AnsiString& name);
    // The compiled expression, which knows its routines, stays.
    void ClearFunctions();
    const TFunctionList& FunctionsOneParam() const { return *oneParam_; }
    const TFunctionList& FunctionsTwoParam() const { return *twoParam_; }

    // The operations in their order; null when there are none.
    TPOperation FirstOperation() { return operations_.First(); }

    void SetOnVariableNotFound(TParserVariableNotFound handler) { OnVariableNotFound = std::move(handler); }
    // Asked when no set holds a name, so that the host may add it.
    TParserVariableNotFound OnVariableNotFound;
    // Told of a failed compilation in place of an exception.
    TParserExceptionEvent OnParserError;

  protected:
    std::shared_ptr<const TFunctionList> oneParam_;
    std::shared_ptr<const TFunctionList> twoParam_;

  private:
    class Calculation;
    static constexpr uint64_t kNoVersion = UINT64_MAX;
    double CalcAnew();
    double CalcFollowed();
    void SetStoredExpression(const AnsiString& text);
    bool Compile();
    void FindVariables();
    bool ReadVariables(bool all);
    void ReadVariablesByName();
    void BindVariables();

    AnsiString expression_;
    bool parseFailed_ = false;
    bool calculating_ = false;
    bool compileLater_ = false;  // was read from a stream before its variables were there
    TParametresList* variables_;
    OperationList operations_;
    // The list runs as it is the first time; from the second time on there is a program, whose variables are bound: to
    // the doubles where they are stored, as long as the binding version stays, and to places of the list for those
    // that are converted each time.
    bool calculatedBefore_ = false;
    uint64_t foundVersion_ = kNoVersion;  // the variables are where they were found
    uint64_t boundVersion_ = kNoVersion;  // and the program's operands are bound to them
    uint64_t plainVersion_ = kNoVersion;  // and there is nothing to convert
    const double* constantResult_ = nullptr;
    std::vector<const TParametres*> boundSets_;
    std::vector<const double*> boundPlaces_;
};

// The parser with the framework's functions (functions.h).
class TParserVyn : public TCustomParserVyn {
    VYN_OBJECT
  public:
    explicit TParserVyn(TComponent* owner);

    // The text without its blanks, which SetExpression refuses.
    static AnsiString RemoveBlanks(const AnsiString& text);
};

}  // namespace vyn
