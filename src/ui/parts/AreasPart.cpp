#include "ui/parts/AreasPart.h"

#include "ui/frame/FocusRing.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QStatusBar>
#include <QTabBar>

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr int kRingWidth = 3; ///< pixels

/// Of the areas below one another the first that holds a control is its own.
struct AreaNames {
    const char *panel;
    const char *first; ///< empty: its first control
};
constexpr std::array kAreas = {
    AreaNames{"StepsPane", ""},          AreaNames{"RecentPane", ""},
    AreaNames{"searchBar", "txtSearch"}, AreaNames{"chipBar", ""},
    AreaNames{"choiceBar", "cbLayout"},  AreaNames{"PlacesPane", "PlacesTree"},
    AreaNames{"HostsPane", ""},          AreaNames{"timePanel", "TimeStrip"},
    AreaNames{"tablePages", "URLGrid"},  AreaNames{"FindBar", ""},
    AreaNames{"QueryTab", ""},           AreaNames{"GalleryTab", ""},
    AreaNames{"TemplatesTab", ""},       AreaNames{"TagsPane", "lstTags"},
    AreaNames{"CardPane", "cardText"},
};

/// A control that stands in for another, or for which another stands in, is reached with it.
bool takesTab(const QWidget &widget) {
    return (widget.focusPolicy() & Qt::TabFocus) != 0 && !widget.focusProxy();
}

bool isUsable(const QWidget &widget, const QWidget &window) {
    return takesTab(widget) && widget.isEnabled() && widget.isVisible() &&
           widget.window() == &window;
}

bool holds(const QWidget *panel, const QWidget *widget) {
    return panel && widget && (panel == widget || panel->isAncestorOf(widget));
}

} // namespace

AreasPart::AreasPart(Workbench &bench, QMainWindow &window) : m_bench(bench), m_window(window) {
    findAreas();
    addActions();
    connect(qApp, &QApplication::focusChanged, this,
            [this](const QWidget *, const QWidget *now) { follow(now); });
}

void AreasPart::findAreas() {
    // The steps stand in two places: on the first page, and where a project is empty.
    for (const AreaNames &names : kAreas)
        for (auto *panel : m_window.findChildren<QWidget *>(QLatin1String(names.panel)))
            m_areas.push_back({panel, panel->findChild<QWidget *>(QLatin1String(names.first))});
    m_places.emplace_back(m_bench.dataTabs->tabBar());
    for (const Area &area : m_areas) {
        // They are newer than the button after them. The toolkit's own order is left alone: the
        // browser's views come and go in it, and it ended the program where it was changed.
        if (auto *chips = area.panel->findChild<QWidget *>(QStringLiteral("chips")))
            m_places.emplace_back(chips);
        m_places.push_back(area.panel);
    }
    m_places.emplace_back(m_bench.viewers->tabBar());
    m_places.emplace_back(m_bench.viewers->cornerWidget());
    for (QWidget *bar : m_window.findChildren<QWidget *>(QStringLiteral("viewerControls")))
        m_places.emplace_back(bar);
    m_places.emplace_back(m_bench.viewers);
    m_areas.push_back({m_bench.viewers, {}});
    m_areas.push_back({m_window.statusBar(), {}});
}

/// The toolkit has them as they were made: parts that came later stand at its end, and bars of a
/// viewer after what it shows.
std::vector<QWidget *> AreasPart::stops() const {
    std::vector<QWidget *> stops;
    for (QWidget *next = m_window.nextInFocusChain(); next != &m_window;
         next = next->nextInFocusChain())
        if (isUsable(*next, m_window))
            stops.push_back(next);
    const auto placeOf = [this](const QWidget *widget) {
        return std::ranges::find_if(
                   m_places,
                   [widget](const QPointer<QWidget> &place) { return holds(place, widget); }) -
               m_places.begin();
    };
    std::ranges::stable_sort(stops, {}, placeOf);
    return stops;
}

bool AreasPart::goToStop(bool next) {
    const std::vector<QWidget *> all = stops();
    if (all.empty())
        return false;
    const auto now = std::ranges::find(all, m_window.focusWidget());
    const std::size_t last = all.size() - 1;
    const auto at = static_cast<std::size_t>(now - all.begin());
    const std::size_t to = next ? (at >= last ? 0 : at + 1) : (at == 0 ? last : at - 1);
    all[to]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void AreasPart::addActions() {
    auto *menu = m_window.findChild<QMenu *>(QStringLiteral("menuView"));
    menu->addSeparator();
    const auto add = [&](const char *name, const QString &text, const QString &hint,
                         const QKeySequence &keys, int step) {
        auto *action = new QAction(text, &m_window);
        menu->addAction(action);
        action->setObjectName(QLatin1String(name));
        action->setShortcut(keys);
        action->setToolTip(
            QStringLiteral("%1 (%2)").arg(hint, keys.toString(QKeySequence::NativeText)));
        connect(action, &QAction::triggered, this, [this, step] { go(step); });
    };
    add("actNextArea", tr("&Next Area"), tr("Lead the keys to the next part of the window"),
        Qt::Key_F6, 1);
    add("actPreviousArea", tr("Previo&us Area"),
        tr("Lead the keys to the part of the window before"), Qt::SHIFT | Qt::Key_F6, -1);
}

QWidget *AreasPart::target(const Area &area) const {
    if (!area.panel || !area.panel->isVisible())
        return nullptr;
    if (area.first && isUsable(*area.first, m_window))
        return area.first;
    QWidget *shown =
        area.panel == m_bench.viewers ? m_bench.viewers->currentWidget() : area.panel.data();
    const std::vector<QWidget *> all = stops();
    const auto first =
        std::ranges::find_if(all, [shown](const QWidget *each) { return holds(shown, each); });
    if (first != all.end())
        return *first;
    return shown == area.panel ? nullptr : m_bench.viewers->tabBar();
}

void AreasPart::go(int step) {
    const QWidget *focus = m_window.focusWidget();
    const auto count = static_cast<int>(m_areas.size());
    const auto now = std::ranges::find_if(
        m_areas, [focus](const Area &area) { return holds(area.panel, focus); });
    int at = now == m_areas.end() ? (step > 0 ? -1 : count) : int(now - m_areas.begin());
    for (int tried = 0; tried < count; ++tried) {
        at = (at + step + count) % count;
        const Area &area = m_areas[std::size_t(at)];
        QWidget *first = target(area);
        if (!first)
            continue;
        m_marked = area.panel;
        delete m_ring;
        m_ring = new FocusRing(*area.panel, kRingWidth);
        first->setFocus(Qt::ShortcutFocusReason);
        return;
    }
}

/// A menu that comes up takes no keys away from the area.
void AreasPart::follow(const QWidget *focus) {
    if (m_ring && focus && !holds(m_marked, focus))
        delete m_ring;
}

} // namespace nv
