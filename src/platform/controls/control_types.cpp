#include "platform/controls/control_types.h"

#include "platform/controls/enum_names.h"

namespace vyn {

VYN_ENUM_NAMES(TAlign, "alNone", "alTop", "alBottom", "alLeft", "alRight", "alClient")
VYN_ENUM_NAMES(TTextLayout, "tlTop", "tlCenter", "tlBottom")
VYN_ENUM_NAMES(TAnchorKind, "akLeft", "akTop", "akRight", "akBottom")
VYN_ENUM_NAMES(TBiDiMode, "bdLeftToRight", "bdRightToLeft", "bdRightToLeftNoAlign", "bdRightToLeftReadingOnly")
VYN_ENUM_NAMES(TDragMode, "dmManual", "dmAutomatic")
VYN_ENUM_NAMES(TDragKind, "dkDrag", "dkDock")
VYN_ENUM_NAMES(TScrollStyle, "ssNone", "ssHorizontal", "ssVertical", "ssBoth")
VYN_ENUM_NAMES(TBevelCut, "bvNone", "bvLowered", "bvRaised", "bvSpace")
VYN_ENUM_NAMES(TBevelEdge, "beLeft", "beTop", "beRight", "beBottom")
VYN_ENUM_NAMES(TBevelKind, "bkNone", "bkTile", "bkSoft", "bkFlat")
VYN_ENUM_NAMES(TEdgeBorder, "ebLeft", "ebTop", "ebRight", "ebBottom")
VYN_ENUM_NAMES(TEdgeStyle, "esNone", "esRaised", "esLowered")
VYN_ENUM_NAMES(TFormBorderStyle, "bsNone", "bsSingle", "bsSizeable", "bsDialog", "bsToolWindow", "bsSizeToolWin")
VYN_ENUM_NAMES(TBorderStyle, "bsNone", "bsSingle")
VYN_ENUM_NAMES(TSortType, "stNone", "stData", "stText", "stBoth")
VYN_ENUM_NAMES(TImeMode, "imDisable", "imClose", "imOpen", "imDontCare", "imSAlpha", "imAlpha", "imHira", "imSKata",
               "imKata", "imChinese", "imSHanguel", "imHanguel")

const IntegerType& TypeInfoOf(TypeTag<TColor>) {
    static const IntegerType type("TColor", {{"clBlack", clBlack},
                                             {"clMaroon", clMaroon},
                                             {"clGreen", clGreen},
                                             {"clOlive", clOlive},
                                             {"clNavy", clNavy},
                                             {"clPurple", clPurple},
                                             {"clTeal", clTeal},
                                             {"clGray", clGray},
                                             {"clSilver", clSilver},
                                             {"clRed", clRed},
                                             {"clLime", clLime},
                                             {"clYellow", clYellow},
                                             {"clBlue", clBlue},
                                             {"clFuchsia", clFuchsia},
                                             {"clAqua", clAqua},
                                             {"clWhite", clWhite},
                                             {"clMoneyGreen", clMoneyGreen},
                                             {"clSkyBlue", clSkyBlue},
                                             {"clCream", clCream},
                                             {"clMedGray", clMedGray},
                                             {"clScrollBar", clScrollBar},
                                             {"clBackground", clBackground},
                                             {"clActiveCaption", clActiveCaption},
                                             {"clInactiveCaption", clInactiveCaption},
                                             {"clMenu", clMenu},
                                             {"clWindow", clWindow},
                                             {"clWindowFrame", clWindowFrame},
                                             {"clMenuText", clMenuText},
                                             {"clWindowText", clWindowText},
                                             {"clCaptionText", clCaptionText},
                                             {"clActiveBorder", clActiveBorder},
                                             {"clInactiveBorder", clInactiveBorder},
                                             {"clAppWorkSpace", clAppWorkSpace},
                                             {"clHighlight", clHighlight},
                                             {"clHighlightText", clHighlightText},
                                             {"clBtnFace", clBtnFace},
                                             {"clBtnShadow", clBtnShadow},
                                             {"clGrayText", clGrayText},
                                             {"clBtnText", clBtnText},
                                             {"clInactiveCaptionText", clInactiveCaptionText},
                                             {"clBtnHighlight", clBtnHighlight},
                                             {"cl3DDkShadow", cl3DDkShadow},
                                             {"cl3DLight", cl3DLight},
                                             {"clInfoText", clInfoText},
                                             {"clInfoBk", clInfoBk},
                                             {"clNone", clNone},
                                             {"clDefault", clDefault}});
    return type;
}

const IntegerType& TypeInfoOf(TypeTag<TCursor>) {
    static const IntegerType type("TCursor", {{"crDefault", crDefault},
                                              {"crNone", crNone},
                                              {"crArrow", crArrow},
                                              {"crCross", crCross},
                                              {"crIBeam", crIBeam},
                                              {"crSizeNESW", crSizeNESW},
                                              {"crSizeNS", crSizeNS},
                                              {"crSizeNWSE", crSizeNWSE},
                                              {"crSizeWE", crSizeWE},
                                              {"crUpArrow", crUpArrow},
                                              {"crHourGlass", crHourGlass},
                                              {"crDrag", crDrag},
                                              {"crNoDrop", crNoDrop},
                                              {"crHSplit", crHSplit},
                                              {"crVSplit", crVSplit},
                                              {"crMultiDrag", crMultiDrag},
                                              {"crSQLWait", crSQLWait},
                                              {"crNo", crNo},
                                              {"crAppStart", crAppStart},
                                              {"crHelp", crHelp},
                                              {"crHandPoint", crHandPoint},
                                              {"crSizeAll", crSizeAll},
                                              {"crSize", crSize}});
    return type;
}

}  // namespace vyn
