#pragma once

#include <memory>

#include "platform/controls/bit_buttons.h"
#include "platform/controls/db_grids.h"
#include "platform/controls/db_lookups.h"
#include "platform/controls/lists.h"
#include "platform/controls/mask_edits.h"
#include "platform/controls/shortcuts.h"
#include "platform/system/message_dialogs.h"

namespace vyn {

// What edits a cell: a line of text, one with lines to choose from, or, of a looked-up field, the list in which it is
// looked up; and the cell's button. One for a grid, made when
// it is first needed.
class TCustomDBGrid::CellEditor {
  public:
    explicit CellEditor(TCustomDBGrid& grid) : grid_(grid) {}

    TWinControl* Shown() const { return shown_; }
    void Show();
    void Hide();
    void Place();
    // Puts what was typed into the field.
    void Commit();
    // Shows the field as it is now.
    void Reload();
    void TypeFirst(char key);
    void DropDown();

  private:
    // Keys that leave the text; true: taken.
    bool Key(uint16_t key, TShiftState shift);
    bool BeginChange() {
        if (loading_) return true;
        TDataLink& link = grid_.DataLink();
        return link.Edit();
    }
    void Changed() { modified_ = modified_ || !loading_; }
    AnsiString Text() const;

    class TextEditor : public TCustomMaskEdit {
      public:
        explicit TextEditor(CellEditor& cell) : TCustomMaskEdit(&cell.grid_), cell_(cell) {
            SetAutoSize(false);
            SetBorderStyle(TBorderStyle::bsNone);
            SetTabStop(false);
            SetVisible(false);
            SetParent(&cell.grid_);
        }
        void Change() override {
            cell_.Changed();
            TCustomMaskEdit::Change();
        }
        void KeyDown(uint16_t& key, TShiftState shift) override {
            if (cell_.Key(key, shift))
                key = 0;
            else
                TCustomMaskEdit::KeyDown(key, shift);
        }
        bool WantsKey(uint16_t, TShiftState) const override { return true; }
        void DoExit() override {
            cell_.Commit();
            TCustomMaskEdit::DoExit();
            cell_.Hide();
        }

      protected:
        bool BeginChange() override { return cell_.BeginChange(); }
        void AcceptKey(char& key) override {
            const TField* field = cell_.grid_.SelectedField();
            if (static_cast<unsigned char>(key) < ' ' || !field || field->IsValidChar(key)) return;
            MessageBeep();
            key = 0;
        }

      private:
        CellEditor& cell_;
    };

    class LinesEditor : public TCustomComboBox {
      public:
        explicit LinesEditor(CellEditor& cell) : TCustomComboBox(&cell.grid_), cell_(cell) {
            SetTabStop(false);
            SetVisible(false);
            SetParent(&cell.grid_);
        }
        void ProcessTextEdit(const AnsiString& text, int selStart, int selLength) override {
            if (cell_.BeginChange())
                TCustomComboBox::ProcessTextEdit(text, selStart, selLength);
            else
                PeerChanged(PeerChange::Text);
        }
        void ProcessSelect(int index) override {
            if (!cell_.BeginChange()) {
                PeerChanged(PeerChange::Text);
                return;
            }
            TCustomComboBox::ProcessSelect(index);
            cell_.Changed();
        }
        void Change() override {
            cell_.Changed();
            TCustomComboBox::Change();
        }
        void KeyDown(uint16_t& key, TShiftState shift) override {
            if (!DroppedDown() && cell_.Key(key, shift))
                key = 0;
            else
                TCustomComboBox::KeyDown(key, shift);
        }
        bool WantsKey(uint16_t, TShiftState) const override { return true; }
        void DoExit() override {
            cell_.Commit();
            TCustomComboBox::DoExit();
            cell_.Hide();
        }

      private:
        CellEditor& cell_;
    };

    class LookupEditor : public TDBLookupComboBox {
      public:
        explicit LookupEditor(CellEditor& cell) : TDBLookupComboBox(&cell.grid_), cell_(cell) {
            SetTabStop(false);
            SetVisible(false);
            SetParent(&cell.grid_);
        }
        void KeyDown(uint16_t& key, TShiftState shift) override {
            const bool takesBack = key == VK_ESCAPE && TheLookup().CanTakeBack();
            if (!DroppedDown() && !takesBack && cell_.Key(key, shift)) {
                key = 0;
                return;
            }
            if (takesBack && !DroppedDown()) {
                TakeBack();
                key = 0;
                return;
            }
            TDBLookupComboBox::KeyDown(key, shift);
            // The record was taken, and Tab goes on.
            if (key == VK_TAB && cell_.Key(key, shift)) key = 0;
        }
        bool WantsKey(uint16_t, TShiftState) const override { return true; }
        void DoExit() override {
            TDBLookupComboBox::DoExit();
            cell_.Hide();
        }

      private:
        CellEditor& cell_;
    };

    class Button : public TSpeedButton {
      public:
        explicit Button(TCustomDBGrid& grid) : TSpeedButton(&grid), grid_(grid) {
            SetCaption("...");
            SetVisible(false);
            SetParent(&grid);
        }
        void Click() override {
            TSpeedButton::Click();
            grid_.EditButtonClick();
        }

      private:
        TCustomDBGrid& grid_;
    };

    TCustomDBGrid& grid_;
    std::unique_ptr<TextEditor> text_;
    std::unique_ptr<LinesEditor> lines_;
    std::unique_ptr<LookupEditor> lookup_;
    std::unique_ptr<Button> button_;
    TWinControl* shown_ = nullptr;
    bool modified_ = false;
    bool loading_ = false;
};

}  // namespace vyn
