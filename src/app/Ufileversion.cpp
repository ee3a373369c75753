#include "app/Ufileversion.h"

#include <cstdint>

#include "platform/system/version_resource.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace file_version_detail {

// The fixed information, the value of the root block.
constexpr uint32_t kSignature = 0xFEEF04BD;
constexpr size_t kFixedInfoSize = 52;
constexpr size_t kFlagsAt = 28;

constexpr uint32_t kDebug = 0x01;
constexpr uint32_t kPreRelease = 0x02;
constexpr uint32_t kPatched = 0x04;
constexpr uint32_t kPrivateBuild = 0x08;
constexpr uint32_t kInfoInferred = 0x10;
constexpr uint32_t kSpecialBuild = 0x20;

uint32_t NumberAt(std::string_view bytes, size_t offset, size_t size) {
    uint32_t number = 0;
    for (size_t i = 0; i < size; ++i) number |= uint32_t{static_cast<unsigned char>(bytes[offset + i])} << (8 * i);
    return number;
}

// Of each text its key and where it goes, in the order of the record.
struct Text {
    const char* Key;
    AnsiString TFileVersionInfo::*Field;
};
constexpr Text kTexts[] = {
    {"CompanyName", &TFileVersionInfo::CompanyName},           {"FileDescription", &TFileVersionInfo::FileDescription},
    {"FileVersion", &TFileVersionInfo::FileVersion},           {"InternalName", &TFileVersionInfo::InternalName},
    {"LegalCopyright", &TFileVersionInfo::LegalCopyright},     {"LegalTrademarks", &TFileVersionInfo::LegalTrademarks},
    {"OriginalFilename", &TFileVersionInfo::OriginalFilename}, {"ProductName", &TFileVersionInfo::ProductName},
    {"ProductVersion", &TFileVersionInfo::ProductVersion},     {"Comments", &TFileVersionInfo::Comments},
};

void ReadTexts(const VersionResource& resource, TFileVersionInfo& info) {
    const auto translation = resource.Query("\\VarFileInfo\\Translation");
    if (!translation || translation->size() < 4) return;
    const AnsiString prefix = "\\StringFileInfo\\" + IntToHex(NumberAt(*translation, 0, 2), 4) +
                              IntToHex(NumberAt(*translation, 2, 2), 4) + "\\";
    for (const Text& text : kTexts)
        if (const auto value = resource.QueryText(prefix + text.Key)) info.*text.Field = *value;
}

void ReadFlags(const VersionResource& resource, TFileVersionInfo& info) {
    const auto fixed = resource.Query("\\");
    if (!fixed || fixed->size() < kFixedInfoSize || NumberAt(*fixed, 0, 4) != kSignature) return;
    const uint32_t flags = NumberAt(*fixed, kFlagsAt, 4);
    info.Debug = flags & kDebug;
    info.PreRelease = flags & kPreRelease;
    info.Patched = flags & kPatched;
    info.PrivateBuild = flags & kPrivateBuild;
    info.InfoInferred = flags & kInfoInferred;
    info.SpecialBuild = flags & kSpecialBuild;
}

}  // namespace file_version_detail

TFileVersionInfo GetTFileVersionInfo(const AnsiString& fileName) {
    TFileVersionInfo info;
    const auto resource = VersionResource::OfFile(fileName);
    if (!resource) return info;
    info.Found = true;
    file_version_detail::ReadTexts(*resource, info);
    file_version_detail::ReadFlags(*resource, info);
    return info;
}

}  // namespace vyn
