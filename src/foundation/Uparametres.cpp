#include "foundation/Uparametres.h"

#include <algorithm>
#include <tuple>

#include "foundation/stack_guard.h"
#include "platform/objects/filer.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace parametres_detail {

constexpr char kDelimiter = '\xA1';  // the inverted exclamation mark
// A text that grows beyond this while it is expanded holds itself.
constexpr size_t kLongestText = size_t{1} << 28;
constexpr char kNullWord[] = "NULL";
// Named so in the files that exist; the name is theirs.
constexpr char kHiddenProperty[] = "EventsVyn";

std::unique_ptr<TParametres>& Global() {
    static std::unique_ptr<TParametres> global;
    return global;
}

}  // namespace parametres_detail

TParametres* Parametres() { return parametres_detail::Global().get(); }

void InitializeParametres() {
    if (!parametres_detail::Global()) parametres_detail::Global() = std::make_unique<TParametres>(nullptr);
}

void FinalizeParametres() { parametres_detail::Global().reset(); }

const TParametresData& TParametresData_Nul() {
    static const TParametresData nul;
    return nul;
}

const ClassInfo& TParametres::StaticClass() {
    static const ClassInfo info =
        DefineClass<TParametres, TComponent>("TParametres")
            .Event("OnGetValorPRM", &TParametres::OnGetValorPRM)
            .Event("OnSetValorPRM", &TParametres::OnSetValorPRM)
            .Event("OnChangeValorPRM", &TParametres::OnChangeValorPRM)
            .Event("OnSavePRM", &TParametres::OnSavePRM)
            .Published("CreaAutomaticParams", &TParametres::CreaAutomaticParams, &TParametres::CreaAutomaticParams)
            .Default(true)
            .Published("SaveParametres", &TParametres::SaveParametres, &TParametres::SaveParametres)
            .Default(false);
    return info;
}

uint64_t TParametres::bindingVersion_ = 0;

TParametres::TParametres(TComponent* owner) : TComponent(owner) {}

TParametres::~TParametres() {
    ChangeBindings();
    BeginDestruction();
}

bool TParametres::FollowersWatchReads() const {
    return std::any_of(children_.begin(), children_.end(),
                       [](const TParametresChild* child) { return static_cast<bool>(child->OnGetValorPRM); });
}

int TParametres::FindParam(std::string_view name) const {
    const uint32_t at = index_.Find(name);
    return at == NameIndex::NotFound ? -1 : static_cast<int>(at);
}

int TParametres::Count(bool onlyWritables) const {
    if (!onlyWritables) return static_cast<int>(parameters_.size());
    return static_cast<int>(std::count_if(parameters_.begin(), parameters_.end(),
                                          [](const TParametresData& data) { return data.Writable; }));
}

std::unique_ptr<TStringList> TParametres::GetParametresNames() const {
    auto names = std::make_unique<TStringList>();
    for (const TParametresData& data : parameters_) names->Add(data.Name);
    return names;
}

Variant TParametres::GetParametreValue(const AnsiString& name) {
    Variant result = Variant::Null();
    const int index = FindParam(name);
    if (index >= 0)
        result = parameters_[static_cast<size_t>(index)].Value;
    else if (CreaAutomaticParams)
        AddParam(name, Variant::Null());
    else
        throw EParametresError("Parametre \"" + name + "\" not found");
    DoOnGetValorPRM(name, result);
    return result;
}

void TParametres::SetParametreValue(const AnsiString& name, const Variant& value) {
    const int index = FindParam(name);
    if (index >= 0)
        SetValue(index, value);
    else if (CreaAutomaticParams)
        AddParam(name, value);
    else
        throw EParametresError("Parametre \"" + name + "\" not found");
}

namespace parametres_detail {

bool IsNameChar(char c) {
    const char upper = UpperChar(c);
    return (upper >= '0' && upper <= '9') || (upper >= 'A' && upper <= 'Z') || upper == '_';
}

}  // namespace parametres_detail

