#include "platform/objects/type_info.h"

#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

EnumType::EnumType(AnsiString name, std::initializer_list<std::string_view> values) : name_(std::move(name)) {
    for (std::string_view value : values) {
        index_.Insert(value, static_cast<uint32_t>(values_.size()));
        values_.emplace_back(value);
    }
}

const AnsiString& EnumType::NameOf(int64_t value) const {
    if (!Contains(value)) throw EConvertError(IntToStr(value) + " is no value of " + name_);
    return values_[static_cast<size_t>(value)];
}

int EnumType::ValueOf(std::string_view name) const {
    const uint32_t at = index_.Find(name);
    return at == NameIndex::NotFound ? -1 : static_cast<int>(at);
}

IntegerType::IntegerType(AnsiString name, std::initializer_list<std::pair<std::string_view, int64_t>> names)
    : name_(std::move(name)) {
    for (const auto& [identifier, value] : names) {
        index_.Insert(identifier, static_cast<uint32_t>(names_.size()));
        names_.emplace_back(AnsiString(identifier), value);
    }
}

const AnsiString* IntegerType::NameOf(int64_t value) const {
    for (const auto& [identifier, number] : names_)
        if (number == value) return &identifier;
    return nullptr;
}

bool IntegerType::ValueOf(std::string_view name, int64_t& value) const {
    const uint32_t at = index_.Find(name);
    if (at == NameIndex::NotFound) return false;
    value = names_[at].second;
    return true;
}

const EnumType& TypeInfoOf(TypeTag<bool>) {
    static const EnumType info("Boolean", {"False", "True"});
    return info;
}

}  // namespace vyn
