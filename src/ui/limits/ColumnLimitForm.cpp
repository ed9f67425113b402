#include "ui/limits/ColumnLimitForm.h"

#include "base/DisplayText.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "views/record/RecordCard.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QSet>

#include <algorithm>

namespace nv {

namespace {

constexpr int kValueRole = Qt::UserRole;
constexpr int kRowsRole = Qt::UserRole + 1;

QString numberText(const std::optional<double> &number) {
    return number ? QString::number(*number, 'g', 15) : QString();
}

} // namespace

ColumnLimitForm::ColumnLimitForm(const CountedValues &counted, const ColumnLimit &now,
                                 const QString &title, const FormClock &clock, QWidget *parent)
    : QDialog(parent), m_now(now), m_clock(clock) {
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
    m_search = newLine("txtColumnSearchValues", tr("Find a value"), {});
    m_search->setPlaceholderText(tr("Find a value"));
    auto *all = new QPushButton(tr("Tick &All"));
    all->setObjectName(QStringLiteral("btnValuesAll"));
    auto *none = new QPushButton(tr("Tick &None"));
    none->setObjectName(QStringLiteral("btnValuesNone"));
    connect(m_search, &QLineEdit::textChanged, this, &ColumnLimitForm::showListed);
    connect(all, &QPushButton::clicked, this, [this] { tickListed(true); });
    connect(none, &QPushButton::clicked, this, [this] { tickListed(false); });
    for (QPushButton *button : {all, none})
        button->setAutoDefault(false);
    m_others = new QLabel(tr("These are the most frequent; there are others."));
    m_others->setObjectName(QStringLiteral("labColumnOthers"));
    auto *box = new QWidget;
    auto *row = new QHBoxLayout;
    row->addWidget(m_search, 1);
    row->addWidget(all);
    row->addWidget(none);
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(row);
    column->addWidget(m_values, 1);
    column->addWidget(m_others);
    column->addWidget(newCounting());
    list(counted);
    return box;
}

QWidget *ColumnLimitForm::newCounting() {
    m_counting = new QWidget;
    m_counting->setObjectName(QStringLiteral("columnCounting"));
    m_counted = new QLabel;
    m_counted->setObjectName(QStringLiteral("labColumnCounted"));
    m_counted->setWordWrap(true);
    m_progress = new QProgressBar;
    m_progress->setObjectName(QStringLiteral("barColumnCounted"));
    m_progress->setAccessibleName(tr("Rows counted"));
    m_stop = new QPushButton(tr("&Stop Counting"));
    m_stop->setObjectName(QStringLiteral("btnStopCounting"));
    m_stop->setAutoDefault(false);
    connect(m_stop, &QPushButton::clicked, this, &ColumnLimitForm::stopCounting);
    auto *column = new QVBoxLayout(m_counting);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_counted);
    auto *row = new QHBoxLayout;
    row->addWidget(m_progress, 1);
    row->addWidget(m_stop);
    column->addLayout(row);
    m_counting->hide();
    return m_counting;
}

void ColumnLimitForm::addValue(const QByteArray &value, qint64 rows, Qt::CheckState state) {
    const QString shown =
        value.isEmpty() ? tr("(empty)") : toQt(displayText(value.toStdString(), 120));
    // Both at once: addresses hold "%2" too.
    auto *item = new QListWidgetItem(tr("%1  (%2)").arg(shown, QLocale().toString(rows)), m_values);
    item->setData(kValueRole, value);
    item->setData(kRowsRole, rows);
    item->setCheckState(state);
}

/// Of a value that is listed for the first time.
Qt::CheckState ColumnLimitForm::stateOfNew(const QByteArray &value) const {
    const bool isIn = m_ticksNew.value_or(
        !m_now.oneOf || std::ranges::find(*m_now.oneOf, value.toStdString()) != m_now.oneOf->end());
    return isIn ? Qt::Checked : Qt::Unchecked;
}

