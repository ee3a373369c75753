#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/controls/field_bound.h"
#include "platform/controls/lookup_list.h"
#include "platform/controls/win_control.h"

namespace vyn {

// What the controls that choose a record of a list have in common: the value, the list, typing that searches, and what
// Escape takes back. Belongs to its control, and tells it through the two functions given.
//
// A choice goes to the field at once, so that what depends on it follows. Showing a value moves no dataset; a choice of
// the user's moves that of the list to the record chosen, so that handlers find the rest of it there. A list that is
// the very dataset of the field is no list.
class Lookup {
  public:
    // `shown`: value, list or text are other ones; `chosen`: the user made a choice.
    Lookup(LookupLink& link, std::function<void()> shown, std::function<void()> chosen);
    ~Lookup();
    // No more telling: the control goes.
    void Close() { closed_ = true; }

    // Set by the form. Not heeded while the field is a looked-up one, which names the list and its key itself.
    AnsiString KeyField;
    TDataSource* ListSource = nullptr;
    // What is shown: names separated by semicolons, or else the looked-up result, or the key; and the place among them
    // of the field that is searched.
    AnsiString ListField;
    int32_t ListFieldIndex = 0;
    // Any of these, or the data, has changed.
    void Refresh();

    LookupList& List() { return list_; }
    const LookupKey& Key() const { return key_; }
    // Shows a value; for controls that are bound to no field.
    void ShowKey(LookupKey key);
    // The list's record with the value, or -1.
    int64_t Record();
    bool IsOf(int64_t record) const { return SameKeys(list_.KeyOf(record), key_); }
    // Its text, which is empty without one; where the list is closed a looked-up field still knows it.
    const AnsiString& Text();

    bool CanChange() const;
    // The user's choice: the value of a record, or none. False when it may not be made.
    bool Choose(int64_t record);
    bool ChooseNone();
    // The value that was there before the user chose, in this record and since the control was entered.
    bool CanTakeBack() const { return before_.has_value() && CanChange(); }
    bool TakeBack();
    void Keep() { before_.reset(); }

    // The record that begins with what was typed lately and this character (Backspace: with one less), or -1, with a
    // beep, where there is none.
    int64_t Search(char key);
    // A pause in typing, or another way of choosing.
    void EndSearch() { searched_.clear(); }

  private:
    LookupKey KeyOfField() const;
    void Forget() {
        record_.reset();
        text_.reset();
    }
    bool Put(LookupKey key);
    void Tell(const std::function<void()>& what) const {
        if (!closed_) what();
    }

    LookupLink& link_;
    std::function<void()> shown_;
    std::function<void()> chosen_;
    LookupList list_;
    // The list of a looked-up field has no source of the form's.
    std::unique_ptr<TDataSource> ownSource_;
    LookupKey key_;
    std::optional<LookupKey> before_;
    // What was found for the value, until something changes.
    std::optional<int64_t> record_;
    std::optional<AnsiString> text_;
    AnsiString searched_;
    int64_t searchedRecord_ = 0;
    uint32_t searchedAt_ = 0;
    bool bound_ = false;
    bool closed_ = false;
};

// Adds a lookup to a control over a field: its properties, and how it follows the data.
template <class Base>
class LookupBound : public FieldBound<Base> {
  public:
    explicit LookupBound(TComponent* owner)
        : FieldBound<Base>(owner, std::make_unique<LookupLink>()),
          lookup_(
              Linked(), [this] { LookupShown(); }, [this] { this->Click(); }) {
        Linked().OnScroll = [this](TObject*) { lookup_.Keep(); };
    }
    ~LookupBound() override {
        this->BeginDestruction();
        lookup_.Close();
    }

    const AnsiString& KeyField() const { return lookup_.KeyField; }
    void SetKeyField(const AnsiString& value) { Set(lookup_.KeyField, value); }
    const AnsiString& ListField() const { return lookup_.ListField; }
    void SetListField(const AnsiString& value) { Set(lookup_.ListField, value); }
    int32_t ListFieldIndex() const { return lookup_.ListFieldIndex; }
    void SetListFieldIndex(int32_t value) { Set(lookup_.ListFieldIndex, value); }
    TDataSource* ListSource() const { return lookup_.ListSource; }
    void SetListSource(TDataSource* value) {
        if (value == lookup_.ListSource) return;
        Set(lookup_.ListSource, value);
        if (value) value->FreeNotification(this);
    }
    // The key that clears the value.
    TShortCut NullValueKey = 0;
    // The value; Null without one, or when the key is of several fields. Setting it is for controls without a field.
    Variant KeyValue() const { return lookup_.Key().size() == 1 ? lookup_.Key()[0] : Variant::Null(); }
    void SetKeyValue(const Variant& value) { lookup_.ShowKey({value}); }
    Lookup& TheLookup() { return lookup_; }

    static PropertyCatalogue& AddLookupProperties(PropertyCatalogue& catalogue) {
        LookupBound::AddDataProperties(catalogue);
        catalogue.Add("KeyField", &LookupBound::KeyField, &LookupBound::SetKeyField);
        catalogue.Add("ListField", &LookupBound::ListField, &LookupBound::SetListField);
        catalogue.Add("ListFieldIndex", &LookupBound::ListFieldIndex, &LookupBound::SetListFieldIndex).Default(0);
        catalogue.Add("ListSource", &LookupBound::ListSource, &LookupBound::SetListSource);
        catalogue.Add("NullValueKey", &LookupBound::NullValueKey, &LookupBound::NullValueKey).Default(0);
        return catalogue;
    }

    void Loaded() override {
        FieldBound<Base>::Loaded();
        lookup_.Refresh();
    }
    bool WantsKey(uint16_t key, TShiftState shift) const override {
        return (key == VK_ESCAPE && lookup_.CanTakeBack()) || FieldBound<Base>::WantsKey(key, shift);
    }

  protected:
    virtual void LookupShown() = 0;  // value, list or text are other ones
    void DataChange() override { lookup_.Refresh(); }
    void EditingChange() override {
        lookup_.Keep();
        this->PeerChanged(PeerChange::Style);
    }
    bool TakeBack() override { return lookup_.TakeBack(); }
    void DoExit() override {
        lookup_.Keep();
        lookup_.EndSearch();
        FieldBound<Base>::DoExit();
    }
    bool IsNullKey(uint16_t key, TShiftState shift) const {
        return NullValueKey != 0 && ShortCut(key, shift) == NullValueKey;
    }
    void Notification(TComponent* component, TOperation operation) override {
        FieldBound<Base>::Notification(component, operation);
        if (operation == opRemove && component == lookup_.ListSource) SetListSource(nullptr);
    }

  private:
    LookupLink& Linked() const { return static_cast<LookupLink&>(this->Link()); }
    template <class T>
    void Set(T& place, const T& value) {
        if (place == value) return;
        place = value;
        lookup_.Refresh();
    }

    Lookup lookup_;
};

}  // namespace vyn
