// Version resources: whatever the bytes, as an executable or as a resource, values lie inside of what was read.

#include "platform/system/version_resource.h"
#include "support/fuzz.h"

namespace {

void Ask(const vyn::VersionResource& resource) {
    const std::string_view bytes = resource.Bytes();
    for (const char* path : {"\\", "\\VarFileInfo\\Translation", "\\StringFileInfo", "\\StringFileInfo\\040304B0",
                             "\\StringFileInfo\\040304B0\\FileVersion", "\\A\\B\\C"}) {
        const auto value = resource.Query(path);
        fuzzing::Require(value.has_value() == resource.QueryText(path).has_value(), "a value is there or it is not");
        if (!value) continue;
        fuzzing::Require(value->data() >= bytes.data() && value->data() + value->size() <= bytes.data() + bytes.size(),
                         "a value lies inside of the resource");
        fuzzing::Require(resource.QueryText(path)->size() <= value->size() / 2, "a text is no longer than its value");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes = fuzzing::Bytes(data, size);
    const auto read = [bytes](uint64_t offset, void* buffer, size_t count) {
        if (offset > bytes.size() || count > bytes.size() - offset) return false;
        bytes.copy(static_cast<char*>(buffer), count, offset);
        return true;
    };
    if (const auto resource = vyn::VersionResource::OfExecutable(read)) Ask(*resource);
    Ask(vyn::VersionResource(vyn::AnsiString(bytes)));
    return 0;
}
