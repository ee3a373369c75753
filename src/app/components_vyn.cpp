#include "app/components_vyn.h"

#include <algorithm>
#include <limits>

#include "persistence/Utrecursosvyn.h"
#include "platform/objects/filer.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace components_detail {

constexpr char kHiddenProperty[] = "COMPONENTS";

}  // namespace components_detail

const TComponentVyn& ComponentVyn_NUL() {
    static const TComponentVyn nul;
    return nul;
}

const ClassInfo& TComponentsVyn::StaticClass() {
    static const ClassInfo info = DefineClass<TComponentsVyn, TPersistent>("TComponentsVyn");
    return info;
}

int TComponentsVyn::Append(const TComponentVyn& record, AnsiString bytes) {
    if (FindIDComponent(record.IDComponent)) Error("Duplicate IDComponents: " + IntToStr(record.IDComponent));
    entries_.push_back({record, std::move(bytes)});
    positions_[record.IDComponent] = Count() - 1;
    if (highestKnown_) highest_ = Count() == 1 ? record.IDComponent : std::max(highest_, record.IDComponent);
    Modified = true;
    return Count() - 1;
}

int TComponentsVyn::AddComponent(const AnsiString& name, int compType, TStream& stream) {
    const int id = GetNewIDComponent();
    Append(TComponentVyn{id, compType, name}, WholeStream(stream));
    return id;
}

int TComponentsVyn::InsertComponent(const TComponentVyn& record, TStream& stream) {
    return Append(record, WholeStream(stream));
}

void TComponentsVyn::DeleteComponent(int id) {
    if (recursos_) {
        const TRecursosList children = recursos_->RetornaFills(id);
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            recursos_->DelRecursos(child->IDRecursos);
    }
    const int at = FindInList(id);
    if (at < 0) Error("ID Not found in TComponentsVynStream.DeleteComponent: " + IntToStr(id));
    entries_.erase(entries_.begin() + at);
    positions_.erase(id);
    for (int i = at; i < Count(); ++i) positions_[entries_[static_cast<size_t>(i)].record.IDComponent] = i;
    if (id == highest_) highestKnown_ = false;
    Modified = true;
}

bool TComponentsVyn::ChangeIDComponent(int oldId, int newId) {
    const int at = FindInList(oldId);
    if (at < 0 || FindIDComponent(newId)) return false;
    entries_[static_cast<size_t>(at)].record.IDComponent = newId;
    positions_.erase(oldId);
    positions_[newId] = at;
    highestKnown_ = false;
    Modified = true;
    return true;
}

void TComponentsVyn::ModifyComponent(int id, const AnsiString& name, int compType) {
    const int at = FindInList(id);
    if (at < 0) Error("IDComponent not found in TComponentsVynStream.ModifyComponent");
    entries_[static_cast<size_t>(at)].record.Name = name;
    entries_[static_cast<size_t>(at)].record.CompType = compType;
    Modified = true;
}

std::unique_ptr<TMemoryStream> TComponentsVyn::GetStreamComponent(int id) const {
    const int at = FindInList(id);
    if (at < 0) Error("IDComponent not found in TComponentsVynStream.GetStreamComponent");
    return std::make_unique<TMemoryStream>(BytesAt(at));
}

void TComponentsVyn::SetStreamComponent(int id, TStream& stream) {
    const int at = FindInList(id);
    if (at < 0) Error("IDComponent not found in TComponentsVynStream.SetStreamComponent");
    entries_[static_cast<size_t>(at)].bytes = WholeStream(stream);
    Modified = true;
}

TComponentVyn TComponentsVyn::GetComponent(int id) const {
    const int at = FindInList(id);
    if (at < 0) Error("IDComponent not found: " + IntToStr(id));
    return entries_[static_cast<size_t>(at)].record;
}

TComponentVyn TComponentsVyn::GetIdxComponent(int index) const {
    if (index < 0 || index >= Count()) Error("Index out of range in GetIdxComponent: " + IntToStr(index));
    return entries_[static_cast<size_t>(index)].record;
}

int TComponentsVyn::FindInList(int id) const {
    const auto found = positions_.find(id);
    return found == positions_.end() ? -1 : found->second;
}

int TComponentsVyn::GetNewIDComponent() const {
    if (entries_.empty()) return 1;
    if (!highestKnown_) {
        highest_ = entries_.front().record.IDComponent;
        for (const Entry& entry : entries_) highest_ = std::max(highest_, entry.record.IDComponent);
        highestKnown_ = true;
    }
    // After the largest number that there is, only a gap is left.
    if (highest_ == std::numeric_limits<int>::max())
        for (int id = 1;; ++id)
            if (!FindIDComponent(id)) return id;
    return highest_ + 1;
}

TComponentVynList TComponentsVyn::GetComponentsList(const TArrayOfTComponentsType& types) const {
    TComponentVynList list;
    for (const Entry& entry : entries_)
        if (types.empty() || std::find(types.begin(), types.end(), entry.record.CompType) != types.end())
            list.push_back(entry.record);
    return list;
}

TComponentVynList TComponentsVyn::GetComponentsList(int type) const {
    return GetComponentsList(TArrayOfTComponentsType{type});
}

void TComponentsVyn::Clear() {
    entries_.clear();
    positions_.clear();
    highest_ = 0;
    highestKnown_ = true;
    Modified = true;
}

void TComponentsVyn::SaveToStream(TStream& stream) {
    TWriter writer(stream);
    writer.WriteString(CT_TComponentVyn);
    InternalWriteToWriter(writer);
    writer.Flush();
}

void TComponentsVyn::LoadFromStream(TStream& stream) {
    TReader reader(stream);
    if (reader.ReadStringView() != CT_TComponentVyn) Error("Stream is not a TComponentsVyn format");
    InternalReadFromReader(reader);
}

void TComponentsVyn::InternalWriteToWriter(TWriter& writer) {
    writer.WriteListBegin();
    for (const Entry& entry : entries_) {
        writer.WriteListBegin();
        writer.WriteIdent("IDComponent");
        writer.WriteInteger(entry.record.IDComponent);
        writer.WriteIdent("Name");
        writer.WriteString(entry.record.Name);
        writer.WriteIdent("CompType");
        writer.WriteInteger(entry.record.CompType);
        writer.WriteIdent("Stream");
        writer.WriteString(entry.bytes);
        writer.WriteListEnd();
    }
    writer.WriteListEnd();
}

void TComponentsVyn::InternalReadFromReader(TReader& reader) {
    if (reader.NextValue() != vaList) return;
    reader.ReadListBegin();
    while (!reader.EndOfList()) {
        TComponentVyn record;
        reader.ReadListBegin();
        reader.ReadIdentView();
        record.IDComponent = reader.ReadInteger();
        reader.ReadIdentView();
        record.Name = reader.ReadString();
        reader.ReadIdentView();
        record.CompType = reader.ReadInteger();
        if (FindIDComponent(record.IDComponent)) Error("Duplicate IDComponents: " + IntToStr(record.IDComponent));
        reader.ReadIdentView();
        Append(record, reader.ReadString());
        reader.ReadListEnd();
    }
    reader.ReadListEnd();
}

void TComponentsVyn::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    filer.DefineProperty(
        components_detail::kHiddenProperty, [this](TReader& reader) { InternalReadFromReader(reader); },
        [this](TWriter& writer) { InternalWriteToWriter(writer); }, Count() > 0);
}

}  // namespace vyn
