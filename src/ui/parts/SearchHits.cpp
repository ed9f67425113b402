#include "ui/parts/SearchHits.h"

#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "search/Search.h"
#include "search/SearchedRowReader.h"
#include "ui/viewers/BrowserHits.h"
#include "ui/viewers/BrowserPane.h"
#include "ui/viewers/CardPane.h"
#include "ui/viewers/HexHitMarks.h"
#include "ui/viewers/HexPane.h"
#include "ui/viewers/HitBar.h"
#include "ui/viewers/HitMarks.h"
#include "ui/viewers/PropertiesPane.h"
#include "ui/viewers/PropertyHits.h"
#include "ui/viewers/TextPane.h"

#include <QApplication>
#include <QBoxLayout>
#include <QPlainTextEdit>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

bool hasFocus(QWidget &widget) {
    const QWidget *focus = QApplication::focusWidget();
    return focus == &widget || widget.isAncestorOf(focus);
}

} // namespace

SearchHits::SearchHits(Workbench &bench) : m_bench(bench), m_bar(new HitBar) {
    bench.table->column().addWidget(m_bar);
    addViewers();
    connect(bench.table, &TableTab::currentUrlChanged, this, &SearchHits::show);
    connect(bench.viewers, &QTabWidget::currentChanged, this, &SearchHits::showCount);
    connect(qApp, &QApplication::focusChanged, this, &SearchHits::showCount);
    connect(m_bar, &HitBar::nextWanted, this, [this] { goOn(true); });
    connect(m_bar, &HitBar::previousWanted, this, [this] { goOn(false); });
    connect(m_bar, &HitBar::stopWanted, this, [this] {
        if (HitViewer *viewer = front())
            viewer->stop();
    });
}

void SearchHits::addViewers() {
    ViewerTabs &tabs = *m_bench.viewers;
    if (auto *browser = tabs.findChild<BrowserPane *>(QStringLiteral("BrowserPane")))
        m_viewers.push_back(new BrowserHits(*browser));
    if (auto *text = tabs.findChild<TextPane *>())
        m_viewers.push_back(new HitMarks(
            *text->findChild<QPlainTextEdit *>(QStringLiteral("txtContent")), *text, tr("Text")));
    if (auto *hex = tabs.findChild<HexPane *>())
        m_viewers.push_back(new HexHitMarks(*hex, m_bench.program.log));
    auto *card = qobject_cast<CardPane *>(m_bench.card);
    if (card)
        m_viewers.push_back(new PropertyHits(*card, *card->findChild<PropertiesPane *>()));
    for (HitViewer *viewer : m_viewers)
        connect(viewer, &HitViewer::changed, this, &SearchHits::showCount);
}

void SearchHits::take(std::optional<RowMatch> match) {
    m_hits = {};
    if (match)
        m_hits.finder = std::make_shared<HitFinder>(std::move(*match));
    m_bar->setVisible(m_hits.finder != nullptr);
    show();
}

void SearchHits::show() {
    m_hits.forms.clear();
    bool isShown = false;
    const bool hasRow =
        m_hits.finder && m_bench.table->table() && m_bench.table->grid().currentUrl();
    if (hasRow)
        isShown = trapped(m_bench.program.log, Severity::Low, "MainForm.ShowHit()", kNotSerious,
                          false, [this] { return showPlace(); });
    if (!isShown)
        m_bar->showNote(hasRow ? tr("Found by its host, browser, kind or date") : QString());
    for (HitViewer *viewer : m_viewers)
        viewer->take(m_hits);
    showCount();
}

bool SearchHits::showPlace() {
    const auto id = m_bench.table->grid().currentUrl();
    const bool all = m_hits.finder->scope() == SearchScope::all;
    SearchedRowReader reader(m_bench.project(), all ? RowTexts::all : RowTexts::values);
    if (!id || !reader.goTo(static_cast<std::int32_t>(*id)))
        return false;
    m_hits.forms = m_hits.finder->formsOf(reader.row());
    const auto place = m_hits.finder->firstMark(reader.row());
    if (!place)
        return false;
    m_bar->showSnippet(toQt(fieldWord(place->field)),
                       snippetOf(reader.row().at(place->field), place->span));
    return true;
}

HitViewer *SearchHits::front() const {
    for (HitViewer *viewer : m_viewers)
        if (hasFocus(viewer->viewer()))
            return viewer;
    for (HitViewer *viewer : m_viewers) {
        QWidget &pane = viewer->viewer();
        const bool isAside = &pane == m_bench.card && m_bench.viewers->indexOf(&pane) < 0;
        if (pane.isVisible() && !isAside)
            return viewer;
    }
    return nullptr;
}

void SearchHits::showCount() {
    const HitViewer *viewer = m_hits.finder ? front() : nullptr;
    const HitCount count = viewer ? viewer->count() : HitCount();
    m_bar->showCount(viewer ? hitText(count, viewer->name()) : QString(), count.isWorking);
}

void SearchHits::goOn(bool forward) {
    if (!m_hits.finder || !m_bench.table->table())
        return;
    HitViewer *viewer = front();
    if (viewer && viewer->goOn(forward) != HitStep::none)
        return;
    UrlGrid &grid = m_bench.table->grid();
    const int row = grid.currentIndex().row() + (forward ? 1 : -1);
    if (row < 0 || row >= grid.model()->rowCount())
        return m_bench.showNotice(forward ? tr("This was the last hit")
                                          : tr("This was the first hit"));
    const int column = std::max(0, grid.currentIndex().column());
    grid.setCurrentIndex(grid.model()->index(row, column));
}

} // namespace nv
