// How nodes become live components, and live components stored ones.

#include <algorithm>

#include "app/Utvynapp.h"
#include "foundation/Uparametres.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/forms.h"
#include "platform/objects/class_table.h"
#include "platform/objects/component_handle.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace opening_detail {

struct NodeClass {
    int nodeType;
    const char* className;
};

// The host's form class of each node type.
constexpr NodeClass kNodeClasses[] = {
    {0, "TFRMtnAplicacio"},    {2, "TCustomFRM"},        {4, "TFRMMenu"},          {7, "TFRMSQLGeneric"},
    {8, "TFRMDBGrid"},         {9, "TFRMDBGridMD"},      {10, "TFRMBarraBotons"},  {11, "TFRMDBEntradaDades"},
    {13, "TFRMDBQR"},          {14, "TFRMPassword"},     {15, "TFRMAjudaVyn"},     {20, "TFRMQuiSoc"},
    {22, "TFRMDBQRAutomatic"}, {24, "TFRMSelNodeAcces"}, {25, "TFRMDBGridTotals"}, {26, "TFRMDBEntradaDadesMD"},
    {27, "TFRMCalendari"},     {28, "TFRMExecutaCodi"},  {29, "TFRMNumeric"},      {31, "TFRMDBArbre"},
};

constexpr char kReturnComponent[] = "RETURN_COMPONENT";
constexpr int kReaderBuffer = 4096;
constexpr intptr_t kStoreNothing = -1;

// The name of the procedure that a node's caption stands for.
AnsiString ProcedureNameOf(const AnsiString& caption) {
    AnsiString name = caption;
    for (char& c : name) {
        const bool kept = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
        if (!kept) c = '_';
    }
    return name;
}

void SendOrAbort(TWinControl& control, uint32_t message, intptr_t wParam, intptr_t lParam) {
    if (SendMessage(control.Handle(), message, wParam, lParam) == VYN_ABORT) Abort();
}

// A stored component never says that it is visible: showing it is for whoever opens it.
void StoreInvisible(TRecursosObjecte& tree, const TComponent& component) {
    if (!component.InheritsFrom(&TControl::StaticClass())) return;
    const PropertyInfo* visible = component.GetClassInfo().FindProperty("Visible");
    if (!visible) return;
    auto& properties = tree.Propietats;
    const auto found = std::find_if(properties.begin(), properties.end(),
                                    [](const TPropietatObjecte& each) { return SameText(each.Name, "Visible"); });
    if (visible->HasDefault && visible->Default == 0) {
        if (found != properties.end()) properties.erase(found);
        return;
    }
    TPropietatObjecte value{"Visible", static_cast<uint8_t>(vaFalse), "False", {}};
    if (found != properties.end())
        *found = value;
    else
        properties.push_back(value);
}

}  // namespace opening_detail

std::unique_ptr<TMemoryStream> TVynApp::StoredStream(int idComponent) const {
    return components_->FindIDComponent(idComponent) ? components_->GetStreamComponent(idComponent) : nullptr;
}

TClass TVynApp::DoGetClass(int nodeType) {
    TClass found = nullptr;
    for (const auto& [type, className] : opening_detail::kNodeClasses)
        if (type == nodeType) found = GetClass(className);
    OnVynAppNeedClass(this, nodeType, found);
    if (!found) ErrorVyn("Could not determine Class of Object type: " + IntToStr(nodeType));
    return found;
}

TComponent* TVynApp::CreaComponent(int nodeType, TComponent* owner) {
    TClass found = DoGetClass(nodeType);
    if (!found->InheritsFrom(&TComponent::StaticClass()))
        ErrorVyn("Class: " + found->Name() + " not inherited from TComponent");
    return static_cast<TComponent*>(found->Create(owner));
}

PRecursosObjecte TVynApp::TreeOfComponent(TComponent& component, bool withDefaults) {
    TMemoryStream stream;
    {
        TWriter writer(stream);
        writer.StoreDefaults = withDefaults;
        writer.WriteRootComponent(component);
        writer.Flush();
    }
    stream.SetPosition(0);
    return StreamObjecteBinaryARECURSOS(stream);
}

void TVynApp::GetCopiaDelsRecursosDeDelphi(const AnsiString& className, PRecursosObjecte& resources) {
    TClass found = GetClass(className);
    if (!found) ErrorVyn("ERROR 1 en TVynApp.GetCopiaDelsRecursosDeDelphi");
    if (!found->InheritsFrom(&TComponent::StaticClass()))
        ErrorVyn("ERROR 2 en TVynApp.GetCopiaDelsRecursosDeDelphi\nClasse " + className + " no es TComponent");
    PRecursosObjecte& cached = compiledResources_[UpperCase(className)];
    if (!cached) {
        const std::unique_ptr<TComponent> instance(static_cast<TComponent*>(found->Create(nullptr)));
        cached = TreeOfComponent(*instance, false);
    }
    resources = DuplicaObjectes(cached.get());
}

