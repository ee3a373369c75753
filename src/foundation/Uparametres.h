#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "foundation/parametres_followers.h"
#include "platform/objects/component.h"
#include "platform/objects/strings.h"
#include "platform/streams/stream.h"
#include "platform/text/exceptions.h"

namespace vyn {

class TParametres;
class TParametresChild;
class TReader;
class TWriter;

VYN_EXCEPTION(EParametresError, Exception);

// The tag of a stored parameter set (docs/formats/parameters.md).
constexpr char CT_VynParamStream[] = "VynParamStream";

// One parameter.
struct TParametresData {
    AnsiString Name;        // as first given; matching ignores case
    Variant Value;          // Null before its first value is set
    Variant LastValue;      // before the last accepted change; empty on creation
    bool Writable = false;  // written when the set is saved; true for every parameter that was read
};
using TListParametresData = std::vector<TParametresData>;

// The initial contents of a new parameter.
const TParametresData& TParametresData_Nul();

// PRM is the set that fires the event, also for followers.
using TNotifyParametreGetValueEvent = Event<void(TParametres* PRM, const AnsiString& Parametre, Variant& Value)>;
using TNotifyParametreSetValueEvent =
    Event<void(TParametres* PRM, const AnsiString& Parametre, const Variant& NewValue)>;
using TNotifyParametreBooleanEvent =
    Event<void(TParametres* PRM, const AnsiString& Parametre, const Variant& NewValue, bool& Continue)>;

// An ordered set of named values with events, saved in a stream of its own or with the owner's form.
//
// Names are identifiers (ASCII letters, digits, "_"), unique without regard to case, in the order in which they came.
// Errors are EParametresError and change nothing; two errors of LoadFromStream are plain Exceptions. An exception that
// a handler raises leaves the operation that fired it; raised while a value changes, the old value stays. Look-ups go
// through an index and stay flat with the set's size. Main thread only.
class TParametres : public TComponent {
    VYN_OBJECT
  public:
    explicit TParametres(TComponent* owner);
    ~TParametres() override;

    // Whether a parameter can have the name.
    static bool IsValidName(std::string_view name);
    // Look-ups.
    int FindParam(std::string_view name) const;
    bool ParamExists(std::string_view name) const { return FindParam(name) >= 0; }
    int Count(bool onlyWritables) const;
    std::unique_ptr<TStringList> GetParametresNames() const;

    // Values.
    // A missing name is created with Null when CreaAutomaticParams, else an error; the get events fire either way.
    Variant GetParametreValue(const AnsiString& name);
    void SetParametreValue(const AnsiString& name, const Variant& value);
    // Adds, or sets when the name is there. Adding fires the change events as a change from Null would.
    void AddParam(const AnsiString& name, const Variant& value);
    // The one place where a value is stored: the change events decide, then the set events are told.
    void SetValue(int index, const Variant& value);
    Variant GetLastValue(const AnsiString& name) const;
    void DeleteParam(const AnsiString& name);
    void Clear();

    bool GetWritable(const AnsiString& name) const;
    void SetWritable(const AnsiString& name, bool value);
    // Names that do not exist are passed over.
    void Writables(const std::vector<AnsiString>& names, bool value);

    // Reading by the ten thousand, for those who would look the same names up each time. As long as the binding version
    // stays, names mean the same parameters in the same lists, and stored values stay in their places and of their
    // types. Reading in place is the same as reading by name as long as nobody watches the reads.
    static uint64_t BindingVersion() noexcept { return bindingVersion_; }
    const Variant& StoredValue(int index) const { return parameters_[static_cast<size_t>(index)].Value; }
    bool ReadsAreWatched() const { return ReadsMayBeWatched() && (OnGetValorPRM || FollowersWatchReads()); }
    // Quicker to tell: false when nobody could.
    bool ReadsMayBeWatched() const { return OnGetValorPRM || !children_.empty(); }
    // A value as AsDouble reads it.
    static double FloatOf(const Variant& value);

    TParametresData GetParamsProps(int index) const;
    void SetParamsProps(int index, const TParametresData& data);

    // Typed reading: a missing name gives the default and is created with it (when CreaAutomaticParams).
    // Text that is no number raises EConvertError; an empty text read as a number raises the silent EAbort.
    AnsiString AsString(const AnsiString& name, const AnsiString& otherwise);
    int AsInteger(const AnsiString& name, int otherwise);
    double AsDouble(const AnsiString& name, double otherwise);
    TDateTime AsDateTime(const AnsiString& name, TDateTime otherwise);
    Currency AsCurrency(const AnsiString& name, Currency otherwise);
    bool AsBoolean(const AnsiString& name, bool otherwise);

