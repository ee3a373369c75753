#pragma once

#include <memory>

#include "platform/controls/canvas.h"
#include "platform/controls/win_control.h"
#include "platform/data/data_set.h"
#include "platform/objects/collection.h"
#include "platform/objects/strings.h"

namespace vyn {

class TCustomDBGrid;
class TColumn;
class TPopupMenu;

enum class TDBGridOption {
    dgEditing,
    dgAlwaysShowEditor,
    dgTitles,
    dgIndicator,
    dgColumnResize,
    dgColLines,
    dgRowLines,
    dgTabs,
    dgRowSelect,
    dgAlwaysShowSelection,
    dgConfirmDelete,
    dgCancelOnExit,
    dgMultiSelect,
};
using enum TDBGridOption;
using TDBGridOptions = Set<TDBGridOption>;
const EnumType& TypeInfoOf(TypeTag<TDBGridOption>);

enum class TColumnButtonStyle { cbsAuto, cbsEllipsis, cbsNone };
using enum TColumnButtonStyle;
const EnumType& TypeInfoOf(TypeTag<TColumnButtonStyle>);

// The heading of a column; what is not set follows the field and the grid.
class TColumnTitle : public TPersistent {
    VYN_OBJECT
  public:
    explicit TColumnTitle(TColumn* column);

    TAlignment Alignment() const;
    void SetAlignment(TAlignment value);
    bool IsAlignmentStored() const { return alignmentSet_; }
    // The set caption, or the field's label.
    AnsiString Caption() const;
    void SetCaption(const AnsiString& value);
    bool IsCaptionStored() const { return captionSet_; }
    TColor Color() const;
    void SetColor(TColor value);
    bool IsColorStored() const { return colorSet_; }
    void Assign(const TPersistent* source) override;

  private:
    TColumn* column_;
    AnsiString caption_;
    TAlignment alignment_ = taLeftJustify;
    TColor color_ = clBtnFace;
    bool captionSet_ = false;
    bool alignmentSet_ = false;
    bool colorSet_ = false;
};

// A column of a grid: shows one field.
class TColumn : public TCollectionItem {
    VYN_OBJECT
  public:
    explicit TColumn(TCollection* collection);
    ~TColumn() override;

    const AnsiString& FieldName() const { return fieldName_; }
    void SetFieldName(const AnsiString& value);
    // The field of the grid's open dataset, or null.
    TField* Field() const;
    // The set width in pixels, or one that fits the field's display width.
    int Width() const;
    void SetWidth(int value);
    bool IsWidthStored() const { return width_ > 0; }
    TAlignment Alignment() const;
    void SetAlignment(TAlignment value);
    bool IsAlignmentStored() const { return alignmentSet_; }
    TColor Color() const;
    void SetColor(TColor value);
    bool IsColorStored() const { return colorSet_; }
    bool Visible() const { return visible_; }
    void SetVisible(bool value);
    bool ReadOnly() const { return readOnly_; }
    void SetReadOnly(bool value) { readOnly_ = value; }
    TColumnTitle* Title() const { return title_.get(); }
    void SetTitle(TColumnTitle* value) { title_->Assign(value); }
    TStrings* PickList() const { return const_cast<TStringList*>(&pickList_); }
    void SetPickList(TStrings* value) { pickList_.Assign(value); }
    TColumnButtonStyle ButtonStyle = cbsAuto;
    int32_t DropDownRows = 7;
    TCustomDBGrid* Grid() const;
    void Assign(const TPersistent* source) override;
    AnsiString DisplayName() const override { return fieldName_.empty() ? TCollectionItem::DisplayName() : fieldName_; }

  private:
    friend class TColumnTitle;
    void Touched() { Changed(false); }

    AnsiString fieldName_;
    std::unique_ptr<TColumnTitle> title_;
    TStringList pickList_;
    int width_ = 0;
    TAlignment alignment_ = taLeftJustify;
    TColor color_ = clWindow;
    bool alignmentSet_ = false;
    bool colorSet_ = false;
    bool visible_ = true;
    bool readOnly_ = false;
};

class TDBGridColumns : public TOwnedCollection<TColumn> {
  public:
    explicit TDBGridColumns(TCustomDBGrid* grid);

  protected:
    void Update(TCollectionItem* item) override;

  private:
    TCustomDBGrid* grid_;
};

// The records that the user marked, while the dataset stays open. Marks of records that are gone do not count.
class TBookmarkList {
  public:
    explicit TBookmarkList(TCustomDBGrid& grid) : grid_(grid) {}
    int Count() const;
    TBookmark Items(int index) const;  // raises EListError
    bool CurrentRowSelected() const;
    void SetCurrentRowSelected(bool value);
    bool Contains(int64_t record) const;
    void Set(int64_t record, bool marked);
    void Clear();
    // Deletes the marked records.
    void Delete();

