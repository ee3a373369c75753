#include "persistence/Utrecursosvyn.h"

#include <algorithm>
#include <filesystem>
#include <limits>

#include "foundation/Uparametres.h"
#include "platform/objects/filer.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace recursos_detail {

constexpr char kHiddenProperty[] = "RECURSOS";

}  // namespace recursos_detail

const TRecursos& Recursos_NUL() {
    static const TRecursos nul{-1, -1, {}, 0};
    return nul;
}

const ClassInfo& TRecursosVyn::StaticClass() {
    static const ClassInfo info = DefineClass<TRecursosVyn, TPersistent>("TRecursosVyn");
    return info;
}

void TRecursosVyn::Error(const AnsiString& text) { throw ERecursosVyn("TRecursosVyn Error:\n" + text); }

void TRecursosVyn::CheckTRecursos(const TRecursos& recursos) {
    if (recursos.IDRecursos < 0) Error("IDRecursos must be >= 0");
}

void TRecursosVyn::Modified(int id) {
    if (id < FirstUserRecursos)
        AppModified = true;
    else
        UserModified = true;
}

void TRecursosVyn::Added(int id, int position) {
    positions_[id] = position;
    if (highestKnown_) highest_ = std::max(highest_, id);
}

void TRecursosVyn::Removed(int id) {
    positions_.erase(id);
    if (id >= 1) freeFrom_ = std::min(freeFrom_, id);
    if (id == highest_) highestKnown_ = false;
}

int TRecursosVyn::AddRecursos(int idParent, const AnsiString& name, int recType, TStream& stream) {
    const int id = GetNewIDRecursos(1, true);
    InternalAdd(TRecursos{id, idParent, name, recType}, stream);
    return id;
}

void TRecursosVyn::InternalAdd(const TRecursos& recursos, TStream& stream) {
    CheckTRecursos(recursos);
    AnsiString bytes = WholeStream(stream);
    const int at = FindPosInList(recursos.IDRecursos);
    if (at >= 0) {
        elements_[static_cast<size_t>(at)].recursos = recursos;
        elements_[static_cast<size_t>(at)].bytes = std::move(bytes);
    } else {
        elements_.push_back({recursos, std::move(bytes)});
        Added(recursos.IDRecursos, Count() - 1);
    }
    Modified(recursos.IDRecursos);
}

void TRecursosVyn::ModifyRecursos(int id, int idParent, const AnsiString& name, int recType) {
    const int at = FindPosInList(id);
    if (at < 0) Error(IntToStr(id) + " not found to modify");
    elements_[static_cast<size_t>(at)].recursos = TRecursos{id, idParent, name, recType};
    Modified(id);
}

void TRecursosVyn::SetStreamRecursos(int id, TStream& stream) {
    const int at = FindPosInList(id);
    if (at < 0) Error("IdRecursos: " + IntToStr(id) + " not found to ModifyStream");
    elements_[static_cast<size_t>(at)].bytes = WholeStream(stream);
    Modified(id);
}

void TRecursosVyn::DelRecursos(int id) {
    const int at = FindPosInList(id);
    if (at < 0) Error("Recursos:" + IntToStr(id) + " not found");
    elements_.erase(elements_.begin() + at);
    Removed(id);
    for (int i = at; i < Count(); ++i) positions_[elements_[static_cast<size_t>(i)].recursos.IDRecursos] = i;
    Modified(id);
}

void TRecursosVyn::SwapIDRecursos(int a, int b) {
    if (a == b) return;
    const int atA = FindPosInList(a);
    const int atB = FindPosInList(b);
    if (atA < 0 && atB < 0) return;
    if (atA >= 0) Removed(a);
    if (atB >= 0) Removed(b);
    if (atA >= 0) {
        elements_[static_cast<size_t>(atA)].recursos.IDRecursos = b;
        Added(b, atA);
    }
    if (atB >= 0) {
        elements_[static_cast<size_t>(atB)].recursos.IDRecursos = a;
        Added(a, atB);
    }
    Modified(a);
    Modified(b);
}

void TRecursosVyn::Clear() {
    for (const TRecursosStream& element : elements_) Modified(element.recursos.IDRecursos);
    elements_.clear();
    positions_.clear();
    cursor_ = -1;
    freeFrom_ = 1;
    highest_ = -1;
    highestKnown_ = true;
}

TRecursos TRecursosVyn::GetIdxRecursos(int index) const {
    if (index < 0 || index >= Count()) Error("Index out of range in GetIdxRecursos: " + IntToStr(index));
    return GetTRecursos(index);
}

int TRecursosVyn::FindPosInList(int id) const {
    const auto found = positions_.find(id);
    return found == positions_.end() ? -1 : found->second;
}

TRecursos TRecursosVyn::RetornaRecursos(int id) const {
    const int at = FindPosInList(id);
    return at < 0 ? Recursos_NUL() : GetTRecursos(at);
}

std::unique_ptr<TMemoryStream> TRecursosVyn::GetStreamRecursos(int id) const {
    const int at = FindPosInList(id);
    if (at < 0) Error("IDRecursos:" + IntToStr(id) + " not found in list");
    return std::make_unique<TMemoryStream>(BytesAt(at));
}

