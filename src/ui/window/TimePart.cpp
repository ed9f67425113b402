#include "ui/window/TimePart.h"

#include "app/settings/Settings.h"
#include "platform/qt/QtText.h"
#include "time/ExactZone.h"
#include "ui/views/TimeStrip.h"

#include <QAction>
#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QToolButton>

namespace nv {

namespace {

constexpr int kBelowChoices = 1; ///< place in the table's column
constexpr int kByItself = -1;    ///< of the units: the one that fits

QString timeText(std::int64_t second) {
    return toQt(slotText(slotOf(second, TimeUnit::minute), TimeUnit::minute));
}

} // namespace

TimePart::TimePart(Workbench &bench) : m_bench(bench) {
    m_panel = newPanel(); // sets the members that stand behind it
    if (auto *column = qobject_cast<QBoxLayout *>(bench.table->layout()))
        column->insertWidget(kBelowChoices, m_panel);
    bench.actions.time->setChecked(readFlag(bench.program.settings, "ShowTime"));
    m_panel->setVisible(bench.actions.time->isChecked());
    connectPanel();
    connect(bench.actions.time, &QAction::toggled, this, &TimePart::showPanel);
    connect(bench.table, &TableTab::rowsLoaded, this, &TimePart::takeRows);
    connect(&bench, &Workbench::projectClosing, this, [this] {
        m_isStale = true;
        m_strip->setEvents({}, {});
        m_strip->setChosen(std::nullopt);
        showLimit();
    });
}

QWidget *TimePart::newChoices() {
    m_unit = new QComboBox;
    m_unit->setObjectName(QStringLiteral("cbTimeUnit"));
    m_unit->setAccessibleName(tr("Bars"));
    m_unit->addItem(tr("Bars that fit"), kByItself);
    for (const auto &[name, unit] :
         {std::pair(tr("Years"), TimeUnit::year), std::pair(tr("Months"), TimeUnit::month),
          std::pair(tr("Days"), TimeUnit::day), std::pair(tr("Hours"), TimeUnit::hour),
          std::pair(tr("Minutes"), TimeUnit::minute)})
        m_unit->addItem(name, static_cast<int>(unit));
    m_stack = new QComboBox;
    m_stack->setObjectName(QStringLiteral("cbTimeStack"));
    m_stack->setAccessibleName(tr("Divided by"));
    m_stack->addItem(tr("By kind"), static_cast<int>(TimeStack::kind));
    m_stack->addItem(tr("By browser"), static_cast<int>(TimeStack::browser));
    m_hours = new QCheckBox(tr("Hours of the day"));
    m_hours->setObjectName(QStringLiteral("chkTimeHours"));
    m_limit = new QLabel;
    m_limit->setObjectName(QStringLiteral("labTimeLimit"));
    m_limit->setTextFormat(Qt::PlainText);
    m_allTimes = new QToolButton;
    m_allTimes->setObjectName(QStringLiteral("btnAllTimes"));
    m_allTimes->setText(tr("Show all times"));

    auto *choices = new QWidget;
    auto *row = new QHBoxLayout(choices);
    row->setContentsMargins(6, 0, 6, 4);
    row->addWidget(m_unit);
    row->addWidget(m_stack);
    row->addWidget(m_hours);
    row->addSpacing(12);
    row->addWidget(m_limit);
    row->addWidget(m_allTimes);
    row->addStretch();
    return choices;
}

QWidget *TimePart::newPanel() {
    m_strip = new TimeStrip;
    auto *panel = new QWidget;
    panel->setObjectName(QStringLiteral("timePanel"));
    auto *column = new QVBoxLayout(panel);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(newChoices());
    column->addWidget(m_strip);
    showLimit();
    return panel;
}

void TimePart::connectPanel() {
    connect(m_unit, &QComboBox::activated, this, [this] {
        const int unit = m_unit->currentData().toInt();
        m_strip->setUnit(unit == kByItself ? std::nullopt
                                           : std::optional(static_cast<TimeUnit>(unit)));
    });
    connect(m_stack, &QComboBox::activated, this, [this] {
        m_isStale = true;
        load();
    });
    connect(m_hours, &QCheckBox::toggled, m_strip, &TimeStrip::setHours);
    connect(m_allTimes, &QToolButton::clicked, this, &TimePart::showAllTimes);
    connect(m_strip, &TimeStrip::spanChosen, this, &TimePart::choose);
    connect(m_strip, &TimeStrip::spanCleared, this, &TimePart::showAllTimes);
}

/// A limit that nobody sees would hide rows in silence.
void TimePart::showPanel(bool shown) {
    m_panel->setVisible(shown);
    rememberFlag(m_bench.program.settings, "ShowTime", shown);
    if (shown)
        load();
    else if (m_strip->chosen())
        showAllTimes();
}

/// What was chosen by another zone's clock isn't what this one shows. The rows are being loaded as
/// long as this runs, so all times come after it.
void TimePart::takeRows() {
    m_isStale = true;
    if (m_strip->chosen() && m_zone != zoneName())
        QMetaObject::invokeMethod(this, &TimePart::showAllTimes, Qt::QueuedConnection);
    load();
}

void TimePart::load() {
    UrlTable *table = m_bench.table->table();
    if (!m_isStale || m_panel->isHidden() || !table)
        return;
    const ProgramState &state = m_bench.program.state;
    const auto stack = static_cast<TimeStack>(m_stack->currentData().toInt());
    TimedEvents events;
    Walk walk = Walk::Cancelled;
    m_bench.runTask({}, [&](TaskMonitor &task) {
        walk = loadEvents(m_bench.project(), table->idsOfAllTimes(), stack, state.gmtZone,
                          state.enableDSTChanges, task, events);
    });
    // A part of the rows would be taken for all.
    m_isStale = walk == Walk::Cancelled;
    m_zone = zoneName();
    m_strip->setEvents(m_isStale ? TimedEvents() : std::move(events), m_zone);
}

QString TimePart::zoneName() const {
    const TimeZone &zone = m_bench.program.state.gmtZone;
    return toQt(zone.exact ? zone.exact->name() : zone.tzName);
}

void TimePart::choose(qint64 begin, qint64 end) {
    limitTo(TimeSpan{begin, end});
}

void TimePart::showAllTimes() {
    m_strip->setChosen(std::nullopt);
    limitTo(std::nullopt);
}

void TimePart::limitTo(const std::optional<TimeSpan> &span) {
    UrlTable *table = m_bench.table->table();
    if (!table)
        return;
    m_bench.run("MainForm.LimitTime()", [&] {
        const ProgramState &state = m_bench.program.state;
        std::optional<TimeLimit> limit;
        if (span)
            limit = limitOf(*span, state.gmtZone, state.enableDSTChanges);
        if (limit == table->time)
            return;
        table->time = limit;
        showLimit();
        m_bench.reload();
    });
}

void TimePart::showLimit() {
    const auto &span = m_strip->chosen();
    if (span)
        m_limit->setText(tr("Only %1 to %2").arg(timeText(span->begin), timeText(span->end - 1)));
    m_limit->setVisible(span.has_value());
    m_allTimes->setVisible(span.has_value());
}

} // namespace nv
