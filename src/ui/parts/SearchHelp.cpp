#include "ui/parts/SearchHelp.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "ui/search/SearchBar.h"

#include <QBoxLayout>
#include <QLabel>
#include <SQLiteCpp/Database.h>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kMostOffered = 12;
constexpr const char *kProcedure = "MainForm.SearchNames()";

/// Where the cursor stands, in bytes.
std::size_t placeIn(const QString &text, int cursor) {
    return fromQt(text.left(cursor)).size();
}

} // namespace

SearchHelp::SearchHelp(Workbench &bench, SearchBar &bar)
    : m_bench(bench), m_bar(bar), m_advice(new QLabel) {
    m_advice->setObjectName(QStringLiteral("labSearchAdvice"));
    m_advice->setTextFormat(Qt::PlainText); // it quotes evidence
    m_advice->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_advice->setWordWrap(true);
    m_advice->setContentsMargins(8, 4, 8, 0);
    m_advice->hide();
    bench.table->column().insertWidget(1, m_advice);
    connect(&bar, &SearchBar::edited, this, &SearchHelp::offer);
    connect(&bar, &SearchBar::nameChosen, this, &SearchHelp::take);
    connect(&bench, &Workbench::projectClosing, this, [this] {
        m_look.stop();
        m_waiting.clear();
        m_values = {};
        m_readTo = -1;
        m_bar.offerNames({});
        forget();
    });
}

bool SearchHelp::areFresh() const {
    const std::int64_t last =
        trapped(m_bench.program.log, Severity::Low, kProcedure, kNotSerious, m_readTo, [this] {
            return m_bench.project()
                .execAndGet("SELECT ifnull(max(URL_ID), 0) FROM URLs")
                .getInt64();
        });
    return m_readTo >= 0 && last == m_readTo;
}

void SearchHelp::withNames(std::function<void()> act) {
    if (!m_bench.isProjectOpen())
        return;
    if (!areFresh()) {
        m_waiting.push_back(std::move(act));
        if (!m_look.isRunning())
            load();
        return;
    }
    // Tags change while the rows stay.
    logFailureOf(m_bench.program.log, kProcedure,
                 [this] { readMarkValues(m_bench.project(), m_values); });
    act();
}

void SearchHelp::load() {
    const std::int64_t last = trapped(m_bench.program.log, Severity::Low, kProcedure, kNotSerious,
                                      std::int64_t{0}, [this] {
                                          return m_bench.project()
                                              .execAndGet("SELECT ifnull(max(URL_ID), 0) FROM URLs")
                                              .getInt64();
                                      });
    const auto values = std::make_shared<SearchValues>();
    m_look.start(
        m_bench.program.state.projectDB.filePath,
        [values](SQLite::Database &project, TaskMonitor &task) {
            return loadSearchValues(project, task, *values);
        },
        [this, values, last](const QString &failure) {
            const auto waiting = std::exchange(m_waiting, {});
            if (!failure.isEmpty())
                return; // the search itself tells what is wrong with the project
            m_values = std::move(*values);
            m_readTo = last;
            for (const auto &act : waiting)
                act();
        });
}

void SearchHelp::offer() {
    const QString text = m_bar.text();
    const auto typed = operatorAt(fromQt(text), placeIn(text, m_bar.cursor()));
    if (!typed || m_values.of(typed->kind) == nullptr)
        return m_bar.offerNames({});
    withNames([this] {
        // The box may say something else by now.
        const QString now = m_bar.text();
        const auto asked = operatorAt(fromQt(now), placeIn(now, m_bar.cursor()));
        const NamedCounts *names = asked ? m_values.of(asked->kind) : nullptr;
        NamedCounts fit = names ? valuesWith(*names, asked->value, kMostOffered) : NamedCounts();
        // One that stands there already needs no list.
        if (fit.size() == 1 && fit.front().first == asked->value)
            fit.clear();
        m_bar.offerNames(fit);
    });
}

void SearchHelp::take(const QString &name) {
    const std::string text = fromQt(m_bar.text());
    const auto typed = operatorAt(text, placeIn(m_bar.text(), m_bar.cursor()));
    if (!typed)
        return;
    const std::string before = text.substr(0, typed->at) + operatorValue(fromQt(name)) + ' ';
    std::string_view rest = std::string_view(text).substr(typed->at + typed->length);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    m_bar.putText(toQt(before + std::string(rest)), static_cast<int>(toQt(before).size()));
}

/// An operator whose value is still to come is no fault.
void SearchHelp::showFault(const QString &text, const QString &fault) {
    const std::string written = fromQt(text);
    const auto begun = operatorAt(written, written.size());
    m_bar.showMessage(fault, begun && begun->length == 0 ? SearchBar::Tone::plain
                                                         : SearchBar::Tone::fault);
}

void SearchHelp::explain(const QString &text, bool foundNone) {
    forget();
    SearchQuery query;
    NoLog unheard; // what can't be read was told as it was typed
    if (failureOf(unheard, kProcedure, [&] { query = parseSearch(fromQt(text)); }))
        return;
    const bool mayExclude = std::ranges::any_of(query.clauses, &SearchClause::isExcluded);
    if ((!foundNone && !mayExclude) || !canBeAdvised(query))
        return;
    withNames([this, text, query] {
        if (m_bar.text().trimmed() != text)
            return;
        QStringList lines;
        for (const std::string &advice : searchAdvice(query, m_values)) {
            const QString line = toQt(advice);
            lines += line.left(1).toUpper() + line.mid(1);
        }
        m_advice->setText(lines.join(u'\n'));
        m_advice->setVisible(!lines.isEmpty());
    });
}

void SearchHelp::forget() {
    m_advice->clear();
    m_advice->hide();
}

} // namespace nv