bool TParametres::IsValidName(std::string_view name) {
    const bool digit = !name.empty() && name[0] >= '0' && name[0] <= '9';
    return !name.empty() && !digit && std::all_of(name.begin(), name.end(), parametres_detail::IsNameChar);
}

void TParametres::ValidName(const AnsiString& name) const {
    if (name.empty()) throw EParametresError("NomParametre is null");
    for (char c : name) {
        if (!parametres_detail::IsNameChar(c))
            throw EParametresError(AnsiString("Character \"") + c + "\" is not a valid char in NomParametre " + name);
    }
    if (name[0] >= '0' && name[0] <= '9') throw EParametresError("Parametre " + name + " can't start with " + name[0]);
}

void TParametres::AddParam(const AnsiString& name, const Variant& value) {
    int index = FindParam(name);
    if (index < 0) {
        ValidName(name);
        index = static_cast<int>(parameters_.size());
        TParametresData& data = parameters_.emplace_back(TParametresData_Nul());
        data.LastValue = Variant();
        data.Name = name;
        data.Value = Variant::Null();
        index_.Insert(name, static_cast<uint32_t>(index));
        ChangeBindings();
    }
    SetValue(index, value);
}

void TParametres::SetValue(int index, const Variant& value) {
    // Copies: a handler may add or delete parameters.
    const Variant newValue = value;
    const AnsiString name = parameters_[static_cast<size_t>(index)].Name;
    const Variant oldValue = parameters_[static_cast<size_t>(index)].Value;
    bool changed = oldValue.IsNull() != newValue.IsNull();
    if (!changed && !oldValue.IsNull()) changed = VarToStr(oldValue) != VarToStr(newValue);
    DoOnChangeValorPRM(name, newValue, changed);
    if (!changed) return;
    const int now = FindParam(name);
    if (now < 0) return;  // a handler deleted it
    TParametresData& data = parameters_[static_cast<size_t>(now)];
    data.LastValue = data.Value;
    if (data.Value.Type() != newValue.Type()) ChangeBindings();
    data.Value = newValue;
    DoOnSetValorPRM(name, newValue);
}

void TParametres::CheckExists(int index, const AnsiString& name) const {
    if (index < 0) throw EParametresError("Parametre " + name + " doesn't exists ");
}

Variant TParametres::GetLastValue(const AnsiString& name) const {
    const int index = FindParam(name);
    CheckExists(index, name);
    return parameters_[static_cast<size_t>(index)].LastValue;
}

void TParametres::Reindex() {
    index_.Clear();
    for (size_t i = 0; i < parameters_.size(); ++i) index_.Insert(parameters_[i].Name, static_cast<uint32_t>(i));
}

void TParametres::DeleteParam(const AnsiString& name) {
    const int index = FindParam(name);
    if (index < 0) throw EParametresError("Parametre \"" + name + "\" not found ");
    parameters_.erase(parameters_.begin() + index);
    Reindex();
    ChangeBindings();
}

void TParametres::Clear() {
    ChangeBindings();
    parameters_.clear();
    index_.Clear();
}

bool TParametres::GetWritable(const AnsiString& name) const {
    const int index = FindParam(name);
    CheckExists(index, name);
    return parameters_[static_cast<size_t>(index)].Writable;
}

void TParametres::SetWritable(const AnsiString& name, bool value) {
    const int index = FindParam(name);
    CheckExists(index, name);
    parameters_[static_cast<size_t>(index)].Writable = value;
}

void TParametres::Writables(const std::vector<AnsiString>& names, bool value) {
    for (const AnsiString& name : names)
        if (ParamExists(name)) SetWritable(name, value);
}

TParametresData TParametres::GetParamsProps(int index) const {
    if (index < 0 || index >= Count(false))
        throw EParametresError("Index " + IntToStr(index) + " out of bounds in GetParamsProps");
    return parameters_[static_cast<size_t>(index)];
}

