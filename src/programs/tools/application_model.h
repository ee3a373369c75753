#pragma once

#include <memory>
#include <optional>

#include "app/Utvynapp.h"

namespace vyn {

// An application file as the tools see it: its header, which the application object does not keep, and its stores.
struct ApplicationModel {
    int Format = CT_VersioVyn;
    TDateTime Saved;
    std::optional<TVynAppSavedInfo> Info;  // none: a file without the block
    std::unique_ptr<TVynApp> App;

    ApplicationModel();
};

// Reads an application file from the stream's position; errors are those of the application object.
ApplicationModel LoadApplication(TStream& stream);
// Writes the file that holds exactly this, with the dates and counts of the model.
void SaveApplication(ApplicationModel& model, TStream& stream);

}  // namespace vyn
