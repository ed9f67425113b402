#pragma once

#include "ui/viewers/HitViewer.h"

#include <QPointer>

#include <cstdint>
#include <functional>
#include <vector>

class QWebEngineFindTextResult;
class QWebEnginePage;

namespace nv {

class BrowserPane;

/// The hits in a page as it is drawn, by the engine's own way of finding, which needs no script and
/// no network. The engine marks one spelling at a time; the way leads through all of them.
class BrowserHits final : public HitViewer {
    Q_OBJECT

  public:
    /// The pane owns it.
    explicit BrowserHits(BrowserPane &pane);

    QWidget &viewer() override;
    QString name() const override { return tr("Browser"); }
    void take(const RecordHits &hits) override;
    HitCount count() const override;
    HitStep goOn(bool forward) override;

  private:
    struct Form {
        QString text;
        std::size_t hits = 0;
    };
    void forget();
    void start();
    void takeText(const QString &text);
    /// Counts the spellings from this place on, then goes to the first one that the page has.
    void look(std::size_t form);
    void enter(std::size_t form);
    void find(const QString &text, bool forward,
              const std::function<void(const QWebEngineFindTextResult &)> &then);

    BrowserPane &m_pane;
    QPointer<QWebEnginePage> m_page;
    std::shared_ptr<HitFinder> m_finder;
    std::vector<Form> m_forms;
    std::uint64_t m_number = 0; ///< of what is in force: answers to earlier questions are late
    bool m_isBusy = false;      ///< the engine has been asked, and hasn't answered
    bool m_isCounted = false;
    std::size_t m_form = 0;  ///< the one that is marked
    std::size_t m_at = 0;    ///< the hit of it that is chosen, 0-based
    std::size_t m_start = 0; ///< the one at which the engine began, and comes round to
};

} // namespace nv