void TParametres::SetParamsProps(int index, const TParametresData& data) {
    if (index < 0 || index >= Count(false))
        throw EParametresError("Index " + IntToStr(index) + " out of bounds in SetParamsProps");
    if (FindParam(data.Name) != index)
        throw EParametresError(
            "Error a SetParamsProps : Intentant colocar un parametre en una posició que no és la seva."_w);
    parameters_[static_cast<size_t>(index)] = data;
    ChangeBindings();
}

Variant TParametres::InternalRead(const AnsiString& name, const Variant& otherwise) {
    Variant result = otherwise;
    const int index = FindParam(name);
    if (index < 0)
        SetParametreValue(name, otherwise);
    else
        result = parameters_[static_cast<size_t>(index)].Value;
    DoOnGetValorPRM(name, result);
    return result;
}

AnsiString TParametres::AsString(const AnsiString& name, const AnsiString& otherwise) {
    const Variant value = InternalRead(name, Variant(otherwise));
    switch (value.Type()) {
        case varNull:
            return {};
        case varSmallint:
        case varInteger:
            return IntToStr(value.AsInteger());
        case varSingle:
        case varDouble:
        case varCurrency:
            return FloatToStr(value.AsDouble());
        case varDate:
            return DateTimeToStr(value.AsDateTime());
        default:
            return value.AsString();
    }
}

int TParametres::AsInteger(const AnsiString& name, int otherwise) {
    return InternalRead(name, Variant(otherwise)).AsInteger();
}

bool TParametres::AsBoolean(const AnsiString& name, bool otherwise) {
    return InternalRead(name, Variant(otherwise)).AsBoolean();
}

TDateTime TParametres::AsDateTime(const AnsiString& name, TDateTime otherwise) {
    return InternalRead(name, Variant(otherwise)).AsDateTime();
}

double TParametres::AsFloat(const AnsiString& name, const Variant& otherwise) {
    return FloatOf(InternalRead(name, otherwise));
}

double TParametres::FloatOf(const Variant& value) {
    switch (value.Type()) {
        case varSmallint:
        case varInteger:
        case varSingle:
        case varDouble:
        case varCurrency:
            return value.AsDouble();
        default:
            break;
    }
    const AnsiString text = VarToStr(value);
    if (text.empty()) Abort();
    return StrToFloat(text);
}

double TParametres::AsDouble(const AnsiString& name, double otherwise) { return AsFloat(name, Variant(otherwise)); }

Currency TParametres::AsCurrency(const AnsiString& name, Currency otherwise) {
    return Currency(AsFloat(name, Variant(otherwise)));
}

void TParametres::NotifyChanges(TParametresChild* child) {
    if (!child->namesOnly_) {
        if (std::find(children_.begin(), children_.end(), child) != children_.end()) return;
        children_.push_back(child);
    }
    for (const AnsiString& name : child->names_) namedFollowers_.Remove(name, child->place_);
    child->place_ = ++lastPlace_;
    for (const AnsiString& name : child->names_) namedFollowers_.Add(name, child->place_, child);
    child->FreeNotification(this);
}

void TParametres::DontNotifyChanges(TParametresChild* child) {
    std::erase(children_, child);
    for (const AnsiString& name : child->names_) namedFollowers_.Remove(name, child->place_);
}

void TParametres::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove)
        std::erase_if(children_, [&](TParametresChild* child) { return static_cast<TComponent*>(child) == component; });
}

void TParametres::DoOnChangeValorPRM(const AnsiString& name, const Variant& newValue, bool& proceed) {
    OnChangeValorPRM(this, name, newValue, proceed);
    for (size_t i = 0; i < children_.size(); ++i) children_[i]->OnChangeValorPRM(this, name, newValue, proceed);
}

