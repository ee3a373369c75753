#include "providers/legacy/pages.h"

#include <iconv.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "platform/text/windows1252.h"

namespace vyn::legacy {

namespace pages_detail {

// The header: a mark, its generation, and a block under a fixed key.
constexpr std::string_view kMarkBegin("\0\1\0\0Standard ", 13);
constexpr size_t kGeneration = 0x14;
constexpr size_t kBlock = 0x18;
constexpr size_t kOldBlockSize = 126;
constexpr size_t kNewBlockSize = 128;
constexpr std::string_view kBlockKey("\xC7\xDA\x39\x6B", 4);
constexpr size_t kCodePage = 0x3C;
constexpr size_t kPageKey = 0x3E;
constexpr size_t kPassword = 0x42;
constexpr size_t kOldPasswordSize = 20;
constexpr size_t kNewPasswordSize = 40;
constexpr size_t kDateOfMaking = 0x72;
constexpr double kMostDays = 1e9;
constexpr int kLastGeneration = 6;
// Encrypted with a key that only its owner has, from this generation on.
constexpr int kFirstEncrypting = 2;

constexpr size_t kOldPage = 2048;
constexpr size_t kNewPage = 4096;

// Data pages.
constexpr unsigned char kDataPage = 1;
constexpr unsigned char kMapPage = 5;
constexpr uint32_t kDeletedRow = 0x8000;
constexpr uint32_t kRowElsewhere = 0x4000;
constexpr uint32_t kRowOffset = 0x1FFF;
constexpr size_t kMapPageHead = 4;

void Rc4(std::string_view key, char* bytes, size_t size) {
    std::array<unsigned char, 256> state;
    for (size_t i = 0; i < state.size(); ++i) state[i] = static_cast<unsigned char>(i);
    unsigned char j = 0;
    for (size_t i = 0; i < state.size(); ++i) {
        j = static_cast<unsigned char>(j + state[i] + static_cast<unsigned char>(key[i % key.size()]));
        std::swap(state[i], state[j]);
    }
    unsigned char i = 0;
    j = 0;
    for (size_t at = 0; at < size; ++at) {
        i = static_cast<unsigned char>(i + 1);
        j = static_cast<unsigned char>(j + state[i]);
        std::swap(state[i], state[j]);
        const auto sum = static_cast<unsigned char>(state[i] + state[j]);
        bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ state[sum]);
    }
}

}  // namespace pages_detail

using namespace pages_detail;

void RaiseDamage(const std::string& what) { throw EDatabaseError("The file is damaged: " + Utf8ToAnsiLossy(what)); }

uint32_t NumberAt(std::string_view bytes, size_t at, size_t size) {
    uint32_t number = 0;
    for (size_t i = 0; i < size; ++i)
        number |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return number;
}

uint32_t Bytes::Number(size_t size) { return NumberAt(Take(size), 0, size); }

std::string_view Bytes::Take(size_t size) {
    if (size > Left()) RaiseDamage(std::string(what_) + " ends too early");
    at_ += size;
    return bytes_.substr(at_ - size, size);
}

bool File::IsLegacy(std::string_view beginning) {
    return beginning.size() > kGeneration && beginning.substr(0, kMarkBegin.size()) == kMarkBegin;
}

