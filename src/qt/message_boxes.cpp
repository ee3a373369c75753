#include "qt/message_boxes.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include "platform/system/application.h"
#include "qt/text.h"

namespace vyn::qt {

namespace message_box_detail {

struct Answer {
    TMsgDlgBtn button;
    QMessageBox::StandardButton native;
    TModalResult result;
};

// In the order in which the dialog's first button is its default one.
constexpr Answer kAnswers[] = {
    {mbYes, QMessageBox::Yes, mrYes},
    {mbNo, QMessageBox::No, mrNo},
    {mbOK, QMessageBox::Ok, mrOk},
    {mbCancel, QMessageBox::Cancel, mrCancel},
    {mbAbort, QMessageBox::Abort, mrAbort},
    {mbRetry, QMessageBox::Retry, mrRetry},
    {mbIgnore, QMessageBox::Ignore, mrIgnore},
    {mbAll, QMessageBox::Apply, mrAll},
    {mbNoToAll, QMessageBox::NoToAll, mrNoToAll},
    {mbYesToAll, QMessageBox::YesToAll, mrYesToAll},
    {mbHelp, QMessageBox::Help, mrNone},
};

QMessageBox::Icon IconOf(TMsgDlgType type) {
    switch (type) {
        case mtWarning:
            return QMessageBox::Warning;
        case mtError:
            return QMessageBox::Critical;
        case mtInformation:
            return QMessageBox::Information;
        case mtConfirmation:
            return QMessageBox::Question;
        case mtCustom:
            return QMessageBox::NoIcon;
    }
    return QMessageBox::NoIcon;
}

QString CaptionOf(const MessageDialogRequest& request) {
    if (!request.Caption.empty()) return ToQt(request.Caption);
    switch (request.Type) {
        case mtWarning:
            return QMessageBox::tr("Warning");
        case mtError:
            return QMessageBox::tr("Error");
        case mtInformation:
            return QMessageBox::tr("Information");
        case mtConfirmation:
            return QMessageBox::tr("Confirm");
        case mtCustom:
            return ToQt(Application()->Title);
    }
    return {};
}

TModalResult AnswerOfClosing(TMsgDlgButtons buttons) {
    if (buttons.Contains(mbCancel)) return mrCancel;
    if (buttons.Contains(mbNo)) return mrNo;
    if (buttons.Contains(mbAbort)) return mrAbort;
    if (buttons.Contains(mbIgnore)) return mrIgnore;
    if (buttons.Contains(mbYes)) return mrYes;
    return mrOk;
}

}  // namespace message_box_detail

TModalResult ShowMessageBox(const MessageDialogRequest& request) {
    using namespace message_box_detail;
    QMessageBox box(QApplication::activeWindow());
    box.setIcon(IconOf(request.Type));
    box.setWindowTitle(CaptionOf(request));
    box.setTextFormat(Qt::PlainText);
    box.setText(ToQt(request.Text));
    for (const Answer& answer : kAnswers)
        if (request.Buttons.Contains(answer.button)) {
            QPushButton* button = box.addButton(answer.native);
            if (answer.button == mbAll) button->setText(QMessageBox::tr("&All"));
            if (!box.defaultButton()) box.setDefaultButton(button);
        }
    const int chosen = box.exec();
    for (const Answer& answer : kAnswers)
        if (request.Buttons.Contains(answer.button) && chosen == answer.native && answer.result != mrNone)
            return answer.result;
    return AnswerOfClosing(request.Buttons);
}

}  // namespace vyn::qt
