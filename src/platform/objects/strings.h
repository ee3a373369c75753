#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/objects/persistent.h"

namespace vyn {

// A list of lines, each with an object that the list does not own. The abstract face: a control's items and a plain
// list in memory (TStringList) are both TStrings. Stored as the hidden property Strings.
class TStrings : public TPersistent {
    VYN_OBJECT
  public:
    virtual int Count() const = 0;
    // 0 to Count - 1; outside: EStringListError "List index out of bounds (N)".
    virtual AnsiString Get(int index) const = 0;
    virtual void Put(int index, const AnsiString& text) = 0;
    virtual TObject* GetObject(int index) const = 0;
    virtual void PutObject(int index, TObject* object) = 0;
    virtual void Insert(int index, const AnsiString& text) = 0;
    virtual void Delete(int index) = 0;
    virtual void Clear() = 0;

    AnsiString operator[](int index) const { return Get(index); }
    virtual int Add(const AnsiString& text);
    int AddObject(const AnsiString& text, TObject* object);
    void InsertObject(int index, const AnsiString& text, TObject* object);
    void Append(const AnsiString& text) { Add(text); }
    void AddStrings(const TStrings& strings);
    virtual void Exchange(int first, int second);
    virtual void Move(int from, int to);
    // The position of the first equal line (letter case does not count, Windows-1252 letters included), or -1.
    virtual int IndexOf(const AnsiString& text) const;
    int IndexOfObject(const TObject* object) const;
    bool Equals(const TStrings& strings) const;

    // Name = value lines: the part before the first "=" and the part after it.
    AnsiString Names(int index) const;
    int IndexOfName(const AnsiString& name) const;
    AnsiString Values(const AnsiString& name) const;
    // An empty value removes the line.
    void SetValue(const AnsiString& name, const AnsiString& value);

    // The lines joined by line breaks (CR LF), the last one too; reading takes CR LF, CR or LF.
    AnsiString Text() const;
    void SetText(const AnsiString& text);
    // The lines as one line: joined by commas; a line with blanks, commas, quotes or control characters stands in
    // double quotes, doubled inside. Reading also takes blanks as separators outside quotes.
    AnsiString CommaText() const;
    void SetCommaText(const AnsiString& text);

    // Changes between BeginUpdate and EndUpdate are announced once, at the outermost EndUpdate.
    void BeginUpdate();
    void EndUpdate();

    void Assign(const TPersistent* source) override;
    void DefineProperties(TFiler& filer) override;

  protected:
    virtual void SetUpdateState(bool updating) {}
    int UpdateCount() const { return updateCount_; }
    [[noreturn]] static void IndexError(int index);

  private:
    int updateCount_ = 0;
};

// What a sorted list does with a line that it already holds.
enum class TDuplicates { dupIgnore, dupAccept, dupError };
using enum TDuplicates;

// Lines in memory.
class TStringList : public TStrings {
    VYN_OBJECT
  public:
    TStringList() = default;
    explicit TStringList(std::initializer_list<AnsiString> lines);

    int Count() const override { return static_cast<int>(lines_.size()); }
    AnsiString Get(int index) const override;
    const AnsiString& At(int index) const;
    void Put(int index, const AnsiString& text) override;
    TObject* GetObject(int index) const override;
    void PutObject(int index, TObject* object) override;
    // Raises EStringListError on a sorted list, whose order is its own.
    void Insert(int index, const AnsiString& text) override;
    void Delete(int index) override;
    void Clear() override;
    int Add(const AnsiString& text) override;
    int IndexOf(const AnsiString& text) const override;
    // The position of an equal line, or where it would be inserted.
    bool Find(const AnsiString& text, int& index) const;
    void Sort();
    bool Sorted() const { return sorted_; }
    void SetSorted(bool value);
    TDuplicates Duplicates = dupIgnore;

    TNotifyEvent OnChange;
    TNotifyEvent OnChanging;

  protected:
    void SetUpdateState(bool updating) override;

  private:
    struct Line {
        AnsiString text;
        TObject* object = nullptr;
    };
    void Changing();
    void Changed();
    void CheckIndex(int index) const;

    std::vector<Line> lines_;
    bool sorted_ = false;
};

}  // namespace vyn
