#pragma once

#include "platform/controls/colors.h"
#include "platform/controls/geometry.h"
#include "platform/data/field_types.h"
#include "platform/objects/event.h"
#include "platform/objects/type_info.h"

namespace vyn {

// The enumerations that controls share, with the names under which forms store their values.

enum class TAlign { alNone, alTop, alBottom, alLeft, alRight, alClient };
using enum TAlign;
enum class TTextLayout { tlTop, tlCenter, tlBottom };
using enum TTextLayout;
enum class TAnchorKind { akLeft, akTop, akRight, akBottom };
using enum TAnchorKind;
using TAnchors = Set<TAnchorKind>;
enum class TBiDiMode { bdLeftToRight, bdRightToLeft, bdRightToLeftNoAlign, bdRightToLeftReadingOnly };
using enum TBiDiMode;
enum class TDragMode { dmManual, dmAutomatic };
using enum TDragMode;
enum class TDragKind { dkDrag, dkDock };
using enum TDragKind;
enum class TDragState { dsDragEnter, dsDragLeave, dsDragMove };
using enum TDragState;
enum class TMouseButton { mbLeft, mbRight, mbMiddle };
using enum TMouseButton;
enum class TShiftKey { ssShift, ssAlt, ssCtrl, ssLeft, ssRight, ssMiddle, ssDouble };
using enum TShiftKey;
using TShiftState = Set<TShiftKey>;
enum class TScrollStyle { ssNone, ssHorizontal, ssVertical, ssBoth };
using enum TScrollStyle;
enum class TBevelCut { bvNone, bvLowered, bvRaised, bvSpace };
using enum TBevelCut;
enum class TBevelEdge { beLeft, beTop, beRight, beBottom };
using enum TBevelEdge;
using TBevelEdges = Set<TBevelEdge>;
enum class TBevelKind { bkNone, bkTile, bkSoft, bkFlat };
using enum TBevelKind;
enum class TEdgeBorder { ebLeft, ebTop, ebRight, ebBottom };
using enum TEdgeBorder;
using TEdgeBorders = Set<TEdgeBorder>;
enum class TEdgeStyle { esNone, esRaised, esLowered };
using enum TEdgeStyle;
// A form's border; the other controls know the first two.
enum class TFormBorderStyle { bsNone, bsSingle, bsSizeable, bsDialog, bsToolWindow, bsSizeToolWin };
using enum TFormBorderStyle;
enum class TBorderStyle { bsNone, bsSingle };
enum class TSortType { stNone, stData, stText, stBoth };
using enum TSortType;
enum class TCloseAction { caNone, caHide, caFree, caMinimize };
using enum TCloseAction;
enum class TImeMode {
    imDisable,
    imClose,
    imOpen,
    imDontCare,
    imSAlpha,
    imAlpha,
    imHira,
    imSKata,
    imKata,
    imChinese,
    imSHanguel,
    imHanguel
};
using enum TImeMode;

const EnumType& TypeInfoOf(TypeTag<TAlign>);
const EnumType& TypeInfoOf(TypeTag<TTextLayout>);
const EnumType& TypeInfoOf(TypeTag<TAnchorKind>);
const EnumType& TypeInfoOf(TypeTag<TBiDiMode>);
const EnumType& TypeInfoOf(TypeTag<TDragMode>);
const EnumType& TypeInfoOf(TypeTag<TDragKind>);
const EnumType& TypeInfoOf(TypeTag<TScrollStyle>);
const EnumType& TypeInfoOf(TypeTag<TBevelCut>);
const EnumType& TypeInfoOf(TypeTag<TBevelEdge>);
const EnumType& TypeInfoOf(TypeTag<TBevelKind>);
const EnumType& TypeInfoOf(TypeTag<TEdgeBorder>);
const EnumType& TypeInfoOf(TypeTag<TEdgeStyle>);
const EnumType& TypeInfoOf(TypeTag<TFormBorderStyle>);
const EnumType& TypeInfoOf(TypeTag<TBorderStyle>);
const EnumType& TypeInfoOf(TypeTag<TSortType>);
const EnumType& TypeInfoOf(TypeTag<TImeMode>);

// A key with its modifiers, as menus store it (shortcuts.h); 0 is none.
using TShortCut = int32_t;
using THelpContext = int32_t;

class TDragObject;

using TMouseEvent = Event<void(TObject* Sender, TMouseButton Button, TShiftState Shift, int X, int Y)>;
using TMouseMoveEvent = Event<void(TObject* Sender, TShiftState Shift, int X, int Y)>;
using TMouseWheelEvent =
    Event<void(TObject* Sender, TShiftState Shift, int WheelDelta, TPoint MousePos, bool& Handled)>;
using TMouseWheelUpDownEvent = Event<void(TObject* Sender, TShiftState Shift, TPoint MousePos, bool& Handled)>;
// Key = 0 says that the key has been dealt with.
using TKeyEvent = Event<void(TObject* Sender, uint16_t& Key, TShiftState Shift)>;
using TKeyPressEvent = Event<void(TObject* Sender, char& Key)>;
using TDragOverEvent = Event<void(TObject* Sender, TObject* Source, int X, int Y, TDragState State, bool& Accept)>;
using TDragDropEvent = Event<void(TObject* Sender, TObject* Source, int X, int Y)>;
using TEndDragEvent = Event<void(TObject* Sender, TObject* Target, int X, int Y)>;
using TStartDragEvent = Event<void(TObject* Sender, TDragObject*& DragObject)>;
using TContextPopupEvent = Event<void(TObject* Sender, TPoint MousePos, bool& Handled)>;
using TCanResizeEvent = Event<void(TObject* Sender, int& NewWidth, int& NewHeight, bool& Resize)>;
using TConstrainedResizeEvent =
    Event<void(TObject* Sender, int& MinWidth, int& MinHeight, int& MaxWidth, int& MaxHeight)>;
using TCloseEvent = Event<void(TObject* Sender, TCloseAction& Action)>;
using TCloseQueryEvent = Event<void(TObject* Sender, bool& CanClose)>;
using TShortCutEvent = Event<void(uint16_t Key, TShiftState Shift, bool& Handled)>;
using THelpEvent = Event<bool(uint32_t Command, intptr_t Data, bool& CallHelp)>;

}  // namespace vyn
