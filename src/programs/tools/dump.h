#pragma once

#include <string>

#include "platform/streams/stream.h"
#include "programs/tools/json_text.h"

namespace vyn {

// What a stream of the framework holds, recognised by its tag, as one JSON document (docs/formats). Binary fields
// appear as their size and SHA-256 digest, or as "form" where the bytes are a component stream. A stream that is none
// of the framework's raises an Exception; a damaged one the error of its reader.
Json DumpStream(TStream& stream);
// The same as indented text for people.
std::string DumpText(const Json& dump);

// The parts of a stored form as JSON: class, name, flags, position, properties, children.
Json DumpForm(TStream& stream);

}  // namespace vyn
