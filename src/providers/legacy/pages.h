#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "providers/legacy/legacy_file.h"

namespace vyn::legacy {

// Bytes from which numbers are taken in order; raises where they end too early.
class Bytes {
  public:
    Bytes(std::string_view bytes, const char* what) : bytes_(bytes), what_(what) {}
    uint32_t Number(size_t size);
    std::string_view Take(size_t size);
    void Skip(size_t size) { Take(size); }
    size_t Left() const { return bytes_.size() - at_; }

  private:
    std::string_view bytes_;
    const char* what_;
    size_t at_ = 0;
};

// Little-endian number of up to four bytes; the caller has checked that they are there.
uint32_t NumberAt(std::string_view bytes, size_t at, size_t size);

// The file as pages, and what its header says.
class Pages {
  public:
    Pages(std::string_view bytes, const std::string& password, DamageHandler damaged);

    bool Old() const { return old_; }  // the first generation
    size_t PageSize() const { return pageSize_; }
    uint32_t Count() const { return static_cast<uint32_t>(bytes_.size() / pageSize_); }
    size_t FileSize() const { return bytes_.size(); }
    // A page's bytes; the view of a page of an encoded file is good until the second next page is asked for. Raises for
    // what is beyond the end.
    std::string_view Page(uint32_t number) const;

    // One of a data page's rows.
    struct RowPlace {
        bool Deleted = false;
        bool Elsewhere = false;  // the row is a pointer to where it stands
        std::string_view Bytes;
    };
    size_t RowCount(std::string_view page) const;
    RowPlace RowAt(std::string_view page, size_t row) const;
    // The row that a pointer (row number, page) means.
    std::string_view RowOf(uint32_t pointer) const;
    // The pages that a map names, in order.
    std::vector<uint32_t> MappedPages(uint32_t pointer) const;

    // Text of names and of values, which may be packed.
    std::string PlainText(std::string_view bytes) const;
    std::string PackedText(std::string_view bytes) const;

    // Tells the handler; raises without one.
    void Damaged(const std::string& what) const;

  private:
    void NameLetters(int codePage);

    std::string_view bytes_;
    DamageHandler damaged_;
    bool old_ = false;
    size_t pageSize_ = 0;
    uint32_t key_ = 0;                            // of encoded pages; 0: they are not
    std::vector<std::string> letters_;            // of the first generation's code page; empty: Windows-1252
    mutable std::array<std::string, 2> decoded_;  // the last two pages of an encoded file
    mutable std::array<uint32_t, 2> decodedPage_{};
    mutable size_t nextDecoded_ = 0;
};

[[noreturn]] void RaiseDamage(const std::string& what);

// A table's definition: its columns and indexes. `name` is for messages.
Table ReadDefinition(const Pages& pages, uint32_t page, const std::string& name);
// What the design of a table says: puts it into the table and its columns.
void ReadProperties(const Pages& pages, std::string_view bytes, Table& table);

}  // namespace vyn::legacy