  private:
    TCustomDBGrid& grid_;
    std::vector<TBookmark> items_;
};

using TDBGridClickEvent = Event<void(TColumn* Column)>;
using TMovedEvent = Event<void(TObject* Sender, int FromIndex, int ToIndex)>;

enum class TGridDrawFlag { gdSelected, gdFocused, gdFixed };
using enum TGridDrawFlag;
const EnumType& TypeInfoOf(TypeTag<TGridDrawFlag>);
using TGridDrawState = Set<TGridDrawFlag>;
using TDrawColumnCellEvent =
    Event<void(TObject* Sender, TRect Rect, int DataCol, TColumn* Column, TGridDrawState State)>;
using TDrawDataCellEvent = Event<void(TObject* Sender, TRect Rect, TField* Field, TGridDrawState State)>;

// Shows the records of a dataset in rows and its fields in columns.
//
// Rows are records by number; only those that are shown are asked for, and more are fetched when the user goes to them.
// Over a paged result the scroll bar's length, and where it goes, are estimates; what is shown is exact.
// Without columns of its own the grid shows the dataset's visible fields. A click on a title sorts by the column, the
// next one the other way round, unless OnTitleClick is there to do something else.
//
// Keys
//     arrows, Page Up, Page Down   the record or column beside; Down behind the last record begins a new one
//     Home, End                    the first, last column; with Ctrl (or dgRowSelect): record
//     Ctrl+Up, Ctrl+Down           the first, last record
//     Tab, Shift+Tab               the column beside (dgTabs)
//     Insert, Ctrl+Delete          a new record before this one; delete it, or the marked ones (dgConfirmDelete asks)
//     F2, Enter, a character       edit the cell (dgEditing); there Enter puts it into the field, Escape takes it back
//     F4, Alt+Down                 the cell's lines to choose from; Ctrl+Enter: OnEditButtonClick
//     Escape                       forget what was changed in the record
//     a character, Backspace       where cells are not edited: go to the next record whose cell begins with what is
//                                  typed
//     Ctrl+Space, Shift+Up, +Down  mark the record, and those beside (dgMultiSelect)
//     Ctrl+C                       copy the cell, or the marked records, or the row (dgRowSelect) as text
class TCustomDBGrid : public TWinControl {
    VYN_OBJECT
  public:
    explicit TCustomDBGrid(TComponent* owner);
    ~TCustomDBGrid() override;

    TDataSource* DataSource() const;
    void SetDataSource(TDataSource* value);
    // The open dataset, or null.
    TDataSet* DataSet() const;
    TDBGridColumns* Columns() const { return columns_.get(); }
    void SetColumns(TDBGridColumns* value) { columns_->Assign(value); }
    // The columns as shown: those that are set and visible, or one for each visible field.
    const std::vector<TColumn*>& ShownColumns() const;
    // Whether the columns are the form's own.
    bool HasOwnColumns() const { return columns_->Count() > 0; }
    TDBGridOptions Options() const { return options_; }
    void SetOptions(TDBGridOptions value);
    bool Has(TDBGridOption option) const { return options_.Contains(option); }
    TBorderStyle BorderStyle() const { return borderStyle_; }
    void SetBorderStyle(TBorderStyle value);
    TColor FixedColor() const { return fixedColor_; }
    void SetFixedColor(TColor value);
    TFont* TitleFont();
    void SetTitleFont(const TFont* value);
    bool IsTitleFontStored() const { return titleFontSet_; }
    const TFont& EffectiveTitleFont() const;
    bool ReadOnly = false;
    bool DefaultDrawing = true;

    // What is selected and what is in sight.
    int SelectedIndex() const { return selectedColumn_; }
    void SetSelectedIndex(int value);
    TField* SelectedField() const;
    // The record of the first row shown.
    int64_t TopRecord() const;
    void SetTopRecord(int64_t record);
    int VisibleRows() const;
    int RowHeight() const;
    int TitleHeight() const;
    int IndicatorWidth() const;
    // The text of a cell, fetching the record when it is not there yet; empty beyond the last.
    AnsiString CellText(int64_t record, const TColumn& column);
    // Where a cell stands in the client area, in sight or not.
    TRect CellRect(int column, int64_t record) const;
    // The pixels that the columns are scrolled by.
    int LeftOffset() const { return leftOffset_; }

    // Editing in the cell.
    bool CanEditShow() const;
    bool EditorMode() const;
    void SetEditorMode(bool value) { value ? ShowEditor() : HideEditor(); }
    void ShowEditor();
    // Puts what was typed into the field; what is wrong with it raises, and the editor stays.
    void HideEditor();
    // The control that edits; null while none does.
    TWinControl* InplaceEditor() const;
    void EditButtonClick() { OnEditButtonClick(this); }

