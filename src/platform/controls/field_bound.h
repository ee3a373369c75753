#pragma once

#include <memory>
#include <utility>

#include "platform/controls/property_catalogue.h"
#include "platform/controls/shortcuts.h"
#include "platform/data/data_set.h"

namespace vyn {

// What every control over one field adds to its plain kind: the link, the properties DataSource, DataField and
// ReadOnly, and three operations that the link calls.
template <class Base>
class FieldShown : public Base {
  public:
    explicit FieldShown(TComponent* owner, std::unique_ptr<TFieldDataLink> link = std::make_unique<TFieldDataLink>())
        : Base(owner), link_(std::move(link)) {
        link_->Control = this;
        link_->OnDataChange = [this](TObject*) { DataChange(); };
        link_->OnEditingChange = [this](TObject*) { EditingChange(); };
        link_->OnUpdateData = [this](TObject*) { UpdateData(); };
        link_->OnActiveChange = [this](TObject*) { EditingChange(); };
    }
    ~FieldShown() override {
        this->BeginDestruction();
        link_.reset();
    }

    TDataSource* DataSource() const { return link_ ? link_->DataSource() : nullptr; }
    void SetDataSource(TDataSource* value) {
        if (value == DataSource()) return;
        link_->SetDataSource(value);
        if (value) value->FreeNotification(this);
    }
    const AnsiString& DataField() const { return link_->FieldName(); }
    void SetDataField(const AnsiString& value) { link_->SetFieldName(value); }
    // The field of the open dataset, or null.
    TField* Field() const { return link_ ? link_->Field() : nullptr; }
    // Set by the form, whatever field and dataset allow.
    bool DataReadOnly() const { return link_->ReadOnly(); }
    void SetDataReadOnly(bool value) { link_->SetReadOnly(value); }

    // The three properties, added to a class's catalogue.
    static PropertyCatalogue& AddDataProperties(PropertyCatalogue& catalogue) {
        catalogue.Add("DataField", &FieldShown::DataField, &FieldShown::SetDataField);
        catalogue.Add("DataSource", &FieldShown::DataSource, &FieldShown::SetDataSource);
        catalogue.Add("ReadOnly", &FieldShown::DataReadOnly, &FieldShown::SetDataReadOnly).Default(false);
        return catalogue;
    }

  protected:
    // Show the field's value; follow a change of what may be done; put what is shown into the field.
    virtual void DataChange() = 0;
    virtual void EditingChange() {}
    virtual void UpdateData() {}

    TFieldDataLink& Link() const { return *link_; }
    void Notification(TComponent* component, TOperation operation) override {
        Base::Notification(component, operation);
        if (operation == opRemove && link_ && component == link_->DataSource()) link_->SetDataSource(nullptr);
    }

  private:
    std::unique_ptr<TFieldDataLink> link_;
};

// The same for what users change: it is put into the field when the control is left or the record is posted.
template <class Base>
class FieldBound : public FieldShown<Base> {
  public:
    using FieldShown<Base>::FieldShown;

    // Escape takes back what was changed here; when there is nothing, it is the form's.
    void KeyPress(char& key) override {
        Base::KeyPress(key);
        constexpr char kEscape = 27;
        if (key == kEscape && TakeBack()) key = 0;
    }
    bool WantsKey(uint16_t key, TShiftState shift) const override {
        return (key == VK_ESCAPE && this->Link().IsModified()) || Base::WantsKey(key, shift);
    }

  protected:
    // The user is about to change what is shown: the record is edited, or all stays as it is.
    bool EditField() { return this->Link().Edit(); }
    // Whether the user may change anything.
    bool CanChange() const {
        return this->DataSource() && this->Link().CanModify() &&
               (this->DataSource()->AutoEdit || this->Link().Editing());
    }
    // What was changed here goes to the field; what is wrong with it raises, and the keyboard stays.
    void DoExit() override {
        this->Link().UpdateRecord();
        Base::DoExit();
    }
    // Shows the field again; false when nothing was changed.
    virtual bool TakeBack() {
        if (!this->Link().IsModified()) return false;
        this->Link().Reset();
        return true;
    }
};

}  // namespace vyn