namespace pages_detail {

struct Header {
    bool Old = false;
    uint32_t PageKey = 0;
    int CodePage = 0;
};

std::string TextOfPairs(std::string_view bytes) {
    std::u16string wide;
    for (size_t at = 0; at + 2 <= bytes.size(); at += 2) wide += static_cast<char16_t>(NumberAt(bytes, at, 2));
    return WideToUtf8(wide);
}

// The password in a header; empty: there is none.
std::string PasswordOf(std::string_view header, bool old) {
    std::string kept(header.substr(kPassword, old ? kOldPasswordSize : kNewPasswordSize));
    if (!old) {
        // The whole days of the file's making lie over it.
        double made = 0;
        std::memcpy(&made, header.data() + kDateOfMaking, sizeof made);
        if (!(made > -kMostDays && made < kMostDays)) made = 0;
        const auto days = static_cast<uint32_t>(static_cast<int32_t>(made));
        for (size_t i = 0; i < kept.size(); ++i)
            kept[i] = static_cast<char>(static_cast<unsigned char>(kept[i]) ^ (days >> (8 * (i % 4)) & 0xFF));
    }
    const std::string text = old ? AnsiToUtf8(kept) : TextOfPairs(kept);
    return text.substr(0, text.find('\0'));  // what stands behind the end is of no account
}

Header ReadHeader(std::string_view beginning, const std::string& password) {
    if (!File::IsLegacy(beginning)) throw EDatabaseError("The file is no legacy database");
    if (beginning.size() < File::kBeginning) throw EDatabaseError("The file is cut short");
    const int generation = static_cast<unsigned char>(beginning[kGeneration]);
    if (generation > kLastGeneration)
        throw EDatabaseError("The file is of a newer kind (" + std::to_string(generation) + ") than can be read");
    Header said;
    said.Old = generation == 0;
    std::string header(beginning.substr(0, File::kBeginning));
    Rc4(kBlockKey, header.data() + kBlock, said.Old ? kOldBlockSize : kNewBlockSize);
    said.PageKey = NumberAt(header, kPageKey, 4);
    said.CodePage = static_cast<int>(NumberAt(header, kCodePage, 2));
    if (said.PageKey != 0 && generation >= kFirstEncrypting)
        throw EDatabaseError("The file is encrypted: take the password off with the program that made it");
    const std::string kept = PasswordOf(header, said.Old);
    if (!kept.empty() && kept != password)
        throw EDatabaseError(password.empty() ? "The file is protected by a password"
                                              : "The file is protected by another password");
    return said;
}

}  // namespace pages_detail

void File::CheckPassword(std::string_view beginning, const std::string& password) { ReadHeader(beginning, password); }

Pages::Pages(std::string_view bytes, const std::string& password, DamageHandler damaged)
    : bytes_(bytes), damaged_(std::move(damaged)) {
    const Header header = ReadHeader(bytes, password);
    old_ = header.Old;
    key_ = header.PageKey;
    pageSize_ = old_ ? kOldPage : kNewPage;
    // The header, the map of pages, and the catalog.
    if (bytes_.size() < 3 * pageSize_) throw EDatabaseError("The file is cut short");
    if (bytes_.size() % pageSize_ != 0) Damaged("it ends inside a page: it is cut short, or still being written");
    if (old_) NameLetters(header.CodePage);
}

void Pages::Damaged(const std::string& what) const {
    if (!damaged_) RaiseDamage(what);
    damaged_(what);
}

// Every letter of the code page, once.
void Pages::NameLetters(int codePage) {
    if (codePage == 0 || codePage == 1252) return;
    const std::string name = "CP" + std::to_string(codePage);
    const iconv_t converter = iconv_open("UTF-8", name.c_str());
    if (converter == reinterpret_cast<iconv_t>(-1))
        throw EDatabaseError("The file's texts are in the code page " + std::to_string(codePage) +
                             ", which is not known here");
    letters_.assign(256, "\xEF\xBF\xBD");
    for (int i = 0; i < 256; ++i) {
        char letter = static_cast<char>(i);
        char* from = &letter;
        char room[8];
        char* to = room;
        size_t left = 1, free = sizeof room;
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
        if (iconv(converter, &from, &left, &to, &free) != static_cast<size_t>(-1))
            letters_[static_cast<size_t>(i)].assign(room, to);
    }
    iconv_close(converter);
}

std::string_view Pages::Page(uint32_t number) const {
    if (number >= Count()) RaiseDamage("the page " + std::to_string(number) + " is beyond its end");
    const std::string_view raw = bytes_.substr(static_cast<size_t>(number) * pageSize_, pageSize_);
    if (key_ == 0 || number == 0) return raw;
    for (size_t i = 0; i < decoded_.size(); ++i)
        if (decodedPage_[i] == number) {
            nextDecoded_ = 1 - i;
            return decoded_[i];
        }
    const size_t place = nextDecoded_;
    nextDecoded_ = 1 - place;
    decoded_[place] = raw;
    decodedPage_[place] = number;
    const uint32_t key = key_ ^ number;
    const char keyBytes[] = {static_cast<char>(key), static_cast<char>(key >> 8), static_cast<char>(key >> 16),
                             static_cast<char>(key >> 24)};
    Rc4({keyBytes, sizeof keyBytes}, decoded_[place].data(), pageSize_);
    return decoded_[place];
}