/// What was chosen by hand stays, also what isn't among the most frequent any more or is hidden by
/// other limits.
void ColumnLimitForm::list(const CountedValues &counted) {
    struct Listed {
        qint64 rows;
        Qt::CheckState state;
    };
    QHash<QByteArray, Listed> before;
    for (int row = 0; row < m_values->count(); ++row) {
        const QListWidgetItem *item = m_values->item(row);
        before.insert(item->data(kValueRole).toByteArray(),
                      {item->data(kRowsRole).toLongLong(), item->checkState()});
    }
    std::optional<QByteArray> current;
    if (const QListWidgetItem *item = m_values->currentItem())
        current = item->data(kValueRole).toByteArray();
    m_values->clear();
    QSet<QByteArray> listed;
    for (const auto &[text, rows] : counted.values) {
        const QByteArray value = QByteArray::fromStdString(text);
        listed.insert(value);
        const auto known = before.find(value);
        addValue(value, rows, known == before.end() ? stateOfNew(value) : known->state);
        if (known != before.end())
            before.erase(known);
        if (current == value)
            m_values->setCurrentRow(m_values->count() - 1);
    }
    for (auto left = before.begin(); left != before.end(); ++left)
        if (left->state != stateOfNew(left.key())) {
            addValue(left.key(), left->rows, left->state);
            listed.insert(left.key());
        }
    for (const std::string &ticked : m_now.oneOf.value_or(std::vector<std::string>()))
        if (const QByteArray value = QByteArray::fromStdString(ticked); !listed.contains(value))
            addValue(value, 0, stateOfNew(value));
    m_others->setVisible(counted.isCut);
    showListed(m_search->text());
}

void ColumnLimitForm::startCounting(qint64 rows) {
    m_all = rows;
    m_done = 0;
    m_counted->setText(tr("Counting the values of %L1 rows...").arg(rows));
    m_counting->show();
}

void ColumnLimitForm::showProgress(int hundredths) {
    m_progress->setValue(hundredths);
}

void ColumnLimitForm::showCounted(const CountedValues &counted, qint64 rows) {
    m_done = rows;
    m_counted->setText(
        tr("Counting: these are of the first %L1 of %L2 rows.").arg(rows).arg(m_all));
    list(counted);
}

void ColumnLimitForm::endCounting(const CountedValues &counted, const QString &failure) {
    if (failure.isEmpty()) {
        m_all = 0;
        m_counting->hide();
        m_fault->hide();
        return list(counted);
    }
    stopCounting();
    m_fault->setText(tr("The values can't be counted: %1").arg(failure));
    m_fault->show();
}

void ColumnLimitForm::stopCounting() {
    m_progress->hide();
    m_stop->hide();
    m_counted->setText(tr("These are of the first %L1 of %L2 rows; the others aren't counted.")
                           .arg(m_done)
                           .arg(m_all));
    emit countingStopped();
}

/// Of rows that aren't counted nobody knows the values.
bool ColumnLimitForm::hidesWhatIsNotListed() const {
    if (m_all == 0 || !m_ticksNew.value_or(!m_now.oneOf))
        return false;
    for (int row = 0; row < m_values->count(); ++row)
        if (m_values->item(row)->checkState() != Qt::Checked)
            return true;
    return false;
}

void ColumnLimitForm::showListed(const QString &part) {
    for (int row = 0; row < m_values->count(); ++row) {
        QListWidgetItem *item = m_values->item(row);
        item->setHidden(!item->text().contains(part, Qt::CaseInsensitive));
    }
}

/// Of those that the search for a value leaves.
void ColumnLimitForm::tickListed(bool ticked) {
    if (m_search->text().isEmpty())
        m_ticksNew = ticked;
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
    if (fault.isEmpty() && m_values && hidesWhatIsNotListed())
        fault = tr("Rows aren't counted yet whose values would be hidden. Wait for them, or tick "
                   "none and then those that you want.");
    if (fault.isEmpty())
        return QDialog::accept();
    m_fault->setText(fault);
    m_fault->show();
}

} // namespace nv