void TVynApp::CarregaRecursosDelphi(const AnsiString& className, PRecursosObjecte& resources) {
    PRecursosObjecte compiled;
    GetCopiaDelsRecursosDeDelphi(className, compiled);
    AfegeixObjectes(compiled.get(), std::move(*resources), false);
    resources = std::move(compiled);
}

PRecursosObjecte TVynApp::ObjectOfAncestor(const TNodeArbre& node, const AnsiString& className) {
    if (node.NodeType != NodeTypeAncestor) return nullptr;
    const auto stream = StoredStream(node.IDComponent);
    if (!stream || stream->Size() == 0) return nullptr;
    const PRecursosObjecte tree = StreamObjecteBinaryARECURSOS(*stream);
    return DuplicaObjectes(ExisteixClasseObjecte(tree.get(), className, TotElArbre));
}

void TVynApp::AfegeixParesRECURSOS(int idNodeOrig, int idNode, PRecursosObjecte& resources,
                                   const AnsiString& className) {
    for (TNodeArbre node = tree_->GetIDNode(idNode); node.IDNode >= 0; node = tree_->GetIDNode(node.IDParent)) {
        if (node.IDParent < 1 || node.IDParent == idNodeOrig) return;
        if (PRecursosObjecte ancestor = ObjectOfAncestor(node, className)) {
            AfegeixObjectes(ancestor.get(), std::move(*resources), false);
            resources = std::move(ancestor);
        }
    }
}

std::unique_ptr<TMemoryStream> TVynApp::RecursosFinals(int idNode) {
    const TNodeArbre node = tree_->GetIDNode(idNode);
    if (node.IDNode < 0) ErrorVyn("ERROR a RecursosFinals: IDNode is not a valid node (" + IntToStr(idNode) + ")");
    auto stored = StoredStream(node.IDComponent);
    if (!stored) return nullptr;
    stored->SetPosition(0);
    PRecursosObjecte tree = StreamObjecteBinaryARECURSOS(*stored);
    const AnsiString className = tree->Classe;
    AfegeixParesRECURSOS(idNode, node.IDParent, tree, className);
    CarregaRecursosDelphi(className, tree);
    BeforeCreateStreamTComponent(this, idNode, tree);
    if (!tree) return nullptr;
    auto stream = std::make_unique<TMemoryStream>();
    stream->Reserve(stored->Size() * 2);
    RECURSOSObjecteAStreamBinary(*tree, *stream);
    stream->SetDescription("node " + IntToStr(idNode) + " \"" + node.Name + "\"");
    return stream;
}

void TVynApp::BindStoredHandler(TReader& reader, const AnsiString& name, TPersistent* instance,
                                const PropertyInfo& property, const MethodInfo* method, bool& error) {
    if (method) return;
    // No method of the form's class: a rule of the form.
    TComponent* form = reader.Root;
    const int handle = form->Handle();
    property->BindEventSenderOnly(*instance, name, [name, handle](TObject* sender) {
        TComponent* owner = ComponentFromHandle(handle);
        if (!owner) return;
        for (int i = 0; i < owner->ComponentCount(); ++i)
            if (auto* runner = dynamic_cast<EventRunner*>(owner->Components(i)))
                if (runner->RunEvent(name, sender)) return;
        throw Exception("The event " + name + " is neither a method of " + owner->ClassName() +
                        " nor among the rules of the form " + owner->Name());
    });
    error = false;
}

bool TVynApp::LlegeixComponent(TStream& stream, TComponent*& component) {
    TReader reader(stream, opening_detail::kReaderBuffer);
    if (OnReadResourceError)
        reader.OnError = [this](TReader& from, const AnsiString& message, bool& handled) {
            OnReadResourceError(from, message, handled);
        };
    reader.OnFindMethod = [this](TReader& from, const AnsiString& name, TPersistent* instance,
                                 const PropertyInfo& property, const MethodInfo*& method,
                                 bool& error) { BindStoredHandler(from, name, instance, property, method, error); };
    component = reader.ReadRootComponent(component);
    for (int i = 0; i < component->ComponentCount(); ++i)
        if (auto* runner = dynamic_cast<EventRunner*>(component->Components(i))) runner->SetVynApp(this);
    return true;
}

