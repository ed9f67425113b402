#include "ui/reports/RedactionForm.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>

#include <algorithm>
#include <chrono>
#include <utility>

namespace nv {

namespace {

constexpr std::chrono::milliseconds kPause{300}; ///< after a letter
constexpr std::size_t kMostTold = 8;             ///< lines; a list may have a thousand

} // namespace

RedactionForm::RedactionForm(const RedactionRules &rules, RedactionAdviser adviser, QWidget *parent)
    : QDialog(parent), m_rules(rules), m_adviser(std::move(adviser)) {
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
    addLabels(*column);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("Okay"));
    connect(buttons, &QDialogButtonBox::accepted, this, &RedactionForm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);
    resize(560, 380);
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPause);
    connect(&m_pause, &QTimer::timeout, this, &RedactionForm::advise);
    connect(m_lines, &QPlainTextEdit::textChanged, &m_pause, qOverload<>(&QTimer::start));
    advise();
}

void RedactionForm::addLabels(QBoxLayout &column) {
    const auto add = [&column](const char *name) {
        auto *label = new QLabel;
        label->setObjectName(QLatin1String(name));
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText); // it quotes evidence
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        column.addWidget(label);
        return label;
    };
    m_fault = add("labRedactionFault");
    m_advice = add("labRedactionAdvice");
}

/// A line that is still being written tells nothing.
void RedactionForm::advise() {
    NoLog unheard;
    RedactionRules rules;
    const auto fault = failureOf(unheard, "ReportForm.OkBtn_Click()",
                                 [&] { rules = redactionRules(fromQt(m_lines->toPlainText())); });
    if (fault || !m_adviser)
        return;
    m_fault->clear();
    m_adviser(rules, [self = QPointer(this)](const std::vector<std::string> &notes) {
        if (self)
            self->tell(notes);
    });
}

void RedactionForm::tell(const std::vector<std::string> &notes) {
    QStringList lines;
    for (std::size_t at = 0; at < std::min(notes.size(), kMostTold); ++at) {
        const QString line = toQt(notes[at]);
        lines += line.left(1).toUpper() + line.mid(1);
    }
    if (notes.size() > kMostTold)
        lines += tr("And %L1 more that fit no row").arg(notes.size() - kMostTold);
    m_advice->setText(lines.join(u'\n'));
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