TRecursosList TRecursosVyn::RetornaFills(int idParent) const {
    TRecursosList children;
    for (const TRecursosStream& element : elements_)
        if (element.recursos.IDParent == idParent) children.push_back(element.recursos);
    return children;
}

TRecursosList TRecursosVyn::RetornaFills(int idParent, int recType) const {
    TRecursosList children = RetornaFills(idParent);
    std::erase_if(children, [recType](const TRecursos& each) { return each.RecType != recType; });
    return children;
}

TRecursos TRecursosVyn::FirstRecursos() {
    if (elements_.empty()) return Recursos_NUL();
    cursor_ = 0;
    return GetTRecursos(0);
}

TRecursos TRecursosVyn::NextRecursos() {
    if (cursor_ + 1 >= Count()) return Recursos_NUL();
    return GetTRecursos(++cursor_);
}

int TRecursosVyn::GetNewIDRecursos(int start, bool firstFree) const {
    if (firstFree) {
        int id = start == 1 ? freeFrom_ : start;
        while (FindIDRecursos(id)) ++id;
        if (start == 1) freeFrom_ = id;
        return id;
    }
    if (!highestKnown_) {
        highest_ = -1;
        for (const TRecursosStream& element : elements_) highest_ = std::max(highest_, element.recursos.IDRecursos);
        highestKnown_ = true;
    }
    if (elements_.empty() || highest_ < start) return start;
    // After the largest number that there is, only a gap is left.
    if (highest_ == std::numeric_limits<int>::max()) return GetNewIDRecursos(start, true);
    return highest_ + 1;
}

void TRecursosVyn::WriteRange(TWriter& writer, int fromID, int toID) {
    const bool bounded = toID >= fromID && toID >= 1;
    writer.WriteListBegin();
    for (TRecursos each = FirstRecursos(); each.IDRecursos != -1; each = NextRecursos()) {
        if (each.IDRecursos < fromID || (bounded && each.IDRecursos > toID)) continue;
        writer.WriteListBegin();
        writer.WriteIdent("IDRecursos");
        writer.WriteInteger(each.IDRecursos);
        writer.WriteIdent("IDParent");
        writer.WriteInteger(each.IDParent);
        writer.WriteIdent("Name");
        writer.WriteString(each.Name);
        writer.WriteIdent("RecType");
        writer.WriteInteger(each.RecType);
        writer.WriteIdent("Stream");
        writer.WriteString(BytesAt(cursor_));
        writer.WriteListEnd();
    }
    writer.WriteListEnd();
}

void TRecursosVyn::SaveToStream(TStream& stream, int fromID, int toID) {
    TWriter writer(stream);
    writer.WriteString(CT_TRecursosVyn);
    WriteRange(writer, fromID, toID);
    writer.Flush();
}

void TRecursosVyn::LoadFromStream(TStream& stream) {
    TReader reader(stream);
    if (!SameText(reader.ReadStringView(), CT_TRecursosVyn)) Error("Stream is not a TRecursosVyn format");
    LoadFromReader(reader);
}

void TRecursosVyn::WriteToWriter(TWriter& writer) { WriteRange(writer, 0, LastApplicationRecursos); }

void TRecursosVyn::LoadFromReader(TReader& reader) {
    reader.ReadListBegin();
    while (!reader.EndOfList()) {
        reader.ReadListBegin();
        TRecursos recursos;
        reader.ReadIdentView();
        recursos.IDRecursos = reader.ReadInteger();
        reader.ReadIdentView();
        recursos.IDParent = reader.ReadInteger();
        reader.ReadIdentView();
        recursos.Name = reader.ReadString();
        reader.ReadIdentView();
        recursos.RecType = reader.ReadInteger();
        reader.ReadIdentView();
        TViewStream scratch(reader.ReadStringView());
        InternalAdd(recursos, scratch);
        reader.ReadListEnd();
    }
    reader.ReadListEnd();
}

void TRecursosVyn::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    filer.DefineProperty(
        recursos_detail::kHiddenProperty, [this](TReader& reader) { LoadFromReader(reader); },
        [this](TWriter& writer) { WriteToWriter(writer); }, Count() >= 1);
}

void TRecursosVyn::StoreParametres() {
    TMemoryStream values;
    if (TParametres* global = Parametres()) global->SaveToStream(&values);
    InsertTRecursos(TRecursos{ParametresRecursos, 0, ParametresRecursosName, ParametresRecType}, values);
}

void TRecursosVyn::RestoreParametres() {
    TParametres* global = Parametres();
    if (!global || !FindIDRecursos(ParametresRecursos)) return;
    const auto values = GetStreamRecursos(ParametresRecursos);
    global->LoadFromStream(values.get());
}

void TRecursosVyn::SaveUserRecursosToFile(const AnsiString& fileName) {
    StoreParametres();
    WriteFileAtomically(fileName, [this](TStream& file) { SaveToStream(file, FirstUserRecursos, -1); });
    UserModified = false;
}

void TRecursosVyn::LoadUserRecursosFromFile(const AnsiString& fileName) {
    std::error_code ignored;
    if (std::filesystem::exists(SystemFileName(fileName), ignored)) {
        TFileStream file(fileName, fmOpenRead);
        LoadFromStream(file);
    }
    UserModified = false;
    RestoreParametres();
}

}  // namespace vyn
