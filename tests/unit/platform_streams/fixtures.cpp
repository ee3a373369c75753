#include "unit/platform_streams/fixtures.h"

#include <algorithm>

namespace stream_fixtures {

const EnumType& TypeInfoOf(TypeTag<TMood>) {
    static const EnumType info("TMood", {"mdCalm", "mdBusy", "mdAngry"});
    return info;
}
const IntegerType& TypeInfoOf(TypeTag<TShade>) {
    static const IntegerType info("TShade", {{"shDark", -1}, {"shLight", 100}});
    return info;
}

const ClassInfo& TPart::StaticClass() {
    static const ClassInfo info = DefineClass<TPart, TPersistent>("TPart")
                                      .Published("Size", &TPart::Size, &TPart::Size)
                                      .Default(8)
                                      .Published("Face", &TPart::Face, &TPart::Face);
    return info;
}
void TPart::Assign(const TPersistent* source) {
    if (const auto* part = ObjectCast<TPart>(source)) {
        Size = part->Size;
        Face = part->Face;
    } else {
        TPersistent::Assign(source);
    }
}

const ClassInfo& TEntry::StaticClass() {
    static const ClassInfo info = DefineClass<TEntry, TCollectionItem>("TEntry")
                                      .Published("Title", &TEntry::Title, &TEntry::Title)
                                      .Published("Width", &TEntry::Width, &TEntry::Width)
                                      .Default(64);
    return info;
}

const ClassInfo& TThing::StaticClass() {
    static const ClassInfo info = DefineClass<TThing, TComponent>("TThing")
                                      .Published("Count", &TThing::Count, &TThing::Count)
                                      .Default(0)
                                      .Published("Caption", &TThing::Caption, &TThing::Caption)
                                      .Published("Checked", &TThing::Checked, &TThing::Checked)
                                      .Default(false)
                                      .Published("Mood", &TThing::Mood, &TThing::Mood)
                                      .Default(mdCalm)
                                      .Published("Moods", &TThing::Moods, &TThing::Moods)
                                      .Default(Set<TMood>())
                                      .Published("Shade", &TThing::Shade, &TThing::Shade)
                                      .Default(shDark)
                                      .Published("Rate", &TThing::Rate, &TThing::Rate)
                                      .Published("Price", &TThing::Price, &TThing::Price)
                                      .Published("When", &TThing::When, &TThing::When)
                                      .Published("Any", &TThing::Any, &TThing::Any)
                                      .Published("Big", &TThing::Big, &TThing::Big)
                                      .Published("Letter", &TThing::Letter, &TThing::Letter)
                                      .Default('*')
                                      .Published("Wide", &TThing::Wide, &TThing::Wide)
                                      .Published("Friend", &TThing::Friend, &TThing::SetFriend)
                                      .Published("Part", &TThing::Part, &TThing::SetPart)
                                      .Published("Lines", &TThing::Lines, &TThing::SetLines)
                                      .Published("Entries", &TThing::Entries, &TThing::SetEntries)
                                      .Event("OnClick", &TThing::OnClick)
                                      .Method("ButtonClicked", &TThing::ButtonClicked);
    return info;
}

TThing::TThing(TComponent* owner) : TComponent(owner), entries_(std::make_unique<TOwnedCollection<TEntry>>(this)) {}
TThing::~TThing() {
    BeginDestruction();
    DestroyComponents();
    if (parent_) std::erase(parent_->Children, this);
    for (TThing* child : Children) child->parent_ = nullptr;
}

void TThing::GetChildren(const std::function<void(TComponent*)>& visit, TComponent*) {
    for (TThing* child : Children) visit(child);
}
void TThing::SetParentComponent(TComponent* parent) {
    auto* thing = ObjectCast<TThing>(parent);
    if (parent_) std::erase(parent_->Children, this);
    parent_ = thing;
    if (thing) thing->Children.push_back(this);
}
void TThing::SetChildOrder(TComponent* child, int order) {
    auto* thing = static_cast<TThing*>(child);
    std::erase(Children, thing);
    Children.insert(Children.begin() + std::clamp<int>(order, 0, static_cast<int>(Children.size())), thing);
}
void TThing::DefineProperties(TFiler& filer) {
    TComponent::DefineProperties(filer);
    filer.DefineProperty(
        "Secret", [this](TReader& reader) { Secret = reader.ReadString(); },
        [this](TWriter& writer) { writer.WriteString(Secret); }, !Secret.empty());
}
void TThing::Loaded() {
    TComponent::Loaded();
    LoadedNames().push_back(Name());
}
void TThing::ButtonClicked(TObject*) { ++Clicks; }
std::vector<AnsiString>& TThing::LoadedNames() {
    static std::vector<AnsiString> names;
    return names;
}

std::string Hex(std::string_view bytes) {
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    for (unsigned char c : bytes) {
        if (!text.empty()) text += ' ';
        text += digits[c >> 4];
        text += digits[c & 15];
    }
    return text;
}

std::string Unhex(std::string_view hex) {
    std::string bytes;
    std::string pair;
    for (char c : hex) {
        if (c == ' ') continue;
        pair += c;
        if (pair.size() == 2) {
            bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
            pair.clear();
        }
    }
    return bytes;
}

std::string Written(TComponent& component) {
    TMemoryStream stream;
    WriteComponentToStream(stream, component);
    return std::string(stream.Bytes());
}

}  // namespace stream_fixtures
