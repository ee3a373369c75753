#include "controls/edit_box_editor_form.h"

namespace vyn {

std::string_view EditBoxEditorForm() {
    return R"(object FRMeditVynEditBox: TFRMeditVynEditBox
  Left = 220
  Top = 140
  ActiveControl = cbDataSource
  BorderIcons = [biSystemMenu]
  BorderStyle = bsDialog
  ClientHeight = 352
  ClientWidth = 440
  KeyPreview = True
  Position = poScreenCenter
  ShowHint = True
  OnKeyPress = FormKeyPress
  PixelsPerInch = 96
  object pcPages: TPageControl
    Left = 8
    Top = 8
    Width = 424
    Height = 266
    ActivePage = tsGeneral
    Anchors = [akLeft, akTop, akRight, akBottom]
    TabOrder = 0
    object tsGeneral: TTabSheet
      Caption = '&General'
      object lblDataSource: TLabel
        Left = 16
        Top = 22
        Width = 112
        Height = 17
        AutoSize = False
        Caption = '&DataSource'
        FocusControl = cbDataSource
      end
      object cbDataSource: TComboBox
        Left = 136
        Top = 16
        Width = 274
        Height = 25
        TabOrder = 0
        OnChange = cbDataSourceChange
      end
      object lblFieldName: TLabel
        Left = 16
        Top = 54
        Width = 112
        Height = 17
        AutoSize = False
        Caption = '&Field'
        FocusControl = cbFieldName
      end
      object cbFieldName: TComboBox
        Left = 136
        Top = 48
        Width = 274
        Height = 25
        TabOrder = 1
        OnChange = cbFieldNameChange
      end
      object lblDataLinkType: TLabel
        Left = 16
        Top = 86
        Width = 112
        Height = 17
        AutoSize = False
        Caption = 'DataLinkType'
        FocusControl = cbDataLinkType
      end
      object cbDataLinkType: TComboBox
        Left = 136
        Top = 80
        Width = 274
        Height = 25
        Style = csDropDownList
        TabOrder = 2
        OnChange = cbDataLinkTypeChange
      end
      object lblExecuteEventName: TLabel
        Left = 16
        Top = 118
        Width = 112
        Height = 17
        AutoSize = False
        Caption = 'Ejecuta Evento'
        FocusControl = ebExecuteEventName
      end
      object ebExecuteEventName: TEdit
        Left = 136
        Top = 112
        Width = 274
        Height = 25
        AutoSize = False
        TabOrder = 3
        OnChange = ebExecuteEventNameChange
      end
      object cbShowButton: TCheckBox
        Left = 136
        Top = 150
        Width = 200
        Height = 21
        Caption = 'Show Button'
        TabOrder = 4
        OnClick = cbShowButtonClick
      end
      object cbReadOnly: TCheckBox
        Left = 136
        Top = 176
        Width = 200
        Height = 21
        Caption = 'Read Only'
        TabOrder = 5
        OnClick = cbReadOnlyClick
      end
    end
    object tsBuscar: TTabSheet
      Caption = '&Buscar'
      object lblNChild: TLabel
        Left = 16
        Top = 22
        Width = 112
        Height = 17
        AutoSize = False
        Caption = 'nChild'
        FocusControl = cbNChild
      end
      object cbNChild: TComboBox
        Left = 136
        Top = 16
        Width = 274
        Height = 25
        Style = csDropDownList
        TabOrder = 0
        OnChange = cbNChildChange
      end
      object lblClassName: TLabel
        Left = 16
        Top = 54
        Width = 112
        Height = 17
        AutoSize = False
        Caption = 'Classe'
        FocusControl = cbClassName
      end
      object cbClassName: TComboBox
        Left = 136
        Top = 48
        Width = 274
        Height = 25
        TabOrder = 1
        OnChange = cbClassNameChange
      end
      object lblChildDataKey: TLabel
        Left = 16
        Top = 86
        Width = 112
        Height = 17
        AutoSize = False
        Caption = 'Child Key'
        FocusControl = cbChildDataKey
      end
      object cbChildDataKey: TComboBox
        Left = 136
        Top = 80
        Width = 274
        Height = 25
        Hint = 'Si se deja en blanco buscar'#225' el valor pero no OBLIGAR'#193' a seleccionar uno concreto.'
        TabOrder = 2
        OnChange = cbChildDataKeyChange
        OnDropDown = cbChildDataKeyDropDown
      end
      object lblChildKeyHint: TLabel
        Left = 136
        Top = 108
        Width = 274
        Height = 36
        AutoSize = False
        Caption = 'Si se deja en blanco buscar'#225' el valor pero no OBLIGAR'#193' a seleccionar uno concreto.'
        WordWrap = True
      end
      object lblChildDataShow: TLabel
        Left = 16
        Top = 158
        Width = 112
        Height = 17
        AutoSize = False
        Caption = 'Child Show'
        FocusControl = cbChildDataShow
      end
      object cbChildDataShow: TComboBox
        Left = 136
        Top = 152
        Width = 274
        Height = 25
        TabOrder = 3
        OnChange = cbChildDataShowChange
        OnDropDown = cbChildDataKeyDropDown
      end
      object cbAutoSearch: TCheckBox
        Left = 136
        Top = 186
        Width = 120
        Height = 21
        Caption = 'Auto Search'
        TabOrder = 4
        OnClick = cbAutoSearchClick
      end
      object cbAutoSearchMiliseconds: TComboBox
        Left = 262
        Top = 184
        Width = 84
        Height = 25
        Items.Strings = (
          '0'
          '100'
          '500'
          '1000')
        TabOrder = 5
        OnExit = cbAutoSearchMilisecondsExit
      end
      object lblMiliseconds: TLabel
        Left = 352
        Top = 190
        Width = 30
        Height = 17
        AutoSize = False
        Caption = 'ms'
      end
      object cbAutoRefresh: TCheckBox
        Left = 136
        Top = 214
        Width = 200
        Height = 21
        Caption = 'Auto Refresh'
        TabOrder = 6
        OnClick = cbAutoRefreshClick
      end
    end
    object tsAutoAssign: TTabSheet
      Caption = 'Auto A&ssign'
      object memoAutoAssign: TMemo
        Left = 16
        Top = 14
        Width = 394
        Height = 150
        ScrollBars = ssVertical
        TabOrder = 0
        WordWrap = False
        OnChange = memoAutoAssignChange
      end
      object lblAutoAssignSource: TLabel
        Left = 16
        Top = 174
        Width = 150
        Height = 17
        AutoSize = False
        Caption = 'Origen'
        FocusControl = cbAutoAssignSourceParamName
      end
      object cbAutoAssignSourceParamName: TComboBox
        Left = 16
        Top = 194
        Width = 150
        Height = 25
        TabOrder = 1
        OnDropDown = cbChildDataKeyDropDown
      end
      object lblAutoAssignDest: TLabel
        Left = 178
        Top = 174
        Width = 150
        Height = 17
        AutoSize = False
        Caption = 'Destino'
        FocusControl = cbAutoAssignDestFieldName
      end
      object cbAutoAssignDestFieldName: TComboBox
        Left = 178
        Top = 194
        Width = 150
        Height = 25
        TabOrder = 2
      end
      object bbAddAutoAssign: TButton
        Left = 340
        Top = 193
        Width = 70
        Height = 27
        Caption = 'Add'
        TabOrder = 3
        OnClick = bbAddAutoAssignClick
      end
    end
  end
  object pnlBottom: TPanel
    Left = 0
    Top = 282
    Width = 440
    Height = 70
    Align = alBottom
    BevelOuter = bvNone
    TabOrder = 1
    object lblFormsCaption: TLabel
      Left = 12
      Top = 14
      Width = 248
      Height = 17
      AutoSize = False
      Caption = 'Tota de Formularios enlazados:'
    end
    object lblGeneralInfoForms: TLabel
      Left = 266
      Top = 14
      Width = 60
      Height = 17
      AutoSize = False
      Caption = '-'
    end
    object lblCompsCaption: TLabel
      Left = 12
      Top = 38
      Width = 248
      Height = 17
      AutoSize = False
      Caption = 'Componentes enlazados a este formulario:'
    end
    object lblGeneralInfoComps: TLabel
      Left = 266
      Top = 38
      Width = 60
      Height = 17
      AutoSize = False
      Caption = '-'
    end
    object bbOk: TBitBtn
      Left = 344
      Top = 24
      Width = 84
      Height = 29
      Caption = 'Cerrar'
      Default = True
      ModalResult = 1
      TabOrder = 0
    end
  end
end
)";
}

}  // namespace vyn
