#include "platform/qt/QtExaminer.h"

#include "platform/qt/QtText.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include <utility>

namespace nv {

namespace {

QMessageBox::Icon iconOf(const Message &message) {
    if (message.choices != Choices::Ok && message.tone == Tone::Information)
        return QMessageBox::Question;
    switch (message.tone) {
    case Tone::Error:
        return QMessageBox::Critical;
    case Tone::Warning:
        return QMessageBox::Warning;
    case Tone::Information:
        break;
    }
    return QMessageBox::Information;
}

QMessageBox::StandardButtons buttonsOf(Choices choices) {
    switch (choices) {
    case Choices::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case Choices::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case Choices::Ok:
        break;
    }
    return QMessageBox::Ok;
}

QMessageBox::StandardButton buttonOf(Answer answer) {
    switch (answer) {
    case Answer::Yes:
        return QMessageBox::Yes;
    case Answer::No:
        return QMessageBox::No;
    case Answer::Cancel:
        return QMessageBox::Cancel;
    case Answer::Ok:
        break;
    }
    return QMessageBox::Ok;
}

Answer answerOf(int button) {
    switch (button) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        return Answer::Ok;
    }
}

} // namespace

Answer QtExaminer::ask(const Message &message) {
    // Nobody else takes keys while a dialog is open, and not every window manager gives them back.
    QWidget *const modal = QApplication::activeModalWidget();
    QMessageBox box(modal ? modal : QApplication::activeWindow());
    box.setObjectName(toQt(message.id));
    box.setWindowTitle(message.title.empty() ? QStringLiteral("Norvelane") : toQt(message.title));
    // Reasons can quote evidence, which is never rendered as rich text.
    box.setTextFormat(Qt::PlainText);
    box.setText(toQt(message.text));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.setIcon(iconOf(message));
    box.setStandardButtons(buttonsOf(message.choices));
    for (const auto &[button, text] :
         {std::pair(QMessageBox::Yes, message.yes), std::pair(QMessageBox::No, message.no)})
        if (!text.empty() && box.button(button))
            box.button(button)->setText(toQt(text));
    box.setDefaultButton(message.yes.empty() ? buttonOf(message.unattended) : QMessageBox::Yes);
    if (message.choices == Choices::YesNo)
        box.setEscapeButton(QMessageBox::No);
    const int button = box.exec();
    if (QWidget *const asking = box.parentWidget())
        asking->activateWindow();
    return answerOf(button);
}

} // namespace nv