    // Followers.
    void NotifyChanges(TParametresChild* child);
    void DontNotifyChanges(TParametresChild* child);
    // Without those that follow names only.
    const std::vector<TParametresChild*>& Children() const { return children_; }
    void Notification(TComponent* component, TOperation operation) override;
    // This object's own handler first, then each follower's, in the order in which they came.
    void DoOnChangeValorPRM(const AnsiString& name, const Variant& newValue, bool& proceed);
    void DoOnGetValorPRM(const AnsiString& name, Variant& value);
    void DoOnSetValorPRM(const AnsiString& name, const Variant& newValue);

    // Reads the source's values (its get events fire) and adds them here, with their last values and flags.
    void CopyValues(TParametres& source);
    void Assign(const TPersistent* source) override;

    // Replaces each ¡Name¡ by the text of that parameter of the global Parametres, whatever set this is called on, and
    // expands the result again. A name that the global set lacks is put back and expanded without end: callers give
    // texts whose names are defined. The recursion then ends with EStackOverflow, which the caller can catch.
    AnsiString FormatText(const AnsiString& text);

    // Streams (docs/formats/parameters.md). No stream: nothing happens. Loading merges into what is there.
    void SaveToStream(TStream* stream);
    void LoadFromStream(TStream* stream);
    void ReadData(TReader& reader);
    void WriteData(TWriter& writer);
    void DefineProperties(TFiler& filer) override;

    TNotifyParametreGetValueEvent OnGetValorPRM;
    TNotifyParametreSetValueEvent OnSetValorPRM;
    TNotifyParametreBooleanEvent OnChangeValorPRM;  // may veto or force the change
    TNotifyParametreBooleanEvent OnSavePRM;         // may decide whether a parameter is written
    bool CreaAutomaticParams = true;
    bool SaveParametres = false;

  private:
    friend class TParametresList;
    static void ChangeBindings() noexcept { ++bindingVersion_; }
    bool FollowersWatchReads() const;
    void ValidName(const AnsiString& name) const;
    void CheckExists(int index, const AnsiString& name) const;
    void Reindex();
    Variant InternalRead(const AnsiString& name, const Variant& otherwise);
    double AsFloat(const AnsiString& name, const Variant& otherwise);

    friend class TParametresChild;
    std::pair<uint64_t, TParametresChild*> FollowerAfter(uint64_t place, const AnsiString& name) const;

    static uint64_t bindingVersion_;
    std::vector<TParametresChild*> children_;
    NamedFollowers namedFollowers_;
    uint64_t lastPlace_ = 0;  // of the last follower that came
    TListParametresData parameters_;
    NameIndex index_;
};

// The application-wide set; none before the package starts and after it ends.
TParametres* Parametres();
// The package's start and end of this unit.
void InitializeParametres();
void FinalizeParametres();

// Follows one set: receives its notifications through handlers of its own, all of them or, after FollowNamesOnly, the
// set events of some names. A follower of names costs nothing when other parameters are read or change; it is told in
// its turn among the other followers.
class TParametresChild : public TComponent {
    VYN_OBJECT
  public:
    explicit TParametresChild(TComponent* owner) : TComponent(owner) {}
    ~TParametresChild() override;

    // To be called before a set is followed.
    void FollowNamesOnly() { namesOnly_ = true; }
    void FollowName(const AnsiString& name);
    void ForgetNames();

    TParametres* Params() const { return params_; }
    void SetParams(TParametres* value);
    // A reference to the global set is never stored: it exists in every run.
    bool DoSaveParams() const;
    void Notification(TComponent* component, TOperation operation) override;

    TNotifyParametreGetValueEvent OnGetValorPRM;
    TNotifyParametreSetValueEvent OnSetValorPRM;
    TNotifyParametreBooleanEvent OnChangeValorPRM;

  private:
    friend class TParametres;
    TParametres* params_ = nullptr;
    uint64_t place_ = 0;  // among the set's followers
    bool namesOnly_ = false;
    std::vector<AnsiString> names_;
};

// An ordered list of sets that it does not own; names are looked for in list order.
class TParametresList : public TComponent {
    VYN_OBJECT
  public:
    explicit TParametresList(TComponent* owner) : TComponent(owner) {}
    ~TParametresList() override;

    // A set stands in the list once only.
    void Add(TParametres* params);
    int Count() const { return static_cast<int>(list_.size()); }
    TParametres* GetParams(int index) const;
    void Delete(int index);
    int IndexOfParametre(const TParametres* params) const;
    // The first set that holds the name, or null.
    TParametres* ParamByName(std::string_view name) const;
    // The same, with its place in that set.
    TParametres* ParamByName(std::string_view name, int& index) const;
    // Applies each set's FormatText in turn.
    AnsiString FormatText(const AnsiString& text) const;
    void Notification(TComponent* component, TOperation operation) override;

  protected:
    [[noreturn]] static void Error(const AnsiString& message);

  private:
    std::vector<TParametres*> list_;
};

}  // namespace vyn
