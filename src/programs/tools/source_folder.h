#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/streams/stream.h"

namespace vyn {

// The source folder of an application (docs/formats/source-folder.md): application.json, and a text form for each
// component and resource, so that an application can be compared, merged and kept under version control.
//
// Exporting and building are each other's reverse, byte for byte. An application file whose bytes the folder cannot say
// (written by hand, with values in longer codes than needed, damaged at its end) is kept whole beside as original.bin:
// building an unchanged folder gives it back, building a changed one gives the file as this system writes it.

constexpr char ApplicationJsonName[] = "application.json";
constexpr char OriginalName[] = "original.bin";
constexpr char ComponentsFolder[] = "components";
constexpr char ResourcesFolder[] = "resources";

// One thing that is wrong, or worth knowing, and where.
struct SourceRemark {
    std::string File;  // UTF-8, as the user would name it
    int Line = 0;      // 0: the file as a whole
    std::string Text;  // UTF-8

    std::string Sentence() const { return File + ":" + (Line > 0 ? std::to_string(Line) + ":" : "") + " " + Text; }
};
using SourceRemarks = std::vector<SourceRemark>;

// Called now and then with a part of the whole, from 0 to 1.
using ProgressReport = std::function<void(double part)>;

// Writes the folder (made when it is not there) from an application file. Files of an earlier export that are no longer
// wanted are removed; a folder with other contents and no application.json raises an Exception. Remarks tell what could
// not be written as text.
SourceRemarks ExportSourceFolder(TStream& application, const std::string& folder, const ProgressReport& progress = {});

// Builds the application file's bytes from a folder into `application`. The errors found, all of them; with any,
// nothing is written.
SourceRemarks BuildSourceFolder(const std::string& folder, TStream& application, const ProgressReport& progress = {});

}  // namespace vyn
