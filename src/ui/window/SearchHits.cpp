#include "ui/window/SearchHits.h"

#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "search/Search.h"
#include "search/SearchedRowReader.h"
#include "ui/views/HitBar.h"
#include "ui/views/HitMarks.h"

#include <QBoxLayout>
#include <QPlainTextEdit>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kMostMarks = 2000;

} // namespace

SearchHits::SearchHits(Workbench &bench) : m_bench(bench), m_bar(new HitBar) {
    bench.table->column().addWidget(m_bar);
    if (auto *text = bench.viewers->findChild<QPlainTextEdit *>(QStringLiteral("txtContent")))
        m_marks = new HitMarks(*text);
    connect(bench.table, &TableTab::currentUrlChanged, this, &SearchHits::show);
    connect(m_bar, &HitBar::nextWanted, this, [this] { goOn(true); });
    connect(m_bar, &HitBar::previousWanted, this, [this] { goOn(false); });
}

void SearchHits::take(std::optional<RowMatch> match) {
    m_match = std::move(match);
    m_bar->setVisible(m_match.has_value());
    if (m_marks && !m_match)
        m_marks->setMarker(nullptr);
    else if (m_marks)
        m_marks->setMarker([marked = *m_match](std::string_view text) mutable {
            return marked.marksIn(text, kMostMarks);
        });
    show();
}

void SearchHits::show() {
    if (!m_match || !m_bench.table->table() || !m_bench.table->grid().currentUrl())
        return m_bar->showNote({});
    const bool isShown = trapped(m_bench.program.log, Severity::Low, "MainForm.ShowHit()",
                                 kNotSerious, false, [this] { return showPlace(); });
    if (!isShown)
        m_bar->showNote(tr("Found by its host, browser, kind or date"));
}

bool SearchHits::showPlace() {
    const auto id = m_bench.table->grid().currentUrl();
    const bool all = m_match->scope() == SearchScope::all;
    SearchedRowReader reader(m_bench.project(), all ? RowTexts::all : RowTexts::values);
    if (!id || !reader.goTo(static_cast<std::int32_t>(*id)))
        return false;
    const auto place = m_match->firstMark(reader.row());
    if (!place)
        return false;
    m_bar->showSnippet(toQt(fieldWord(place->field)),
                       snippetOf(reader.row().at(place->field), place->span));
    return true;
}

void SearchHits::goOn(bool forward) {
    if (!m_match || !m_bench.table->table())
        return;
    const auto *text = m_marks ? qobject_cast<QWidget *>(m_marks->parent()) : nullptr;
    if (text && text->isVisible() && m_marks->goOn(forward))
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
