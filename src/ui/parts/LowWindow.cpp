#include "ui/parts/LowWindow.h"

#include <QEvent>
#include <QHeaderView>
#include <QMainWindow>
#include <QSplitter>

#include <algorithm>

namespace nv {

namespace {

// Heights in pixels below which a window is low: as on a screen of 800 or 900, and as on a laptop's
// whose points are twice as large.
constexpr int kLow = 940;
constexpr int kLowest = 640;
constexpr int kRows = 6;
constexpr int kRowsOfLowest = 4;

} // namespace

bool isLow(const QWidget &window) {
    return window.height() < kLow;
}

LowWindow::LowWindow(Workbench &bench, QMainWindow &window) : m_bench(bench), m_window(window) {
    m_soon.setSingleShot(true);
    connect(&m_soon, &QTimer::timeout, this, &LowWindow::share);
    connect(bench.table, &TableTab::rowsLoaded, this, [this] { m_soon.start(0); });
    if (auto *halves = window.findChild<QSplitter *>(QStringLiteral("mainSplitter")))
        connect(halves, &QSplitter::splitterMoved, this, [this] { m_isByHand = true; });
    window.installEventFilter(this);
    for (const char *name : {"timePanel", "chipBar", "FindBar"})
        if (auto *bar = window.findChild<QWidget *>(QLatin1String(name)))
            bar->installEventFilter(this);
}

bool LowWindow::eventFilter(QObject *watched, QEvent *event) {
    const bool isNew = event->type() == QEvent::Show || event->type() == QEvent::Hide ||
                       event->type() == QEvent::Resize;
    if (isNew && (watched == &m_window || event->type() != QEvent::Resize))
        m_soon.start(0);
    return QObject::eventFilter(watched, event);
}

void LowWindow::share() {
    auto *halves = m_window.findChild<QSplitter *>(QStringLiteral("mainSplitter"));
    const UrlGrid &grid = m_bench.table->grid();
    if (m_isByHand || !isLow(m_window) || !halves || halves->count() < 2 || !grid.isVisible())
        return;
    const QWidget &record = *halves->widget(1);
    const int rows = m_window.height() < kLowest ? kRowsOfLowest : kRows;
    const int lacking =
        rows * grid.verticalHeader()->defaultSectionSize() - grid.viewport()->height();
    const int spare = record.height() - record.minimumSizeHint().height();
    if (const int moved = record.isVisible() ? std::min(lacking, spare) : 0; moved > 0) {
        const QList<int> sizes = halves->sizes();
        halves->setSizes({sizes.value(0) + moved, sizes.value(1) - moved});
    }
}

} // namespace nv
