#include "programs/tools/application_model.h"

#include "platform/streams/reader.h"
#include "platform/streams/writer.h"

namespace vyn {

ApplicationModel::ApplicationModel() : App(std::make_unique<TVynApp>(nullptr)) {}

ApplicationModel LoadApplication(TStream& stream) {
    ApplicationModel model;
    const int64_t start = stream.Position();
    // The application object checks everything and says what is wrong.
    model.App->LoadAppFromStream(stream);
    const int64_t end = stream.Position();
    stream.SetPosition(start);
    {
        TReader reader(stream);
        reader.ReadIdentView();
        model.Format = reader.ReadInteger();
        model.Saved = reader.ReadDate();
        if (reader.NextValue() == vaList) model.Info = model.App->SavedInfo();
    }
    stream.SetPosition(end);
    return model;
}

void SaveApplication(ApplicationModel& model, TStream& stream) {
    {
        TWriter writer(stream);
        writer.WriteIdent("VYN");
        writer.WriteInteger(model.Format);
        writer.WriteDate(model.Saved);
        if (model.Info) {
            writer.WriteListBegin();
            writer.WriteInteger(model.Info->Version);
            writer.WriteDate(model.Info->SaveDate);
            writer.WriteString(model.Info->SavedBy);
            writer.WriteInteger(model.Info->SaveCount);
            writer.WriteDate(model.Info->EditTime);
            writer.WriteListEnd();
        }
        writer.Flush();
    }
    model.App->Components().SaveToStream(stream);
    model.App->Tree().SaveToStream(&stream);
    model.App->Recursos().SaveToStream(stream, 0, LastApplicationRecursos);
}

}  // namespace vyn
