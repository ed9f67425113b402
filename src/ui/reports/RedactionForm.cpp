#include "ui/reports/RedactionForm.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace nv {

RedactionForm::RedactionForm(const RedactionRules &rules, QWidget *parent)
    : QDialog(parent), m_rules(rules) {
    setObjectName(QStringLiteral("RedactionForm"));
    setWindowTitle(tr("Redact"));
    auto *column = new QVBoxLayout(this);
    auto *help = new QLabel(
        tr("One a line. \"leave out\" takes the rows or pictures out of the report, \"blur\" makes "
           "them unreadable. In both ways the words themselves stand nowhere in what is handed "
           "over; the report tells how many there were, not which."));
    help->setWordWrap(true);
    column->addWidget(help);
    m_lines = new QPlainTextEdit(toQt(linesOf(rules)));
    m_lines->setObjectName(QStringLiteral("txtRedactions"));
    m_lines->setAccessibleName(tr("Redactions, one a line"));
    m_lines->setTabChangesFocus(true);
    m_lines->setPlaceholderText(tr("leave out host=a.example\nblur person=mara\n"
                                   "blur value=a word or a number\nblur picture=17"));
    column->addWidget(m_lines, 1);
    m_fault = new QLabel;
    m_fault->setObjectName(QStringLiteral("labRedactionFault"));
    m_fault->setWordWrap(true);
    m_fault->setTextFormat(Qt::PlainText);
    column->addWidget(m_fault);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("Okay"));
    connect(buttons, &QDialogButtonBox::accepted, this, &RedactionForm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);
    resize(520, 340);
}

void RedactionForm::accept() {
    NoLog unheard; // it is told here
    const auto fault = failureOf(unheard, "ReportForm.OkBtn_Click()", [this] {
        m_rules = redactionRules(fromQt(m_lines->toPlainText()));
    });
    if (fault) {
        m_fault->setText(toQt(*fault));
        m_lines->setFocus();
        return;
    }
    QDialog::accept();
}

} // namespace nv
