#include "ui/parts/ColumnLimitsPart.h"

#include "base/DisplayText.h"
#include "platform/qt/QtText.h"
#include "ui/limits/ColumnLimitForm.h"
#include "ui/parts/ValueCounter.h"
#include "ui/table/ColumnsForm.h"

#include <QMainWindow>
#include <QMenu>

#include <algorithm>

namespace nv {

namespace {

constexpr std::size_t kMostListed = 2000; ///< values in the dialog
constexpr std::size_t kMany = 200'000;    ///< rows whose values may take a while

using ColumnLimits = std::vector<ColumnLimit>;

QString shortText(const std::string &value) {
    return value.empty() ? ColumnLimitsPart::tr("(empty)") : toQt(displayText(value, 60));
}

QString datesText(const DateRange &dates) {
    const QString begin = toQt(beginText(dates.span));
    const QString end = toQt(endText(dates.span));
    const QString text = begin.isEmpty() ? ColumnLimitsPart::tr("up to %1").arg(end)
                         : end.isEmpty() ? ColumnLimitsPart::tr("from %1").arg(begin)
                                         : ColumnLimitsPart::tr("%1 to %2").arg(begin, end);
    return QStringLiteral("%1 (%2)").arg(text, toQt(dates.zone));
}

QString textOf(const ColumnLimit &limit) {
    QStringList conditions;
    if (limit.oneOf) {
        constexpr std::size_t kMostNamed = 3;
        QStringList names;
        for (std::size_t at = 0; at < std::min(limit.oneOf->size(), kMostNamed); ++at)
            names += shortText(limit.oneOf->at(at));
        if (limit.oneOf->size() > kMostNamed)
            names += ColumnLimitsPart::tr("%L1 more").arg(limit.oneOf->size() - kMostNamed);
        conditions +=
            names.isEmpty() ? ColumnLimitsPart::tr("no value") : names.join(QStringLiteral(", "));
    }
    if (!limit.part.empty())
        conditions += ColumnLimitsPart::tr("contains %1").arg(shortText(limit.part));
    if (limit.from && limit.to)
        conditions += ColumnLimitsPart::tr("%1 to %2").arg(*limit.from).arg(*limit.to);
    else if (limit.from)
        conditions += ColumnLimitsPart::tr("%1 or more").arg(*limit.from);
    else if (limit.to)
        conditions += ColumnLimitsPart::tr("at most %1").arg(*limit.to);
    if (limit.dates)
        conditions += datesText(*limit.dates);
    return QStringLiteral("%1: %2").arg(columnTitle(limit.column),
                                        conditions.join(QStringLiteral("; ")));
}

ColumnLimits without(ColumnLimits limits, UrlColumn column) {
    std::erase_if(limits, [column](const ColumnLimit &each) { return each.column == column; });
    return limits;
}

QVariant variantOf(const ColumnLimits &limits) {
    return limits.empty() ? QVariant() : QVariant::fromValue(limits);
}

} // namespace

ColumnLimitsPart::ColumnLimitsPart(Workbench &bench) : m_bench(bench) {
    connect(bench.table, &TableTab::headerMenuComesUp, this, &ColumnLimitsPart::addToMenu);
    if (auto *window = qobject_cast<QMainWindow *>(&bench.window))
        addAction(*window);
    bench.limits.add(*this);
}

/// The key is the table's own: in a box with choices it opens those.
void ColumnLimitsPart::addAction(QMainWindow &window) {
    auto *action = new QAction(tr("&Only Rows with..."), &window);
    action->setObjectName(QStringLiteral("actLimitCurrentColumn"));
    action->setShortcut(Qt::ALT | Qt::Key_Down);
    action->setShortcutContext(Qt::WidgetShortcut);
    action->setToolTip(tr("Show only rows with some values of the column of the current cell, to "
                          "which Left and Right lead (%1)")
                           .arg(action->shortcut().toString(QKeySequence::NativeText)));
    action->setEnabled(false);
    m_bench.table->grid().addAction(action);
    if (auto *menu = window.findChild<QMenu *>(QStringLiteral("menuView")))
        menu->insertAction(m_bench.actions.columns, action);
    connect(action, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.LimitColumn()", [this] { chooseOfCurrent(); }); });
    connect(&m_bench, &Workbench::projectOpened, action, [action] { action->setEnabled(true); });
    connect(&m_bench, &Workbench::projectClosing, action, [action] { action->setEnabled(false); });
}

void ColumnLimitsPart::chooseOfCurrent() {
    const QModelIndex current = m_bench.table->grid().currentIndex();
    if (!current.isValid())
        return m_bench.showNotice(tr("No row is there: take a limit away first."));
    const UrlColumn column = UrlModel::columnOf(current.column());
    if (valuesOf(column) == ColumnValues::none)
        return m_bench.showNotice(
            tr("Rows can't be limited by the column \"%1\": Left and Right lead to others.")
                .arg(columnTitle(column)));
    choose(column);
}

void ColumnLimitsPart::addToMenu(QMenu &menu, UrlColumn column) {
    const UrlTable *table = m_bench.table->table();
    if (!table || valuesOf(column) == ColumnValues::none)
        return;
    menu.addSeparator();
    menu.addAction(tr("&Only Rows with..."), this,
                   [this, column] {
                       m_bench.run("MainForm.LimitColumn()", [this, column] { choose(column); });
                   })
        ->setObjectName(QStringLiteral("actLimitColumn"));
    const auto &limits = table->byColumn;
    QAction *all = menu.addAction(tr("All &Rows Again"), this, [this, column] {
        m_bench.run("MainForm.LimitColumn()", [this, column] { put(column, std::nullopt); });
    });
    all->setObjectName(QStringLiteral("actUnlimitColumn"));
    all->setEnabled(std::ranges::find(limits, column, &ColumnLimit::column) != limits.end());
}

/// The values are counted in the rows that are shown, but those of a column that is limited already
/// in all that the query gives: otherwise no value could be added.
void ColumnLimitsPart::choose(UrlColumn column) {
    UrlTable *table = m_bench.table->table();
    ColumnLimit now{.column = column};
    for (const ColumnLimit &each : table->byColumn)
        if (each.column == column)
            now = each;
    const bool isLimited = now != ColumnLimit{.column = column};
    const bool isListed = valuesOf(column) != ColumnValues::dates;
    const RowIds &ids = isLimited ? table->idsOfQuery() : table->ids();
    const bool isLong = isListed && ids.size() >= kMany;
    Walk walk = isListed && !isLong ? Walk::Cancelled : Walk::Finished;
    CountedValues counted;
    if (isListed && !isLong)
        m_bench.runTask({"COUNTING VALUES", "", "", ""}, [&](TaskMonitor &task) {
            walk = table->countValues(ids, column, kMostListed, task, counted);
        });
    if (walk == Walk::Cancelled)
        return;
    const ProgramState &state = m_bench.program.state;
    ColumnLimitForm form(counted, now, columnTitle(column), {state.gmtZone, state.enableDSTChanges},
                         &m_bench.window);
    ValueCounter counter;
    if (isLong)
        countInto(form, counter, ids, column);
    if (form.exec() == QDialog::Accepted)
        put(column, form.limit());
}

/// Values are seen and chosen while they are counted.
void ColumnLimitsPart::countInto(ColumnLimitForm &form, ValueCounter &counter, const RowIds &ids,
                                 UrlColumn column) {
    connect(&counter, &ValueCounter::advanced, &form, &ColumnLimitForm::showProgress);
    connect(&counter, &ValueCounter::counted, &form, &ColumnLimitForm::showCounted);
    connect(&counter, &ValueCounter::finished, &form, &ColumnLimitForm::endCounting);
    connect(&form, &ColumnLimitForm::countingStopped, &counter, &ValueCounter::stop);
    connect(&form, &QDialog::finished, &counter, &ValueCounter::stop);
    form.startCounting(static_cast<qint64>(ids.size()));
    counter.start(m_bench.program.state.projectDB.filePath, ids, column, kMostListed);
}

void ColumnLimitsPart::put(UrlColumn column, const std::optional<ColumnLimit> &limit) {
    ColumnLimits limits = without(m_bench.table->table()->byColumn, column);
    if (limit)
        limits.push_back(*limit);
    setLimit(variantOf(limits));
    m_bench.table->narrow();
}

QVariant ColumnLimitsPart::limit() const {
    const UrlTable *table = m_bench.table->table();
    return table ? variantOf(table->byColumn) : QVariant();
}

void ColumnLimitsPart::setLimit(const QVariant &limit) {
    if (UrlTable *table = m_bench.table->table())
        table->byColumn = limit.isValid() ? limit.value<ColumnLimits>() : ColumnLimits();
}

std::vector<LimitChip> ColumnLimitsPart::chips() const {
    const UrlTable *table = m_bench.table->table();
    std::vector<LimitChip> chips;
    if (!table)
        return chips;
    chips.reserve(table->byColumn.size());
    for (const ColumnLimit &each : table->byColumn)
        chips.push_back({textOf(each), variantOf(without(table->byColumn, each.column))});
    return chips;
}

} // namespace nv