void TParametres::DoOnGetValorPRM(const AnsiString& name, Variant& value) {
    OnGetValorPRM(this, name, value);
    for (size_t i = 0; i < children_.size(); ++i) children_[i]->OnGetValorPRM(this, name, value);
}

void TParametres::DoOnSetValorPRM(const AnsiString& name, const Variant& newValue) {
    OnSetValorPRM(this, name, newValue);
    if (namedFollowers_.Empty()) {
        for (size_t i = 0; i < children_.size(); ++i) children_[i]->OnSetValorPRM(this, name, newValue);
        return;
    }
    for (auto [place, child] = FollowerAfter(0, name); child; std::tie(place, child) = FollowerAfter(place, name))
        child->OnSetValorPRM(this, name, newValue);
}

// Looked for anew each time: a handler may let followers come and go.
std::pair<uint64_t, TParametresChild*> TParametres::FollowerAfter(uint64_t place, const AnsiString& name) const {
    const auto named = namedFollowers_.After(name, place);
    const auto next =
        std::upper_bound(children_.begin(), children_.end(), place,
                         [](uint64_t wanted, const TParametresChild* child) { return wanted < child->place_; });
    if (next == children_.end() || (named.second && named.first < (*next)->place_)) return named;
    return {(*next)->place_, *next};
}

void TParametres::CopyValues(TParametres& source) {
    if (&source == this) return;
    for (int i = 0; i < source.Count(false); ++i) {
        const AnsiString name = source.parameters_[static_cast<size_t>(i)].Name;
        AddParam(name, source.GetParametreValue(name));
        const int from = source.FindParam(name);
        const int to = FindParam(name);
        if (from < 0 || to < 0) continue;
        const TParametresData& data = source.parameters_[static_cast<size_t>(from)];
        parameters_[static_cast<size_t>(to)].LastValue = data.LastValue;
        parameters_[static_cast<size_t>(to)].Writable = data.Writable;
    }
}

void TParametres::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TParametres>(source);
    if (!other) {
        TComponent::Assign(source);
        return;
    }
    OnGetValorPRM = other->OnGetValorPRM;
    OnSetValorPRM = other->OnSetValorPRM;
    CreaAutomaticParams = other->CreaAutomaticParams;
    OnChangeValorPRM = other->OnChangeValorPRM;
    OnSavePRM = other->OnSavePRM;
    SaveParametres = other->SaveParametres;
    // Reading fires the source's get events, which may be handlers with effects; the source's values stay.
    CopyValues(const_cast<TParametres&>(*other));
}

namespace parametres_detail {

// What stands for a name between two delimiters.
AnsiString Replacement(const AnsiString& name) {
    try {
        TParametres* global = Parametres();
        if (global && global->ParamExists(name)) return VarToStr(global->GetParametreValue(name));
        return kDelimiter + name + kDelimiter;
    } catch (const Exception&) {
        // A value that cannot be had is shown as nothing; the rest of the text is worth more.
        return {};
    }
}

// Before `from` there is no delimiter. In place, so that a text that is expanded without end uses the stack up and not
// the memory.
void ExpandText(AnsiString& text, size_t from) {
    CheckStack();
    const size_t first = text.find(kDelimiter, from);
    if (first == AnsiString::npos) return;
    const size_t second = text.find(kDelimiter, first + 1);
    if (second == AnsiString::npos) return;
    {
        const AnsiString value = Replacement(text.substr(first + 1, second - first - 1));
        if (text.size() + value.size() > kLongestText) throw EOutOfMemory("Out of memory");
        text.replace(first, second - first + 1, value);
    }
    // Something is left to do after the call, so that it stays a call.
    volatile size_t place = first;
    ExpandText(text, place);
    place = from;
}

}  // namespace parametres_detail

AnsiString TParametres::FormatText(const AnsiString& text) {
    AnsiString result = text;
    parametres_detail::ExpandText(result, 0);
    return result;
}