void TVynApp::DoCreateFromStream(TStream& stream, TComponent* owner, int idNode, const TComponentVyn& record,
                                 TComponent*& component) {
    const bool created = component == nullptr;
    if (created) {
        AnsiString className;
        stream.SetPosition(0);
        ClasseDelObjecte(stream, className);
        TClass found = FindClass(className);
        if (!found->InheritsFrom(&TComponent::StaticClass()))
            throw EFatalError("ERROR en DoCreateFromStream\nClasse " + className + " no es herencia de TComponent");
        component = found->InheritsFrom(&TCustomForm::StaticClass()) ? CreateFormNew(found, owner)
                                                                     : static_cast<TComponent*>(found->Create(owner));
    }
    TComponentVyn passed = record;
    auto* window = ObjectCast<TWinControl>(component);
    try {
        if (window) {
            SendMessage(window->Handle(), VYN_COMPONENTCREATED, reinterpret_cast<intptr_t>(this),
                        reinterpret_cast<intptr_t>(component));
            SendMessage(window->Handle(), VYN_BEFORELOAD, idNode, reinterpret_cast<intptr_t>(&passed));
        }
        stream.SetPosition(0);
        LlegeixComponent(stream, component);
    } catch (...) {
        if (created) {
            delete component;
            component = nullptr;
        }
        throw;
    }
    // Listed before it may abort: a component that aborts stays created and listed.
    AddOpenComponent(component);
    if (!window) return;
    if (auto* form = ObjectCast<TForm>(component)) form->OnCreate(form);
    opening_detail::SendOrAbort(*window, VYN_AFTERLOAD, idNode, reinterpret_cast<intptr_t>(&passed));
    opening_detail::SendOrAbort(*window, VYN_OPENED, 0, 0);
}

void TVynApp::AddStreamToComponent(int idNode, TComponent* owner, TComponent*& component) {
    const TNodeArbre node = tree_->GetIDNode(idNode);
    const TComponentVyn record = components_->GetComponent(node.IDComponent);
    const auto stream = RecursosFinals(idNode);
    if (stream) DoCreateFromStream(*stream, owner, idNode, record, component);
}

void TVynApp::AddRecursosToComponent(int idNode, TComponent* component) {
    AddStreamToComponent(idNode, nullptr, component);
}

bool TVynApp::PassGuard(const TNodeArbre& node, TComponent* owner) {
    const TNodeArbre parent = tree_->GetIDNode(node.IDParent);
    if (parent.IDNode < 0 || parent.NodeType != NodeTypeGuard) return true;
    auto* form = ObjectCast<TCustomForm>(ObreComponent(parent.IDNode, owner));
    if (!form) return true;
    // The form may free itself while it is shown.
    const int handle = form->TComponent::Handle();
    bool passed = false;
    try {
        passed = form->ShowModal() == mrOk;
    } catch (...) {
        delete ComponentFromHandle(handle);
        throw;
    }
    delete ComponentFromHandle(handle);
    return passed;
}

TComponent* TVynApp::RunProcedureNode(const TNodeArbre& node, TComponent* owner) {
    TParametres* values = Parametres();
    values->SetParametreValue("PRME01", Variant(owner ? owner->TComponent::Handle() : 0));
    values->SetParametreValue("PRME02", Variant(node.Name));
    values->SetParametreValue("PRME03", Variant(node.IDNode));
    values->SetParametreValue("PRME04", Variant(node.IDParent));
    values->SetParametreValue("PRME05", Variant(node.Child));
    values->SetParametreValue("PRME06", Variant(node.IDComponent));
    values->SetParametreValue("PRME07", Variant(node.NodeType));
    values->SetParametreValue("PRMS01", Variant(0));
    AnsiString name = opening_detail::ProcedureNameOf(node.Name);
    if (procedures_->ProcedureVynIndex(name) < 0) name = opening_detail::kReturnComponent;
    if (procedures_->ProcedureVynIndex(name) < 0) return nullptr;
    procedures_->ExecuteProcedure(name, this);
    return ComponentFromHandle(values->AsInteger("PRMS01", 0));
}

