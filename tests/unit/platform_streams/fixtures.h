#pragma once

#include <functional>
#include <string>

#include "platform/objects/class_table.h"
#include "platform/objects/collection.h"
#include "platform/objects/component.h"
#include "platform/objects/strings.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/streams/writer.h"
#include "platform/text/exceptions.h"
#include "support/errors.h"

// A small family of components for the tests of reading and writing.
namespace stream_fixtures {

using namespace vyn;

enum class TMood { mdCalm, mdBusy, mdAngry };
using enum TMood;
const EnumType& TypeInfoOf(TypeTag<TMood>);
enum TShade : int32_t { shDark = -1, shLight = 100 };
const IntegerType& TypeInfoOf(TypeTag<TShade>);

class TPart : public TPersistent {
    VYN_OBJECT
  public:
    int Size = 8;
    AnsiString Face;
    void Assign(const TPersistent* source) override;
};

class TEntry : public TCollectionItem {
    VYN_OBJECT
  public:
    using TCollectionItem::TCollectionItem;
    AnsiString Title;
    int Width = 64;
};

class TThing : public TComponent {
    VYN_OBJECT
  public:
    explicit TThing(TComponent* owner);
    ~TThing() override;

    int Count = 0;
    AnsiString Caption;
    bool Checked = false;
    TMood Mood = mdCalm;
    Set<TMood> Moods;
    TShade Shade = shDark;
    double Rate = 0;
    Currency Price;
    TDateTime When;
    Variant Any;
    int64_t Big = 0;
    char Letter = '*';
    WideString Wide;
    TNotifyEvent OnClick;
    TThing* Friend() const { return friend_; }
    void SetFriend(TThing* value) { friend_ = value; }
    TPart* Part() const { return const_cast<TPart*>(&part_); }
    void SetPart(TPart* value) { part_.Assign(value); }
    TStrings* Lines() const { return const_cast<TStringList*>(&lines_); }
    void SetLines(TStrings* value) { lines_.Assign(value); }
    TCollection* Entries() const { return entries_.get(); }
    void SetEntries(TCollection* value) { entries_->Assign(value); }
    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;
    void SetParentComponent(TComponent* parent) override;
    TComponent* GetParentComponent() const override { return parent_; }
    bool HasParent() const override { return parent_ != nullptr; }
    void SetChildOrder(TComponent* child, int order) override;
    void DefineProperties(TFiler& filer) override;
    void Loaded() override;
    void ButtonClicked(TObject* sender);

    AnsiString Secret;
    int Clicks = 0;
    std::vector<TThing*> Children;
    static std::vector<AnsiString>& LoadedNames();

  private:
    TThing* friend_ = nullptr;
    TThing* parent_ = nullptr;
    TPart part_;
    TStringList lines_;
    std::unique_ptr<TOwnedCollection<TEntry>> entries_;
};

std::string Hex(std::string_view bytes);
std::string Unhex(std::string_view hex);
std::string Written(TComponent& component);

}  // namespace stream_fixtures
