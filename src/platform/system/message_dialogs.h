#pragma once

#include <functional>

#include "platform/objects/type_info.h"
#include "platform/text/ansi_string.h"

namespace vyn {

// Results of dialogs and of the buttons that end them.
enum TModalResult : int32_t {
    mrNone = 0,
    mrOk = 1,
    mrCancel = 2,
    mrAbort = 3,
    mrRetry = 4,
    mrIgnore = 5,
    mrYes = 6,
    mrNo = 7,
    mrAll = 8,
    mrNoToAll = 9,
    mrYesToAll = 10,
};
const IntegerType& TypeInfoOf(TypeTag<TModalResult>);

enum class TMsgDlgType { mtWarning, mtError, mtInformation, mtConfirmation, mtCustom };
using enum TMsgDlgType;

enum class TMsgDlgBtn { mbYes, mbNo, mbOK, mbCancel, mbAbort, mbRetry, mbIgnore, mbAll, mbNoToAll, mbYesToAll, mbHelp };
using enum TMsgDlgBtn;
using TMsgDlgButtons = Set<TMsgDlgBtn>;

// Message box buttons, icons and answers, with their customary numbers.
constexpr unsigned MB_OK = 0x00;
constexpr unsigned MB_OKCANCEL = 0x01;
constexpr unsigned MB_ABORTRETRYIGNORE = 0x02;
constexpr unsigned MB_YESNOCANCEL = 0x03;
constexpr unsigned MB_YESNO = 0x04;
constexpr unsigned MB_RETRYCANCEL = 0x05;
constexpr unsigned MB_ICONERROR = 0x10;
constexpr unsigned MB_ICONQUESTION = 0x20;
constexpr unsigned MB_ICONWARNING = 0x30;
constexpr unsigned MB_ICONINFORMATION = 0x40;
constexpr int ID_OK = 1;
constexpr int ID_CANCEL = 2;
constexpr int ID_ABORT = 3;
constexpr int ID_RETRY = 4;
constexpr int ID_IGNORE = 5;
constexpr int ID_YES = 6;
constexpr int ID_NO = 7;

// A question for the user.
struct MessageDialogRequest {
    AnsiString Text;
    AnsiString Caption;  // empty: the toolkit's word for the type
    TMsgDlgType Type = mtInformation;
    TMsgDlgButtons Buttons = {mbOK};
    int HelpContext = 0;
};

// The toolkit's message boxes; a test puts its own answers there. Without one the text goes to standard error and
// the answer is the one that changes least: cancel, no, abort, else OK.
using MessageDialogPort = std::function<TModalResult(const MessageDialogRequest&)>;
void SetMessageDialogPort(MessageDialogPort port);
TModalResult ShowMessageDialog(const MessageDialogRequest& request);

TModalResult MessageDlg(const AnsiString& text, TMsgDlgType type, TMsgDlgButtons buttons, int helpContext = 0);
void ShowMessage(const AnsiString& text);

// The warning sound; type is an icon of MB_ICON... Without a port it is silent.
void MessageBeep(unsigned type = 0);
void SetMessageBeepPort(std::function<void(unsigned)> port);

}  // namespace vyn
