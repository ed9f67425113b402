#include "ui/parts/PlacesPart.h"

#include "app/jobs/Trail.h"
#include "app/settings/Settings.h"
#include "base/DisplayText.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "ui/limits/PlacesPane.h"
#include "views/tags/Tagging.h"

#include <QAction>
#include <QSplitter>
#include <SQLiteCpp/Database.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::int64_t kNotCounted = -1;

} // namespace

PlacesPart::PlacesPart(Workbench &bench) : m_bench(bench), m_pane(new PlacesPane) {
    bench.dataArea->insertWidget(0, m_pane);
    for (int place = 0; place < bench.dataArea->count(); ++place)
        bench.dataArea->setStretchFactor(place,
                                         bench.dataArea->widget(place) == bench.dataTabs ? 1 : 0);
    bench.dataArea->setSizes({260, 280, 1000});
    // The list of hosts is the classic way: who has it open wants it.
    const bool shown =
        readFlag(bench.program.settings, "ShowPlaces") && !bench.actions.hosts->isChecked();
    bench.actions.places->setChecked(shown);
    m_pane->setVisible(shown);
    connectPane();
    bench.limits.add(*this);
    connect(&bench, &Workbench::projectOpened, this,
            [this] { m_pane->setReadOnly(m_bench.program.state.projectDB.isReadOnly()); });
    connect(&bench, &Workbench::projectClosing, this, [this] {
        m_look.stop();
        m_countedTo = kNotCounted;
        m_pane->setPlaces({});
        m_pane->setChoice({});
        m_pane->showNote({});
    });
}

void PlacesPart::connectPane() {
    connect(m_bench.actions.places, &QAction::toggled, this, &PlacesPart::showPane);
    connect(m_bench.actions.hosts, &QAction::toggled, this, [this](bool shown) {
        if (shown)
            m_bench.actions.places->setChecked(false);
    });
    // Both come before the rows are loaded anew, which then counts.
    const auto countAgain = [this] { m_countedTo = kNotCounted; };
    connect(m_bench.actions.refresh, &QAction::triggered, this, countAgain);
    connect(&m_bench, &Workbench::hashSetsMatched, this, countAgain);
    connect(m_bench.table, &TableTab::statusChanged, this, &PlacesPart::loadIfStale);
    connect(m_pane, &PlacesPane::choiceMade, this, &PlacesPart::limitTo);
    connect(m_pane, &PlacesPane::tickWanted, this, &PlacesPart::tick);
}

void PlacesPart::showPane(bool shown) {
    m_pane->setVisible(shown);
    rememberFlag(m_bench.program.settings, "ShowPlaces", shown);
    if (shown) {
        m_bench.actions.hosts->setChecked(false);
        loadIfStale();
    }
}

QVariant PlacesPart::limit() const {
    const UrlTable *table = m_bench.table->table();
    return table && !table->places.isEmpty() ? QVariant::fromValue(table->places) : QVariant();
}

void PlacesPart::setLimit(const QVariant &limit) {
    UrlTable *table = m_bench.table->table();
    if (!table)
        return;
    table->places = limit.value<PlaceChoice>();
    m_pane->setChoice(table->places);
}

std::vector<LimitChip> PlacesPart::chips() const {
    const QVariant chosen = limit();
    if (!chosen.isValid())
        return {};
    return {{toQt(displayText(placeText(chosen.value<PlaceChoice>()))), {}}};
}

/// Records only ever come in at the end, so a new highest one is what changes the counts.
void PlacesPart::loadIfStale() {
    if (!m_bench.isProjectOpen() || m_pane->isHidden())
        return;
    const std::int64_t atLeast = std::max(m_countedTo, std::int64_t{0}); // so that it counts once
    const std::int64_t last = trapped(m_bench.program.log, Severity::Low, "MainForm.loadPlaces()",
                                      kNotSerious, atLeast, [this] {
                                          return m_bench.project()
                                              .execAndGet("SELECT ifnull(max(URL_ID), 0) FROM URLs")
                                              .getInt64();
                                      });
    if (last == m_countedTo)
        return;
    m_countedTo = last;
    m_pane->showNote(tr("Counting..."));
    const auto places = std::make_shared<Places>();
    m_look.start(
        m_bench.program.state.projectDB.filePath,
        [places](SQLite::Database &project, TaskMonitor &task) {
            return loadPlaces(project, task, *places);
        },
        [this, places](const QString &failure) { show(std::move(*places), failure); });
}

void PlacesPart::show(Places places, const QString &failure) {
    QString note;
    if (!failure.isEmpty()) {
        m_bench.program.log.write({fromQt(failure), "MainForm.loadPlaces()", Severity::Warning,
                                   std::string(kContactSupport)});
        note = tr("Not counted. Refresh (F5) tries again.");
    } else if (!places.unread.empty()) {
        note = tr("Without %1 that could not be read")
                   .arg(toQt(counted(places.unread.size(), "record")));
    } else if (places.records == 0) {
        note = tr("Nothing is imported yet.");
    }
    m_pane->setPlaces(std::move(places));
    m_pane->showNote(note);
}

void PlacesPart::limitTo(const PlaceChoice &choice) const {
    UrlTable *table = m_bench.table->table();
    if (table == nullptr || table->places == choice)
        return;
    m_bench.run("MainForm.LimitPlaces()", [&] {
        table->places = choice;
        m_bench.table->narrow();
    });
}

void PlacesPart::tick(const PlaceChoice &places, bool ticked) {
    if (!m_bench.mayWrite())
        return;
    m_bench.runTask({"TICKING ROWS", "", "", ""}, [&](TaskMonitor &task) {
        RowIds rows;
        UnreadRows unread;
        if (placeRows(m_bench.project(), places, task, rows, unread) == Walk::Finished &&
            setTagged(m_bench.project(), m_bench.program.log, rows, ticked, task))
            noteMarking(m_bench.program, {.isSet = ticked,
                                          .rows = static_cast<std::int64_t>(rows.size()),
                                          .which = placeText(places)});
    });
    m_bench.reload();
}

} // namespace nv