size_t Pages::RowCount(std::string_view page) const {
    const size_t at = old_ ? 8 : 12;
    const size_t count = NumberAt(page, at, 2);
    return std::min(count, (pageSize_ - at - 2) / 2);
}

Pages::RowPlace Pages::RowAt(std::string_view page, size_t row) const {
    const size_t offsets = old_ ? 10 : 14;
    const uint32_t entry = NumberAt(page, offsets + 2 * row, 2);
    const size_t begin = entry & kRowOffset;
    const size_t end = row == 0 ? pageSize_ : NumberAt(page, offsets + 2 * (row - 1), 2) & kRowOffset;
    RowPlace place;
    place.Deleted = (entry & kDeletedRow) != 0;
    place.Elsewhere = (entry & kRowElsewhere) != 0;
    if (begin < offsets + 2 * RowCount(page) || begin > end || end > pageSize_)
        RaiseDamage("a row lies outside its page");
    place.Bytes = page.substr(begin, end - begin);
    return place;
}

std::string_view Pages::RowOf(uint32_t pointer) const {
    const std::string_view page = Page(pointer >> 8);
    const size_t row = pointer & 0xFF;
    if (static_cast<unsigned char>(page[0]) != kDataPage || row >= RowCount(page))
        RaiseDamage("a pointer leads to no row (page " + std::to_string(pointer >> 8) + ")");
    return RowAt(page, row).Bytes;
}

std::vector<uint32_t> Pages::MappedPages(uint32_t pointer) const {
    const std::string map(RowOf(pointer));
    std::vector<uint32_t> pages;
    const auto add = [&](std::string_view bits, uint64_t first) {
        for (size_t at = 0; at < bits.size(); ++at)
            for (unsigned bit = 0; bit < 8; ++bit)
                if (static_cast<unsigned char>(bits[at]) >> bit & 1) {
                    const uint64_t number = first + at * 8 + bit;
                    if (number < Count()) pages.push_back(static_cast<uint32_t>(number));
                }
    };
    if (map.empty()) RaiseDamage("a map of pages is empty");
    if (map[0] == 0) {
        if (map.size() < 5) RaiseDamage("a map of pages ends too early");
        add(std::string_view(map).substr(5), NumberAt(map, 1, 4));
    } else if (map[0] == 1) {
        const uint64_t each = (pageSize_ - kMapPageHead) * 8;
        for (size_t at = 1; at + 4 <= map.size(); at += 4) {
            const uint32_t number = NumberAt(map, at, 4);
            if (number == 0) continue;
            const std::string_view page = Page(number);
            if (static_cast<unsigned char>(page[0]) != kMapPage) RaiseDamage("a map of pages is none");
            add(page.substr(kMapPageHead), (at - 1) / 4 * each);
        }
    } else {
        RaiseDamage("a map of pages is of an unknown kind");
    }
    return pages;
}

std::string Pages::PlainText(std::string_view bytes) const {
    if (old_) {
        if (letters_.empty()) return AnsiToUtf8(bytes);
        std::string text;
        for (const char each : bytes) text += letters_[static_cast<unsigned char>(each)];
        return text;
    }
    return TextOfPairs(bytes);
}

// Behind FF FE one byte a letter, from a zero on two, from the next zero on one again, and so on.
std::string Pages::PackedText(std::string_view bytes) const {
    if (old_ || bytes.substr(0, 2) != "\xFF\xFE") return PlainText(bytes);
    std::u16string wide;
    bool packed = true;
    for (size_t at = 2; at < bytes.size();) {
        if (bytes[at] == 0) {
            packed = !packed;
            ++at;
        } else if (packed) {
            wide += static_cast<char16_t>(static_cast<unsigned char>(bytes[at++]));
        } else {
            if (at + 2 > bytes.size()) break;
            wide += static_cast<char16_t>(NumberAt(bytes, at, 2));
            at += 2;
        }
    }
    return WideToUtf8(wide);
}

}  // namespace vyn::legacy