    TBookmarkList& SelectedRows() { return selectedRows_; }
    const TBookmarkList& SelectedRows() const { return selectedRows_; }
    // 1 when the records are sorted by the column, -1 when the other way round, else 0.
    int SortDirection(const TColumn& column) const;
    void SortBy(const TColumn& column);
    // As text, a record a line, the cells with tabs between them.
    void CopyToClipboard();

    TDBGridClickEvent OnCellClick;
    TNotifyEvent OnColEnter;
    TNotifyEvent OnColExit;
    TMovedEvent OnColumnMoved;
    TDBGridClickEvent OnTitleClick;
    TNotifyEvent OnEditButtonClick;
    // For each cell that is drawn, over what the grid has drawn (or, without DefaultDrawing, instead of it): handlers
    // draw on the Canvas, which begins with the cell's font and colours, and fields give the record's values meanwhile.
    TDrawColumnCellEvent OnDrawColumnCell;
    TDrawDataCellEvent OnDrawDataCell;
    TCanvas* Canvas() { return &canvas_; }
    // What the grid itself would draw, with the font and brush that the canvas has now.
    void DefaultDrawColumnCell(const TRect& rect, int dataCol, TColumn* column, TGridDrawState state);

    // The record that is drawn as the chosen one, and kept in sight; -1: none.
    virtual int64_t HighlightedRecord() const;

    // From the peer.
    bool DrawnByHandlers() const { return OnDrawColumnCell || OnDrawDataCell; }
    // Fires the events for a cell; what was drawn stands on the canvas.
    void DrawCell(int64_t record, int column, const TRect& rect, TGridDrawState state);
    virtual void ProcessCellClick(int64_t record, int column, TShiftState shift = {});
    virtual void ProcessCellDblClick(int64_t record, int column);
    // The mouse is over a record without being pressed; was released over it (-1: over none).
    virtual void ProcessRecordHover(int64_t record) {}
    virtual void ProcessRecordRelease(int64_t record) {}
    void ProcessTitleClick(int column);
    void ProcessColumnResize(int column, int width);
    void ProcessColumnMove(int from, int to);
    void ProcessScroll(int64_t topRecord) { SetTopRecord(topRecord); }
    void ProcessLeftOffset(int pixels);

    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;
    bool DoMouseWheel(TShiftState shift, int wheelDelta, TPoint mousePos) override;
    void SetBounds(int left, int top, int width, int height) override;
    void Loaded() override;
    void DoExit() override;
    void GetChildren(const std::function<void(TComponent*)>&, TComponent*) override {}

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    void FontChanged() override;
    // Its dataset tells something.
    virtual void DataChanged(DataEvent event);
    void KeepCurrentInSight();

  private:
    friend class TDBGridColumns;
    friend class TColumn;
    class Link;
    class CellEditor;
    void ColumnsChanged();
    void MoveRecords(int64_t distance);
    void AdoptColumns();
    // Keys that edit, mark or copy (db_grid_editing.cpp); true: taken.
    bool EditingKey(uint16_t key, TShiftState shift);
    bool CanInsert() const;
    void MoveDown();
    void MoveUp();
    void DeleteRecords();
    void MarkTo(int64_t distance);
    // From the record that was marked first to the current one; false when that is far away.
    bool MarkRange();
    void SearchFor(char key);
    TColumn* SelectedColumn() const;
    TDataLink& DataLink();

    std::unique_ptr<Link> link_;
    std::unique_ptr<TDBGridColumns> columns_;
    // Made for the dataset's fields while the form sets none; never stored.
    mutable std::unique_ptr<TDBGridColumns> fieldColumns_;
    mutable std::vector<TColumn*> shown_;
    mutable bool shownValid_ = false;
    std::unique_ptr<TFont> titleFont_;
    bool titleFontSet_ = false;
    TDBGridOptions options_ = {dgEditing,  dgTitles, dgIndicator,     dgColumnResize, dgColLines,
                               dgRowLines, dgTabs,   dgConfirmDelete, dgCancelOnExit};
    TBorderStyle borderStyle_ = TBorderStyle::bsSingle;
    TColor fixedColor_ = clBtnFace;
    int selectedColumn_ = 0;
    int leftOffset_ = 0;
    int64_t topRecord_ = 0;
    int64_t topNumbersMoved_ = 0;  // the dataset's when it was set
    std::unique_ptr<CellEditor> editor_;
    TBookmarkList selectedRows_{*this};
    TCanvas canvas_;
    TBookmark markedFrom_;
    // What is searched for, in which column, and when the last of it was typed.
    AnsiString searched_;
    int searchedColumn_ = -1;
    uint32_t searchedAt_ = 0;
};

class TDBGrid : public TCustomDBGrid {
    VYN_OBJECT
  public:
    explicit TDBGrid(TComponent* owner) : TCustomDBGrid(owner) {}
};

// Links the data-aware controls.
void RegisterDataControlClasses();

}  // namespace vyn
