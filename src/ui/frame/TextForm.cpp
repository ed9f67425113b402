#include "ui/frame/TextForm.h"

#include "platform/qt/WithinScreen.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPlainTextEdit>

namespace nv {

TextForm::TextForm(const QString &title, const QString &text, QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("TextForm"));
    setWindowTitle(title);
    resizeWithinScreen(*this, {760, 480});
    auto *edit = new QPlainTextEdit;
    edit->setObjectName(QStringLiteral("txtText"));
    edit->setAccessibleName(title);
    edit->setReadOnly(true);
    edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    edit->setPlainText(text);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *column = new QVBoxLayout(this);
    column->addWidget(edit, 1);
    column->addWidget(buttons);
}

} // namespace nv