TComponent* TVynApp::ObreComponent(int idNode, TComponent* owner) {
    if (!tree_->FindIDNode(idNode)) throw Exception("No se encuentra el Nodo con ID: \"" + IntToStr(idNode) + "\"");
    const TNodeArbre node = tree_->GetIDNode(idNode);
    const bool opens = (node.IDComponent > 0 || node.NodeType == NodeTypeProcedure) && node.NodeType >= 0 &&
                       node.NodeType != NodeTypeShortcut;
    if (!opens) return nullptr;
    bool proceed = PassGuard(node, owner);
    BeforeOpenTComponent(this, idNode, proceed);
    if (!proceed) return nullptr;
    const int open = nodesList_->IndexOf(idNode);
    if (open >= 0) {
        TComponent* component = nodesList_->GetItem(open).Component;
        if (auto* window = ObjectCast<TWinControl>(component)) opening_detail::SendOrAbort(*window, VYN_OPENED, 0, 0);
        return component;
    }
    TComponent* component = nullptr;
    OnVynAppNeedComponent(this, idNode, component);
    if (node.NodeType == NodeTypeProcedure)
        component = RunProcedureNode(node, owner);
    else
        AddStreamToComponent(idNode, owner, component);
    if (component) {
        SaveComponentCreated(this, idNode, component, true);
        nodesList_->Add({idNode, component});
    }
    return component;
}

TComponent* TVynApp::CreaNouComponent(int idNode, int nodeType, TComponent* owner) {
    TClass found = DoGetClass(nodeType);
    if (!found->InheritsFrom(&TComponent::StaticClass()))
        ErrorVyn("Classe is not TComponent inherited in CreaNouComponent");
    PRecursosObjecte tree;
    {
        const std::unique_ptr<TComponent> instance(static_cast<TComponent*>(found->Create(nullptr)));
        tree = TreeOfComponent(*instance, false);
    }
    AfegeixParesRECURSOS(idNode, idNode, tree, found->Name());
    BeforeCreateStreamTComponent(this, idNode, tree);
    if (!tree) return nullptr;
    TMemoryStream stream;
    RECURSOSObjecteAStreamBinary(*tree, stream);
    stream.SetPosition(0);
    const TComponentVyn record{-1, nodeType, "NEW " + FormatDateTime("dd/mm/yyyy hh:nn:ss", Now())};
    TComponent* component = nullptr;
    DoCreateFromStream(stream, owner, -1, record, component);
    return component;
}

void TVynApp::ReduceByAncestors(int idNode, const AnsiString& className, PRecursosObjecte& tree) {
    for (TNodeArbre node = tree_->GetIDNode(tree_->GetIDNode(idNode).IDParent); node.IDNode > 0;
         node = tree_->GetIDNode(node.IDParent))
        if (const PRecursosObjecte ancestor = ObjectOfAncestor(node, className))
            tree = ExtreuObjectes(ancestor.get(), tree.get(), false);
}

bool TVynApp::GrabaResourceTComponent(TComponent* component, int idNode, const TComponentVyn& record) {
    TComponentVyn stored = record;
    auto* window = ObjectCast<TWinControl>(component);
    const auto recordPointer = reinterpret_cast<intptr_t>(&stored);
    if (window) SendMessage(window->Handle(), VYN_BEFORESAVE, idNode, recordPointer);
    const PRecursosObjecte wanted = TreeOfComponent(*component, false);
    const PRecursosObjecte full = TreeOfComponent(*component, true);
    opening_detail::StoreInvisible(*wanted, *component);
    opening_detail::StoreInvisible(*full, *component);
    const AnsiString className = component->ClassName();

    PRecursosObjecte tree = DuplicaObjectes(wanted.get());
    PRecursosObjecte base;
    GetCopiaDelsRecursosDeDelphi(className, base);
    if (const TRecursosObjecte* found = ExisteixClasseObjecte(base.get(), tree->Classe, TotElArbre))
        tree = ExtreuObjectes(found, tree.get(), false);
    ReduceByAncestors(idNode, className, tree);

    // What opening the node would make of it.
    PRecursosObjecte opened = DuplicaObjectes(tree.get());
    AfegeixParesRECURSOS(idNode, tree_->GetIDNode(idNode).IDParent, opened, className);
    CarregaRecursosDelphi(className, opened);
    CompletaDiferencies(*tree, *opened, *wanted, *full);

    if (window && SendMessage(window->Handle(), VYN_SAVERESOURCES, -1, reinterpret_cast<intptr_t>(tree.get())) ==
                      opening_detail::kStoreNothing)
        tree.reset();
    if (!tree) return false;
    TMemoryStream stream;
    RECURSOSObjecteAStreamBinary(*tree, stream);
    if (components_->FindIDComponent(stored.IDComponent)) {
        components_->SetStreamComponent(stored.IDComponent, stream);
        components_->ModifyComponent(stored.IDComponent, stored.Name, stored.CompType);
    } else {
        stored.IDComponent = components_->AddComponent(stored.Name, stored.CompType, stream);
    }
    if (window) SendMessage(window->Handle(), VYN_AFTERSAVE, idNode, recordPointer);
    return true;
}

}  // namespace vyn
