#include "ui/parts/TimePart.h"

#include "app/settings/Settings.h"
#include "platform/qt/QtText.h"
#include "time/ExactZone.h"
#include "ui/limits/TimeStrip.h"
#include "ui/parts/LowWindow.h"
#include "views/record/RecordCard.h"

#include <QAction>
#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QToolButton>

#include <chrono>

namespace nv {

namespace {

constexpr int kBelowChoices = 2; ///< place in the table's column
constexpr int kByItself = -1;    ///< of the units: the one that fits
/// After the last letter of a search: reading the dates of its rows takes longer than finding them.
constexpr std::chrono::milliseconds kUntilShown{250};
constexpr std::size_t kFew = 200'000; ///< rows whose dates are read in no time

QString timeText(std::int64_t second) {
    return toQt(slotText(slotOf(second, TimeUnit::minute), TimeUnit::minute));
}

} // namespace

TimePart::TimePart(Workbench &bench) : m_bench(bench) {
    m_panel = newPanel();
    bench.table->column().insertWidget(kBelowChoices, m_panel);
    bench.actions.time->setChecked(readFlag(bench.program.settings, "ShowTime"));
    m_panel->setVisible(bench.actions.time->isChecked());
    connectPanel();
    m_soon.setSingleShot(true);
    m_soon.setInterval(kUntilShown);
    connect(&m_soon, &QTimer::timeout, this, &TimePart::loadSoon);
    connect(bench.actions.time, &QAction::toggled, this, &TimePart::showPanel);
    connect(bench.table, &TableTab::rowsLoaded, this, &TimePart::takeRows);
    connect(&bench, &Workbench::projectClosing, this, [this] {
        m_isStale = true;
        m_soon.stop();
        m_strip->setEvents({}, {});
        m_strip->setChosen(std::nullopt);
        m_span.reset();
    });
    bench.limits.add(*this);
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

    auto *choices = new QWidget;
    auto *row = new QHBoxLayout(choices);
    row->setContentsMargins(6, 0, 6, 4);
    row->addWidget(m_unit);
    row->addWidget(m_stack);
    row->addWidget(m_hours);
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
    m_choices = newChoices();
    m_more = new QToolButton;
    m_more->setObjectName(QStringLiteral("btnTimeChoices"));
    m_more->setText(QStringLiteral("..."));
    m_more->setAccessibleName(tr("Choices of the bar of time"));
    m_more->setToolTip(tr("Which bars, how they are divided, and the hours of the day"));
    m_more->setCheckable(true);
    m_more->setFocusPolicy(Qt::TabFocus);
    auto *row = new QHBoxLayout;
    row->setSpacing(0);
    row->addWidget(m_strip, 1);
    row->addWidget(m_more, 0, Qt::AlignTop);
    column->addWidget(m_choices);
    column->addLayout(row);
    return panel;
}

/// In a low window the bars are as low as they can be read, and what is chosen of them once folds.
void TimePart::fold() {
    const bool isFolded = isLow(m_bench.window);
    m_more->setVisible(isFolded);
    m_choices->setVisible(!isFolded || m_more->isChecked());
    m_strip->setMaximumHeight(isFolded ? m_strip->minimumSizeHint().height() : QWIDGETSIZE_MAX);
}

bool TimePart::eventFilter(QObject *watched, QEvent *event) {
    if (watched == &m_bench.window && event->type() == QEvent::Resize)
        fold();
    return QObject::eventFilter(watched, event);
}

void TimePart::connectPanel() {
    m_bench.window.installEventFilter(this);
    connect(m_more, &QToolButton::toggled, this, &TimePart::fold);
    connect(m_hours, &QCheckBox::toggled, this, [this](bool shown) {
        m_strip->setHours(shown);
        fold();
    });
    connect(m_unit, &QComboBox::activated, this, [this] {
        const int unit = m_unit->currentData().toInt();
        m_strip->setUnit(unit == kByItself ? std::nullopt
                                           : std::optional(static_cast<TimeUnit>(unit)));
    });
    connect(m_stack, &QComboBox::activated, this, [this] {
        m_isStale = true;
        load();
    });
    connect(m_strip, &TimeStrip::spanChosen, this, [this](qint64 begin, qint64 end) {
        choose(TimeSpan{begin, end});
    });
    connect(m_strip, &TimeStrip::spanCleared, this, [this] { choose(std::nullopt); });
}

/// What was chosen holds while the bar is folded: its chip says so.
void TimePart::showPanel(bool shown) {
    m_panel->setVisible(shown);
    rememberFlag(m_bench.program.settings, "ShowTime", shown);
    if (shown)
        load();
}

/// What was chosen by another zone's clock isn't what this one shows. The rows are being loaded as
/// long as this runs, so all times come after it.
void TimePart::takeRows() {
    m_isStale = true;
    if (m_span && m_zone != zoneName())
        QMetaObject::invokeMethod(
            this, [this] { choose(std::nullopt); }, Qt::QueuedConnection);
    if (m_bench.limits.isTyped())
        m_soon.start();
    else
        load();
}

void TimePart::loadSoon() {
    m_soon.start(); // the command doesn't run while a task has the project
    m_bench.run("MainForm.LoadTimeline()", [this] {
        m_soon.stop();
        load();
    });
}

void TimePart::load() {
    UrlTable *table = m_bench.table->table();
    if (!m_isStale || m_panel->isHidden() || !table)
        return;
    const ProgramState &state = m_bench.program.state;
    const auto stack = static_cast<TimeStack>(m_stack->currentData().toInt());
    TimedEvents events;
    Walk walk = Walk::Cancelled;
    const auto loadInto = [&](TaskMonitor &task) {
        walk = loadEvents(m_bench.project(), table->idsOfAllTimes(), stack, state.gmtZone,
                          state.enableDSTChanges, task, events);
    };
    // A task locks the window, and letters that are typed meanwhile would be lost.
    Unwatched nobody;
    if (m_bench.limits.isTyped() && table->idsOfAllTimes().size() < kFew)
        loadInto(nobody);
    else
        m_bench.runTask({}, loadInto);
    // A part of the rows would be taken for all.
    m_isStale = walk == Walk::Cancelled;
    m_zone = zoneName();
    m_strip->setEvents(m_isStale ? TimedEvents() : std::move(events), m_zone);
}

QString TimePart::zoneName() const {
    return toQt(nv::zoneName(m_bench.program.state.gmtZone));
}

void TimePart::choose(const std::optional<TimeSpan> &span) {
    m_bench.run("MainForm.LimitTime()", [&] {
        setLimit(span ? QVariant::fromValue(*span) : QVariant());
        m_bench.table->narrow();
    });
}

QVariant TimePart::limit() const {
    return m_span ? QVariant::fromValue(*m_span) : QVariant();
}

void TimePart::setLimit(const QVariant &limit) {
    m_span.reset();
    if (limit.isValid())
        m_span = limit.value<TimeSpan>();
    m_strip->setChosen(m_span);
    UrlTable *table = m_bench.table->table();
    if (!table)
        return;
    const ProgramState &state = m_bench.program.state;
    if (m_span)
        m_zone = zoneName();
    table->time = m_span ? std::optional(limitOf(*m_span, state.gmtZone, state.enableDSTChanges))
                         : std::nullopt;
}

std::vector<LimitChip> TimePart::chips() const {
    if (!m_span)
        return {};
    return {{tr("%1 to %2").arg(timeText(m_span->begin), timeText(m_span->end - 1)), {}}};
}

} // namespace nv
