#pragma once

#include "datasources/component_list.h"
#include "datasources/data_link.h"
#include "datasources/data_source_classes.h"
#include "datasources/lookup_answers.h"
#include "datasources/messages.h"

namespace vyn {

using TNotifyVynDataLinkNewValue = Event<void(TVynDataLink* Sender, const Variant& Value)>;

// A data source that also knows the application and one node of its tree, so that the links on it can look values up in
// the components below that node, or in those of registered classes. Forgets the application when it goes. Main thread
// only.
class TVynDataSource : public TDataSource {
    VYN_OBJECT
  public:
    explicit TVynDataSource(TComponent* owner);
    ~TVynDataSource() override;

    // The owner of the components that the list makes; at first this one's own.
    TComponent* NewComponentsOwner() const { return newComponentsOwner_; }
    void SetNewComponentsOwner(TComponent* value);
    int32_t IDNode() const { return idNode_; }
    void SetIDNode(int32_t value);
    TVynApp* VynApp() const { return vynApp_; }
    void SetVynApp(TVynApp* value);
    // A link took a new value.
    TNotifyVynDataLinkNewValue OnVynDataLinkNewValue;

    // Null while the source is going.
    TVynComponentList* ComponentList() const { return list_.get(); }
    // The links with AutoRefresh look their values up anew, the next time that they are shown; what failed is tried
    // again.
    void AutoRefresh();
    // The application or the node is another one. Links are not refreshed by it.
    virtual void NotifyDataSourceChanged() {}

    using TDataSource::Links;

  protected:
    void Notification(TComponent* component, TOperation operation) override;

  private:
    bool IsOtherOwner() const { return newComponentsOwner_ != Owner(); }

    TComponent* newComponentsOwner_;
    std::unique_ptr<TVynComponentList> list_;
    int32_t idNode_ = 0;
    TVynApp* vynApp_ = nullptr;
};

// A component that answers lookups: it owns the values that it looks up, as parameters, and a window to which links
// send their messages (datasources/messages.h). Descendants say what the values are. Main thread only.
class TCustomVynDataSourceAbstract : public TComponent, private LookupAnswers {
    VYN_OBJECT
  public:
    explicit TCustomVynDataSourceAbstract(TComponent* owner);
    ~TCustomVynDataSourceAbstract() override;

    TParametres& Params() { return params_; }
    HWND WindowHandle() const { return window_.Handle(); }

    // Shows the search screen on a text, modally; its modal result, 1 when something was chosen.
    virtual int ModalSearch(const AnsiString& fieldName, const Variant& value) { return 0; }
    // Puts the current values into the parameters: called before they are read. (The constructor calls this class's
    // own; a descendant that has values from the start puts them in its constructor.)
    virtual void LoadParams() {}
    // A value is given to a parameter: look it up. Not called again for what it sets itself.
    virtual void ParamsSetValor(const AnsiString& name, const Variant& value) {}
    // A parameter is read: replace its value.
    virtual void ParamsGetValor(const AnsiString& name, Variant& value) {}
    // The edit mask of a value.
    virtual AnsiString GetParamMask(const AnsiString& name) { return AnsiString(); }

    // Whether ParamsSetValor is kept from being called inside itself.
    bool GuardSets = true;

  protected:
    virtual void WndProc(TMessage& message);

  private:
    // Any record is what its values say: there is none to locate.
    bool LocateRecord(const TLocateStruct&) override { return false; }
    bool ChooseRecord(const TLocateStruct& wanted) override;
    void ReadValues(TParametres& values) override;
    bool WriteValues(TParametres& values) override;
    AnsiString MaskOfValue(const AnsiString& name) override { return GetParamMask(name); }
    void OnParamsGetValorPRM(TParametres* params, const AnsiString& name, Variant& value);
    void OnParamsSetValorPRM(TParametres* params, const AnsiString& name, const Variant& value);

    vyn::WindowHandle window_;
    TParametres params_;
    bool setting_ = false;
};

// A tracing aid: appends "hh:nn:ss: text" as a line to the clipboard's text.
void AddClipboardLine(const AnsiString& text);

}  // namespace vyn
