#include "ui/parts/LimitsPart.h"

#include "base/Trap.h"
#include "ui/limits/ChipBar.h"

#include <QAction>
#include <QBoxLayout>
#include <QMainWindow>
#include <QMenu>
#include <SQLiteCpp/Database.h>

#include <algorithm>
#include <utility>

namespace nv {

LimitsPart::LimitsPart(Workbench &bench) : m_bench(bench), m_bar(new ChipBar) {
    bench.table->limitRow().addWidget(m_bar, 1);
    if (auto *window = qobject_cast<QMainWindow *>(&bench.window))
        addActions(*window);
    connect(m_bar, &ChipBar::lifted, this, [this](int place) {
        // Another load may have come between the click and this.
        if (const auto at = static_cast<std::size_t>(place); at < m_chips.size())
            m_bench.run("MainForm.LiftLimit()", [&] { m_bench.limits.lift(m_chips[at]); });
    });
    const auto liftAll = [this] {
        m_bench.run("MainForm.LiftLimits()", [this] { m_bench.limits.liftAll(); });
    };
    connect(m_bar, &ChipBar::allLifted, this, liftAll);
    connect(m_bar, &ChipBar::left, this, [this] { m_bench.table->grid().setFocus(); });
    connect(m_liftAll, &QAction::triggered, this, liftAll);
    connect(bench.table, &TableTab::showAllRequested, this, liftAll);
    connect(bench.table, &TableTab::rowsLoaded, this, [this] {
        countRecords();
        m_bench.limits.look();
    });
    connect(bench.table, &TableTab::statusChanged, this, &LimitsPart::showCount);
    connect(&bench.limits, &Limits::loadWanted, this, &LimitsPart::load);
    connect(&bench.limits, &Limits::changed, this, &LimitsPart::showChips);
    connect(&bench, &Workbench::projectOpened, m_goTo, [this] { m_goTo->setEnabled(true); });
    connect(&bench, &Workbench::projectClosing, this, [this] {
        m_goTo->setEnabled(false);
        m_countedTo = 0;
        m_bench.limits.forget();
    });
    connect(bench.actions.refresh, &QAction::triggered, this, [this] { m_countedTo = 0; });
}

/// Before all others of the menu Edit.
void LimitsPart::addActions(QMainWindow &window) {
    const auto make = [&window](const char *name, const QString &text, const QString &hint,
                                const QKeySequence &keys) {
        auto *action = new QAction(text, &window);
        action->setObjectName(QLatin1String(name));
        action->setShortcut(keys);
        action->setToolTip(keys.isEmpty() ? hint
                                          : QStringLiteral("%1 (%2)").arg(
                                                hint, keys.toString(QKeySequence::NativeText)));
        action->setEnabled(false);
        return action;
    };
    QUndoStack &history = m_bench.limits.history();
    QAction *undo = make("actUndo", tr("&Undo"), tr("Take back the last limit, or what was tagged"),
                         Qt::CTRL | Qt::Key_Z);
    QAction *redo = make("actRedo", tr("R&edo"), tr("Do again what was taken back"),
                         Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
    m_liftAll = make("actClearLimits", tr("Clear All &Limits"),
                     tr("Show all rows: takes every limit away"), {});
    m_goTo = make("actChips", tr("&Go to the Limits"),
                  tr("Lead the keys to the limits above the table: arrows go along them, Delete "
                     "takes one away"),
                  Qt::CTRL | Qt::Key_L);
    connect(m_goTo, &QAction::triggered, this, &LimitsPart::goToChips);
    connect(undo, &QAction::triggered, this, [this] {
        m_bench.run("MainForm.Undo()", [this] { m_bench.limits.history().undo(); });
    });
    connect(redo, &QAction::triggered, this, [this] {
        m_bench.run("MainForm.Redo()", [this] { m_bench.limits.history().redo(); });
    });
    connect(&history, &QUndoStack::canUndoChanged, undo, &QAction::setEnabled);
    connect(&history, &QUndoStack::canRedoChanged, redo, &QAction::setEnabled);
    if (auto *menu = window.findChild<QMenu *>(QStringLiteral("menuEdit"))) {
        QAction *first = menu->actions().value(0);
        menu->insertActions(first, {undo, redo});
        menu->insertSeparator(first);
        menu->addSeparator();
        menu->addActions({m_goTo, m_liftAll});
    }
}

void LimitsPart::goToChips() {
    m_bench.dataTabs->setCurrentWidget(m_bench.table);
    if (!m_bar->focusChips())
        m_bench.showNotice(tr("No limit is in force: all rows are shown."));
}

void LimitsPart::load(bool asksAgain) {
    if (asksAgain)
        m_bench.reload();
    else
        m_bench.table->narrow();
}

void LimitsPart::countRecords() {
    const qint64 last = trapped(
        m_bench.program.log, Severity::Low, "MainForm.CountRecords()", kNotSerious, qint64{0},
        [this] {
            return qint64{
                m_bench.project().execAndGet("SELECT ifnull(max(URL_ID), 0) FROM URLs").getInt64()};
        });
    if (std::exchange(m_countedTo, last) == last && last > 0)
        return; // records only ever come in at the end
    const auto least = static_cast<qint64>(m_bench.table->table()->rowCount() +
                                           m_bench.table->table()->hiddenCount());
    m_records = trapped(
        m_bench.program.log, Severity::Low, "MainForm.CountRecords()", kNotSerious, least, [&] {
            return std::max<qint64>(
                least, m_bench.project().execAndGet("SELECT count(*) FROM URLs").getInt64());
        });
}

void LimitsPart::showChips() {
    m_chips = m_bench.limits.chips();
    QStringList texts;
    for (const Limits::Chip &each : m_chips)
        texts += each.chip.text;
    m_bar->setChips(texts);
    m_liftAll->setEnabled(!texts.isEmpty());
    showCount();
}

void LimitsPart::showCount() {
    const UrlTable *table = m_bench.table->table();
    if (!table)
        return;
    m_bar->setCount(tr("%L1 of %L2").arg(table->rowCount()).arg(m_records),
                    tr("%L1 of the project's %L2 records are shown.\nFilters, search and time hide "
                       "%L3 of those that the query and the host give.")
                        .arg(table->rowCount())
                        .arg(m_records)
                        .arg(table->hiddenCount()));
}

} // namespace nv
