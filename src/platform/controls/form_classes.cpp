#include "platform/controls/form_classes.h"

#include <unordered_map>
#include <vector>

#include "platform/controls/data_modules.h"
#include "platform/controls/screen.h"
#include "platform/objects/class_table.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "platform/system/application.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace form_creation {

using ResourceTable = std::unordered_map<AnsiString, std::string_view, TextHash, TextEqual>;

ResourceTable& Resources() {
    static ResourceTable table;
    return table;
}

bool newRequested = false;

bool TakeNewRequest() {
    const bool requested = newRequested;
    newRequested = false;
    return requested;
}

void RequireForm(TClass formClass) {
    if (!formClass || !formClass->InheritsFrom(&TCustomForm::StaticClass()))
        throw EInvalidCast("The class " + (formClass ? formClass->Name() : AnsiString("nil")) + " is no form");
}

}  // namespace form_creation

void RegisterFormResource(std::string_view className, std::string_view bytes) {
    form_creation::Resources().insert_or_assign(AnsiString(className), bytes);
}

void UnregisterFormResource(std::string_view className) { form_creation::Resources().erase(AnsiString(className)); }

std::string_view FindFormResource(std::string_view className) {
    const auto found = form_creation::Resources().find(className);
    return found == form_creation::Resources().end() ? std::string_view() : found->second;
}

bool ReadFormResources(TComponent& root, const std::function<void(bool last)>& before) {
    std::vector<std::string_view> forms;
    for (TClass at = root.ClassType(); at; at = at->Parent()) {
        const std::string_view bytes = FindFormResource(at->Name());
        if (!bytes.empty()) forms.insert(forms.begin(), bytes);
    }
    for (size_t i = 0; i < forms.size(); ++i) {
        if (before) before(i + 1 == forms.size());
        TViewStream stream(forms[i]);
        TReader reader(stream);
        // A compiled form may name every class that is linked, registered or not.
        reader.OnFindComponentClass = [](TReader&, const AnsiString& className, TClass& found) {
            if (!found) found = FindLinkedClass(className);
        };
        reader.ReadRootComponent(&root);
    }
    return !forms.empty();
}

TCustomForm* CreateFormNormal(TClass formClass, TComponent* owner) {
    form_creation::RequireForm(formClass);
    return static_cast<TCustomForm*>(formClass->Create(owner));
}

TCustomForm* CreateFormNew(TClass formClass, TComponent* owner) {
    form_creation::RequireForm(formClass);
    form_creation::newRequested = true;
    try {
        TObject* form = formClass->Create(owner);
        form_creation::newRequested = false;  // a class with a factory of another kind has not looked
        return static_cast<TCustomForm*>(form);
    } catch (...) {
        form_creation::newRequested = false;
        throw;
    }
}

// Data modules.

const ClassInfo& TDataModule::StaticClass() {
    static const ClassInfo info =
        DefineClass<TDataModule, TComponent>("TDataModule")
            .Published("OldCreateOrder", &TDataModule::OldCreateOrder, &TDataModule::OldCreateOrder)
            .Event("OnCreate", &TDataModule::OnCreate)
            .Event("OnDestroy", &TDataModule::OnDestroy);
    return info;
}

TDataModule::TDataModule(TComponent* owner) : TComponent(owner) { Screen()->dataModules_.push_back(this); }

TDataModule::~TDataModule() {
    try {
        OnDestroy(this);
    } catch (...) {
        Application()->HandleException(this);
    }
    std::erase(Screen()->dataModules_, this);
    BeginDestruction();
    DestroyComponents();
}

void TDataModule::InitializeModule() {
    ReadFormResources(*this);
    try {
        OnCreate(this);
    } catch (...) {
        Application()->HandleException(this);
    }
}

void TDataModule::GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) {
    TComponent::GetChildren(visit, root);
    if (root != this) return;
    for (int i = 0; i < ComponentCount(); ++i)
        if (!Components(i)->HasParent()) visit(Components(i));
}

void TDataModule::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    filer.DefineIntegerProperty(
        "Height", [this](int value) { DesignSize.cy = value; }, DesignSize.cy, true);
    filer.DefineIntegerProperty(
        "HorizontalOffset", [this](int value) { DesignOffset.x = value; }, DesignOffset.x, DesignOffset.x != 0);
    filer.DefineIntegerProperty(
        "VerticalOffset", [this](int value) { DesignOffset.y = value; }, DesignOffset.y, DesignOffset.y != 0);
    filer.DefineIntegerProperty(
        "Width", [this](int value) { DesignSize.cx = value; }, DesignSize.cx, true);
}

}  // namespace vyn
