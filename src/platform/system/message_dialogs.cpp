#include "platform/system/message_dialogs.h"

#include <cstdio>

#include "platform/system/application.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace message_dialog_detail {

MessageDialogPort thePort;
std::function<void(unsigned)> theBeepPort;

TModalResult AnswerWithoutUser(TMsgDlgButtons buttons) {
    if (buttons.Contains(mbCancel)) return mrCancel;
    if (buttons.Contains(mbNo)) return mrNo;
    if (buttons.Contains(mbAbort)) return mrAbort;
    if (buttons.Contains(mbNoToAll)) return mrNoToAll;
    if (buttons.Contains(mbIgnore)) return mrIgnore;
    if (buttons.Contains(mbYes)) return mrYes;
    return mrOk;
}

}  // namespace message_dialog_detail

const IntegerType& TypeInfoOf(TypeTag<TModalResult>) {
    static const IntegerType type("TModalResult", {});  // stored as its number
    return type;
}

void SetMessageDialogPort(MessageDialogPort port) { message_dialog_detail::thePort = std::move(port); }

TModalResult ShowMessageDialog(const MessageDialogRequest& request) {
    if (message_dialog_detail::thePort) return message_dialog_detail::thePort(request);
    std::fprintf(stderr, "%s\n", AnsiToUtf8(request.Text).c_str());
    return message_dialog_detail::AnswerWithoutUser(request.Buttons);
}

TModalResult MessageDlg(const AnsiString& text, TMsgDlgType type, TMsgDlgButtons buttons, int helpContext) {
    MessageDialogRequest request;
    request.Text = text;
    request.Type = type;
    request.Buttons = buttons;
    request.HelpContext = helpContext;
    return ShowMessageDialog(request);
}

void ShowMessage(const AnsiString& text) {
    MessageDialogRequest request;
    request.Text = text;
    request.Caption = Application()->Title;
    request.Type = mtCustom;
    ShowMessageDialog(request);
}

void MessageBeep(unsigned type) {
    if (message_dialog_detail::theBeepPort) message_dialog_detail::theBeepPort(type);
}

void SetMessageBeepPort(std::function<void(unsigned)> port) { message_dialog_detail::theBeepPort = std::move(port); }

}  // namespace vyn
