// The search fields of a form: what loads is stored in the newest format, and loads again as the same entries.

#include "events/Ucampsbuscar.h"
#include "platform/controls/edits.h"
#include "platform/controls/forms.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "support/fuzz.h"

namespace {

// A form with two controls that entries may name.
struct Form {
    Form() {
        for (const char* name : {"EName", "ECode"}) (new vyn::TEdit(&form))->SetName(name);
    }
    vyn::TForm form{nullptr};
    vyn::TCampsBuscar* fields = new vyn::TCampsBuscar(&form);
};

void Load(vyn::TCampsBuscar& fields, std::string_view bytes) {
    vyn::TViewStream stream(bytes);
    vyn::TReader reader(stream);
    fields.ReadData(reader);
}

std::string Stored(vyn::TCampsBuscar& fields) {
    vyn::TMemoryStream stream;
    {
        vyn::TWriter writer(stream);
        fields.WriteData(writer);
    }
    return std::string(stream.Bytes());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Form one, other;
    const bool whole = fuzzing::Succeeds([&] { Load(*one.fields, fuzzing::Bytes(data, size)); });
    const std::string stored = Stored(*one.fields);
    Load(*other.fields, stored);
    fuzzing::Require(other.fields->Count() == one.fields->Count(), "every entry that was loaded is stored");
    for (int i = 0; i < one.fields->Count(); ++i) {
        vyn::TCampBuscar left = one.fields->GetCampsBuscarComponent(i);
        vyn::TCampBuscar right = other.fields->GetCampsBuscarComponent(i);
        const bool bound = left.Component != nullptr;
        fuzzing::Require(bound == (right.Component != nullptr), "an entry finds its control again");
        if (!bound) left.ComponentName.clear();
        left.Component = right.Component = nullptr;
        fuzzing::Require(left == right, "an entry comes back as it was");
    }
    fuzzing::Require(Stored(*other.fields) == stored, "what was stored is stored again byte for byte");
    if (!whole) return 0;
    // Controls go, entries with them.
    delete one.form.FindComponent("EName");
    for (int i = 0; i < one.fields->Count(); ++i) {
        const vyn::TCampBuscar entry = one.fields->GetCampsBuscarComponent(i);
        fuzzing::Require(entry.ComponentName != "EName" || !entry.Component, "no entry refers to what is gone");
    }
    return 0;
}
