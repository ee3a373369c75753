#pragma once

#include <functional>
#include <vector>

#include "platform/controls/db_grids.h"
#include "platform/controls/forms.h"

namespace vyn {

// What a search screen offers.
struct SearchRequest {
    TDataSet* DataSet = nullptr;  // open
    AnsiString Title;
    // The screen's own list, whose columns are shown; null: every visible field.
    TCustomDBGrid* Columns = nullptr;
    AnsiString FieldName;  // what is searched
    AnsiString Text;       // what the line begins with
    // The text was typed, and is searched at once; else it is what is chosen now.
    bool Typed = false;
    // Has the user add a record that begins with a text; true when it is there, and current. None: nothing is added.
    std::function<bool(const AnsiString& fieldName, const AnsiString& text)> Add;
};

// The grid of a search screen: a double click on a record chooses it.
class TSearchGrid : public TDBGrid {
    VYN_OBJECT
  public:
    explicit TSearchGrid(TComponent* owner) : TDBGrid(owner) {}
    void ProcessCellDblClick(int64_t record, int column) override;
    TNotifyEvent OnRecordChosen;
};

// A modal search screen over a dataset: a line to type in ("Cerca:") and the records below it, in the order of the
// field that is searched, so that what begins alike stands together. After a pause in typing the list goes to the first
// record that begins with what is typed, without regard to case or accents: no record is read but those in sight,
// however many there are.
//
// Keys, all while the keyboard is in the line
//     Up, Down, Page Up, Page Down   the record beside, a screen on
//     Home, End (also with Ctrl)     the first, last record; in the line with Shift
//     F3, Shift+F3                   search in the next field of those that can be, the one before
//     Enter, Escape                  choose the record; leave all as it was
// With search fields (search_fields.h) stored on the dataset's form F3 goes through those alone, and their columns are
// the first; else it goes through all columns.
// A click on a title orders by its field, and searches in it. A double click chooses.
//
// The dataset may have a window of its own, which follows the current record meanwhile. It has its order back
// afterwards, and its current record too unless one was chosen.
class TFRMCerca : public TForm {
    VYN_OBJECT
  public:
    explicit TFRMCerca(TComponent* owner) : TForm(owner) {}
    ~TFRMCerca() override;

    // Shows the screen; true when a record was chosen, which is the current one then.
    static bool Run(const SearchRequest& request);

    // Methods of its form.
    void CercaChange(TObject* Sender);
    void CercaKeyDown(TObject* Sender, uint16_t& Key, TShiftState Shift);
    void PausaTimer(TObject* Sender);
    void AcceptarClick(TObject* Sender);
    void NouClick(TObject* Sender);

  protected:
    void Notification(TComponent* component, TOperation operation) override;

  private:
    // While it lives, moves are not the user's.
    struct Seeking {
        explicit Seeking(TFRMCerca& form) : Form(form) { ++Form.seeking_; }
        ~Seeking() { --Form.seeking_; }
        TFRMCerca& Form;
    };
    void Prepare(const SearchRequest& request);
    void ShowSearchFields();
    void Restore(bool chosen);
    // Orders by a field and searches in it.
    void SearchIn(const AnsiString& fieldName);
    // Goes to the first record that begins with the text.
    void Seek();
    void TitleClick(TColumn* column);
    void SearchInNext(int step);
    void Choose();
    // The current record is another one, or was chosen by hand.
    void RecordMoved();
    void ShowState(const AnsiString& text, bool canAccept);
    template <class T>
    T& Part(const char* name) const;

    SearchRequest request_;
    TSearchGrid* grid_ = nullptr;
    TDataSource* source_ = nullptr;
    std::vector<AnsiString> fields_;  // what can be searched; empty: every column
    AnsiString fieldName_;
    AnsiString orderBefore_;
    TBookmark recordBefore_;
    bool waiting_ = false;  // for a pause in typing
    bool typed_ = false;    // what stands in the line
    int seeking_ = 0;       // moves of its own are under way
};

}  // namespace vyn
