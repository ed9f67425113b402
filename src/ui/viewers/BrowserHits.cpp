#include "ui/viewers/BrowserHits.h"

#include "platform/qt/QtText.h"
#include "ui/viewers/BrowserPane.h"

#include <QWebEngineFindTextResult>
#include <QWebEnginePage>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr qsizetype kMostText = qsizetype{2} << 20; ///< characters of a page

/// The engine takes letters with accents and without for the same.
QString plain(const QString &text) {
    QString letters = text.normalized(QString::NormalizationForm_D).toCaseFolded();
    letters.removeIf([](QChar c) { return c.category() == QChar::Mark_NonSpacing; });
    return letters;
}

} // namespace

BrowserHits::BrowserHits(BrowserPane &pane) : HitViewer(&pane), m_pane(pane) {
    connect(&pane, &BrowserPane::pageShown, this, &BrowserHits::start);
    connect(&pane, &BrowserPane::pageLeft, this, &BrowserHits::forget);
}

QWidget &BrowserHits::viewer() {
    return m_pane;
}

void BrowserHits::take(const RecordHits &hits) {
    if (m_finder == hits.finder)
        return;
    m_finder = hits.finder;
    start();
}

void BrowserHits::forget() {
    ++m_number;
    m_forms.clear();
    m_isBusy = m_isCounted = false;
    m_form = m_at = m_start = 0;
    emit changed();
}

void BrowserHits::start() {
    const bool hadMarks = !m_forms.empty();
    forget();
    m_page = m_pane.page();
    if (m_page && hadMarks)
        m_page->findText({});
    if (!m_page || !m_finder || m_page->isLoading())
        return;
    m_isBusy = true;
    m_page->toPlainText(
        [self = QPointer<BrowserHits>(this), number = m_number](const QString &text) {
            if (self && self->m_number == number)
                self->takeText(text);
        });
}

void BrowserHits::takeText(const QString &text) {
    QStringList plainForms;
    for (const std::string &each : m_finder->formsIn(fromQt(text.left(kMostText)))) {
        const QString form = toQt(each).simplified();
        const QString letters = plain(form);
        if (letters.isEmpty() || std::ranges::any_of(plainForms, [&](const QString &known) {
                return letters.contains(known);
            }))
            continue;
        plainForms += letters;
        m_forms.push_back({form, 0});
    }
    look(0);
}

void BrowserHits::find(const QString &text, bool forward,
                       const std::function<void(const QWebEngineFindTextResult &)> &then) {
    m_isBusy = true;
    const auto flags = forward ? QWebEnginePage::FindFlags()
                               : QWebEnginePage::FindFlags(QWebEnginePage::FindBackward);
    m_page->findText(text, flags,
                     [self = QPointer<BrowserHits>(this), number = m_number,
                      then](const QWebEngineFindTextResult &result) {
                         if (!self || self->m_number != number)
                             return;
                         self->m_isBusy = false;
                         then(result);
                         emit self->changed();
                     });
}

void BrowserHits::look(std::size_t form) {
    if (m_page && form < m_forms.size())
        return find(m_forms[form].text, true, [this, form](const QWebEngineFindTextResult &result) {
            m_forms[form].hits = static_cast<std::size_t>(std::max(0, result.numberOfMatches()));
            m_at = m_start = static_cast<std::size_t>(std::max(1, result.activeMatch())) - 1;
            look(form + 1);
        });
    const bool isUp = m_forms.size() == 1; // the last one that was asked for is marked
    std::erase_if(m_forms, [](const Form &each) { return each.hits == 0; });
    m_isCounted = true;
    m_isBusy = false;
    if (!m_forms.empty() && !isUp)
        enter(0);
    emit changed();
}

void BrowserHits::enter(std::size_t form) {
    m_form = form;
    if (!m_page)
        return;
    find(m_forms[form].text, true, [this](const QWebEngineFindTextResult &result) {
        m_at = m_start = static_cast<std::size_t>(std::max(1, result.activeMatch())) - 1;
    });
}

HitCount BrowserHits::count() const {
    HitCount count;
    count.isWorking = m_isBusy && !m_isCounted;
    if (!m_isCounted)
        return count;
    for (std::size_t form = 0; form < m_forms.size(); ++form) {
        if (form == m_form)
            count.at = count.all + m_at;
        count.all += m_forms[form].hits;
    }
    count.isMore = m_forms.size() >= HitFinder::kMostForms;
    return count;
}

HitStep BrowserHits::goOn(bool forward) {
    if (m_isBusy)
        return HitStep::waits;
    if (!m_page || m_forms.empty())
        return HitStep::none;
    const Form &form = m_forms[m_form];
    const bool isLast = forward ? (m_at + 1) % form.hits == m_start : m_at == m_start;
    if (!isLast)
        find(form.text, forward, [this](const QWebEngineFindTextResult &result) {
            m_at = static_cast<std::size_t>(std::max(1, result.activeMatch())) - 1;
        });
    else if (forward && m_form + 1 < m_forms.size())
        enter(m_form + 1);
    else if (!forward && m_form > 0)
        enter(m_form - 1);
    else
        return HitStep::none;
    return HitStep::gone;
}

} // namespace nv