void TParametres::SaveToStream(TStream* stream) {
    if (!stream) return;
    TWriter writer(*stream);
    writer.WriteString(CT_VynParamStream);
    WriteData(writer);
    writer.Flush();
}

void TParametres::LoadFromStream(TStream* stream) {
    if (!stream) return;
    TReader reader(*stream);
    AnsiString magic;
    try {
        magic = reader.ReadString();
    } catch (const Exception& error) {
        throw Exception(
            AnsiString("Invalid Stream Format Error. Can't Load a TParametres from a Stream\nError Class: ") +
            error.ClassName() + "\nError message: " + error.Message());
    }
    if (magic != CT_VynParamStream)
        throw Exception(
            "Invalid Stream Format.This Stream doesn't contain a valid TParametres(Const : VynParamStream not found, "
            "found " +
            magic);
    if (reader.Position() < stream->Size() - 1 && reader.NextValue() == vaList) ReadData(reader);
}

void TParametres::ReadData(TReader& reader) {
    reader.ReadListBegin();
    while (!reader.EndOfList()) {
        const AnsiString name = reader.ReadIdent();
        Variant value;
        switch (reader.NextValue()) {
            case vaInt8:
            case vaInt16:
            case vaInt32:
                value = Variant(reader.ReadInteger());
                break;
            case vaExtended:
                value = Variant(static_cast<double>(reader.ReadFloat()));
                break;
            case vaSingle:
                value = Variant(static_cast<double>(reader.ReadSingle()));
                break;
            case vaCurrency:
                value = Variant(reader.ReadCurrency());
                break;
            case vaDate:
                value = Variant(reader.ReadDate());
                break;
            case vaString:
            case vaLString:
            case vaWString:
                value = Variant(reader.ReadString());
                break;
            case vaIdent:
                reader.ReadIdent();
                value = Variant::Null();
                break;
            case vaFalse:
            case vaTrue:
                value = Variant(reader.ReadBoolean());
                break;
            default:
                throw EParametresError("ERROR Reading Properties of Component :\nInvalid Value of Parametre " + name);
        }
        AddParam(name, value);
        SetWritable(name, true);
    }
    reader.ReadListEnd();
}

void TParametres::WriteData(TWriter& writer) {
    writer.WriteListBegin();
    for (size_t i = 0; i < parameters_.size(); ++i) {
        const AnsiString name = parameters_[i].Name;
        const Variant value = parameters_[i].Value;
        bool written = parameters_[i].Writable;
        OnSavePRM(this, name, value, written);
        if (!written) continue;
        writer.WriteIdent(name);
        switch (value.Type()) {
            case varEmpty:
            case varNull:
                writer.WriteIdent(parametres_detail::kNullWord);
                break;
            case varSmallint:
            case varInteger:
            case varByte:
                writer.WriteInteger(value.AsInteger());
                break;
            case varSingle:
                writer.WriteSingle(value.AsSingle());
                break;
            case varDouble:
                writer.WriteFloat(value.AsDouble());
                break;
            case varCurrency:
                writer.WriteCurrency(value.AsCurrency());
                break;
            case varDate:
                writer.WriteDate(value.AsDateTime());
                break;
            case varBoolean:
                writer.WriteBoolean(value.AsBoolean());
                break;
            case varOleStr:
            case varString:
                writer.WriteString(VarToStr(value));
                break;
        }
    }
    writer.WriteListEnd();
}

void TParametres::DefineProperties(TFiler& filer) {
    TComponent::DefineProperties(filer);
    const bool hasData = filer.Ancestor ? SaveParametres : Count(false) >= 1 && SaveParametres;
    filer.DefineProperty(
        parametres_detail::kHiddenProperty, [this](TReader& reader) { ReadData(reader); },
        [this](TWriter& writer) { WriteData(writer); }, hasData);
}

}  // namespace vyn
