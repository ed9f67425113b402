#include "ui/views/ColumnLimitForm.h"

#include "base/DisplayText.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "views/RecordCard.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>

#include <algorithm>

namespace nv {

namespace {

constexpr int kValueRole = Qt::UserRole;

QString numberText(const std::optional<double> &number) {
    return number ? QString::number(*number, 'g', 15) : QString();
}

} // namespace

ColumnLimitForm::ColumnLimitForm(const CountedValues &counted, const ColumnLimit &now,
                                 const QString &title, const FormClock &clock, QWidget *parent)
    : QDialog(parent), m_now(now), m_isCut(counted.isCut), m_clock(clock) {
    setObjectName(QStringLiteral("ColumnLimitForm"));
    setWindowTitle(tr("Rows by \"%1\"").arg(title));
    auto *lines = new QFormLayout;
    addLines(*lines);
    m_fault = new QLabel;
    m_fault->setObjectName(QStringLiteral("labColumnFault"));
    m_fault->setTextFormat(Qt::PlainText);
    m_fault->setWordWrap(true);
    m_fault->hide();
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &ColumnLimitForm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *column = new QVBoxLayout(this);
    column->addLayout(lines);
    if (valuesOf(now.column) != ColumnValues::dates)
        column->addWidget(newValues(counted), 1);
    else
        column->addStretch(1);
    column->addWidget(m_fault);
    column->addWidget(buttons);
    resizeWithinScreen(*this, m_values ? QSize(460, 480) : QSize(460, 200));
}

void ColumnLimitForm::addLines(QFormLayout &lines) {
    const ColumnValues values = valuesOf(m_now.column);
    if (values == ColumnValues::texts) {
        m_part = newLine("txtColumnPart", tr("Contains"), toQt(m_now.part));
        lines.addRow(tr("&Contains:"), m_part);
        return;
    }
    const bool isOfDates = values == ColumnValues::dates;
    const auto typed = [&](const std::optional<double> &number, auto textOf) {
        if (!isOfDates)
            return numberText(number);
        return m_now.dates ? toQt(textOf(m_now.dates->span)) : QString();
    };
    m_from = newLine("txtColumnFrom", tr("From"), typed(m_now.from, beginText));
    m_to = newLine("txtColumnTo", tr("To"), typed(m_now.to, endText));
    lines.addRow(tr("&From:"), m_from);
    lines.addRow(tr("&To:"), m_to);
    if (!isOfDates)
        return;
    for (QLineEdit *line : {m_from, m_to})
        line->setPlaceholderText(tr("2011-03-01 or 2011-03-01 19:30"));
    auto *zone = new QLabel(tr("By the clock of %1, also where the column shows UTC. The last day "
                               "or minute belongs to it.")
                                .arg(toQt(zoneName(m_clock.zone))));
    zone->setObjectName(QStringLiteral("labColumnZone"));
    zone->setTextFormat(Qt::PlainText);
    zone->setWordWrap(true);
    lines.addRow(zone);
}

QLineEdit *ColumnLimitForm::newLine(const char *name, const QString &what, const QString &text) {
    auto *line = new QLineEdit(text);
    line->setObjectName(QLatin1String(name));
    line->setAccessibleName(what);
    line->setClearButtonEnabled(true);
    return line;
}

QWidget *ColumnLimitForm::newValues(const CountedValues &counted) {
    m_values = new QListWidget;
    m_values->setObjectName(QStringLiteral("lstColumnValues"));
    m_values->setAccessibleName(tr("Values"));
    m_values->setUniformItemSizes(true);
    for (const auto &[value, rows] : counted.values) {
        const QString shown = value.empty() ? tr("(empty)") : toQt(displayText(value, 120));
        auto *item = new QListWidgetItem(tr("%1  (%L2)").arg(shown).arg(rows), m_values);
        item->setData(kValueRole, QByteArray::fromStdString(value));
        const bool isIn =
            !m_now.oneOf || std::ranges::find(*m_now.oneOf, value) != m_now.oneOf->end();
        item->setCheckState(isIn ? Qt::Checked : Qt::Unchecked);
    }
    auto *search = newLine("txtColumnSearchValues", tr("Find a value"), {});
    search->setPlaceholderText(tr("Find a value"));
    auto *all = new QPushButton(tr("Tick &All"));
    all->setObjectName(QStringLiteral("btnValuesAll"));
    auto *none = new QPushButton(tr("Tick &None"));
    none->setObjectName(QStringLiteral("btnValuesNone"));
    connect(search, &QLineEdit::textChanged, this, &ColumnLimitForm::showListed);
    connect(all, &QPushButton::clicked, this, [this] { tickListed(true); });
    connect(none, &QPushButton::clicked, this, [this] { tickListed(false); });
    for (QPushButton *button : {all, none})
        button->setAutoDefault(false);
    auto *box = new QWidget;
    auto *row = new QHBoxLayout;
    row->addWidget(search, 1);
    row->addWidget(all);
    row->addWidget(none);
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(row);
    column->addWidget(m_values, 1);
    if (m_isCut)
        column->addWidget(new QLabel(tr("These are the most frequent; there are others.")));
    return box;
}

void ColumnLimitForm::showListed(const QString &part) {
    for (int row = 0; row < m_values->count(); ++row) {
        QListWidgetItem *item = m_values->item(row);
        item->setHidden(!item->text().contains(part, Qt::CaseInsensitive));
    }
}

/// Of those that the search for a value leaves.
void ColumnLimitForm::tickListed(bool ticked) {
    for (int row = 0; row < m_values->count(); ++row)
        if (QListWidgetItem *item = m_values->item(row); !item->isHidden())
            item->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
}

bool ColumnLimitForm::readNumber(const QLineEdit *line, std::optional<double> &number) const {
    const QString text = line ? line->text().trimmed() : QString();
    if (text.isEmpty())
        return true;
    bool isOne = false;
    number = QLocale::c().toDouble(text, &isOne);
    return isOne;
}

/// Nothing while no end is given, or one that is no date.
std::optional<DateRange> ColumnLimitForm::dates() const {
    if (valuesOf(m_now.column) != ColumnValues::dates || !faultOfDates().isEmpty())
        return std::nullopt;
    const std::string from = fromQt(m_from->text().trimmed());
    const std::string to = fromQt(m_to->text().trimmed());
    if (from.empty() && to.empty())
        return std::nullopt;
    const TimeSpan span{from.empty() ? kAllTime.begin : *secondTyped(from),
                        to.empty() ? kAllTime.end : *endTyped(to)};
    return dateRange(span, m_clock.zone, m_clock.enableDSTChanges);
}

QString ColumnLimitForm::faultOfDates() const {
    const std::string from = fromQt(m_from->text().trimmed());
    const std::string to = fromQt(m_to->text().trimmed());
    const auto begin = from.empty() ? std::optional(kAllTime.begin) : secondTyped(from);
    const auto end = to.empty() ? std::optional(kAllTime.end) : endTyped(to);
    if (!begin || !end)
        return tr("A date such as 2011-03-01 or 2011-03-01 19:30 was expected.");
    return *begin < *end ? QString() : tr("The end lies before the beginning.");
}

/// While all values are ticked they limit nothing, also not what no list shows.
std::optional<ColumnLimit> ColumnLimitForm::limit() const {
    ColumnLimit limit{.column = m_now.column};
    limit.part = m_part ? fromQt(m_part->text().trimmed()) : std::string();
    limit.dates = dates();
    if (valuesOf(m_now.column) == ColumnValues::numbers) {
        static_cast<void>(readNumber(m_from, limit.from));
        static_cast<void>(readNumber(m_to, limit.to));
    }
    std::vector<std::string> ticked;
    for (int row = 0; m_values && row < m_values->count(); ++row)
        if (const QListWidgetItem *item = m_values->item(row); item->checkState() == Qt::Checked)
            ticked.push_back(item->data(kValueRole).toByteArray().toStdString());
    if (m_values && static_cast<int>(ticked.size()) < m_values->count())
        limit.oneOf = std::move(ticked);
    return limit == ColumnLimit{.column = m_now.column} ? std::nullopt : std::optional(limit);
}

void ColumnLimitForm::accept() {
    QString fault;
    std::optional<double> number;
    if (valuesOf(m_now.column) == ColumnValues::dates)
        fault = faultOfDates();
    else if (!readNumber(m_from, number) || !readNumber(m_to, number))
        fault = tr("A number such as 12 or 12.5 was expected.");
    if (fault.isEmpty())
        return QDialog::accept();
    m_fault->setText(fault);
    m_fault->show();
}

} // namespace nv
