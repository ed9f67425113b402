#include "ui/viewers/PartChoiceForm.h"

#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "time/DateFormat.h"
#include "ui/widgets/GridCopy.h"
#include "ui/widgets/ShownSigns.h"
#include "views/record/PartAlternatives.h"
#include "views/rows/CellText.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QTextDocument>
#include <QTreeWidget>

#include <limits>
#include <utility>

namespace nv {

namespace {

constexpr int kRecord = Qt::UserRole;
constexpr int kWidest = 420; ///< pixels of a column to begin with

QString shown(const std::string &text) {
    return shownSigns(toQt(displayText(text)));
}

QStringList cellsOf(const PartAlternative &part) {
    return {QString::number(number(part.id)),
            shown(part.rule),
            toQt(isoUtc(part.time)),
            part.seconds ? toQt(timeApart(*part.seconds)) : QString(),
            shown(part.kind),
            shown(part.url),
            shown(part.file)};
}

QLabel *newSentence(const char *name, const QString &text) {
    auto *label = new QLabel(text);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QTreeWidget *newList() {
    auto *list = new QTreeWidget;
    list->setObjectName(QStringLiteral("lstParts"));
    list->setAccessibleName(PartChoiceForm::tr("Records that can stand there"));
    list->setHeaderLabels({PartChoiceForm::tr("Record"), PartChoiceForm::tr("Found By"),
                           PartChoiceForm::tr("Time [UTC]"), PartChoiceForm::tr("From the Page"),
                           PartChoiceForm::tr("Type"), PartChoiceForm::tr("URL"),
                           PartChoiceForm::tr("Source File")});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->setTabKeyNavigation(false);
    letCopy(*list);
    return list;
}

} // namespace

PartChoiceForm::PartChoiceForm(const PartQuestion &question, Check whyNot, QWidget *parent)
    : QDialog(parent), m_whyNot(std::move(whyNot)), m_list(newList()) {
    setObjectName(QStringLiteral("PartChoiceForm"));
    setWindowTitle(tr("Choose a Part"));
    m_problem = newSentence("labPartProblem", {});
    m_problem->hide();
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &PartChoiceForm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &PartChoiceForm::accept);
    auto *column = new QVBoxLayout(this);
    column->addWidget(newSentence(
        "labPartQuestion", tr("What stands for %1, wherever the page, its frames and its style "
                              "sheets name it?")
                               .arg(shown(question.address))));
    column->addWidget(m_list, 1);
    column->addWidget(newOther());
    column->addWidget(m_problem);
    column->addWidget(newSentence("labPartHint",
                                  tr("The page is rebuilt with it at once. The choice is kept with "
                                     "the project, and the audit tells of it.")));
    column->addWidget(buttons);
    fill(question);
    resizeWithinScreen(*this, {1000, 420});
    m_list->setFocus();
}

QWidget *PartChoiceForm::newOther() {
    auto *line = new QWidget;
    auto *caption = new QLabel(tr("&Another record, by its URL ID:"));
    m_other = new QLineEdit;
    m_other->setObjectName(QStringLiteral("txtOtherPart"));
    m_other->setAccessibleName(tr("Another record, by its URL ID"));
    m_other->setToolTip(tr("A record of any address that has cached content"));
    m_other->setValidator(new QIntValidator(1, std::numeric_limits<int>::max(), m_other));
    m_other->setMaximumWidth(140);
    caption->setBuddy(m_other);
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(caption);
    row->addWidget(m_other);
    row->addStretch(1);
    // Both at once would leave open which one holds.
    connect(m_other, &QLineEdit::textChanged, m_list, [this] {
        m_list->setEnabled(!isOtherTyped());
        m_problem->hide();
        m_other->setAccessibleDescription(m_other->toolTip());
    });
    return line;
}

QTreeWidgetItem *PartChoiceForm::addRow(const QStringList &cells) {
    auto *item = new QTreeWidgetItem(m_list, cells);
    // Tooltips guess whether they are rich text: evidence is escaped, so that it never is.
    for (int column = 0; column < cells.size(); ++column)
        item->setToolTip(column, Qt::convertFromPlainText(cells[column]));
    return item;
}

void PartChoiceForm::fill(const PartQuestion &question) {
    m_automatic = addRow({tr("Automatic"), tr("the program decides")});
    QTreeWidgetItem *current = question.kept ? nullptr : m_automatic;
    for (const PartAlternative &part : question.alternatives) {
        QTreeWidgetItem *item = addRow(cellsOf(part));
        item->setData(0, kRecord, QVariant::fromValue<qint64>(number(part.id)));
        if (question.kept == part.id)
            current = item;
    }
    m_nothing = addRow({tr("Nothing"), tr("a marked place stands there")});
    if (question.kept == UrlId::none)
        current = m_nothing;
    if (!current) { // chosen by its number before
        current = m_automatic;
        m_other->setText(QString::number(number(*question.kept)));
    }
    m_list->setCurrentItem(current);
    for (int column = 0; column < m_list->columnCount(); ++column) {
        m_list->resizeColumnToContents(column);
        if (m_list->columnWidth(column) > kWidest)
            m_list->setColumnWidth(column, kWidest);
    }
}

bool PartChoiceForm::isOtherTyped() const {
    return !m_other->text().isEmpty();
}

std::optional<UrlId> PartChoiceForm::answer() const {
    if (isOtherTyped())
        return UrlId{m_other->text().toLongLong()};
    const QTreeWidgetItem *current = m_list->currentItem();
    if (!current || current == m_automatic)
        return std::nullopt;
    return current == m_nothing ? UrlId::none : UrlId{current->data(0, kRecord).toLongLong()};
}

void PartChoiceForm::accept() {
    const std::string problem =
        isOtherTyped() ? m_whyNot(UrlId{m_other->text().toLongLong()}) : std::string();
    if (problem.empty())
        return QDialog::accept();
    m_problem->setText(toQt(problem));
    m_problem->show();
    m_other->setAccessibleDescription(m_problem->text());
    m_other->setFocus();
    m_other->selectAll();
}

} // namespace nv
