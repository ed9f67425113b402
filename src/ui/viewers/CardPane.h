#pragma once

#include "ui/viewers/RecordPane.h"
#include "views/record/RecordCard.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QPlainTextEdit;
class QScrollArea;
class QSplitter;
class QStackedWidget;
class QTextEdit;

namespace nv {

class HitFinder;
class PropertiesPane;

/// The card of a record: what is asked first, in words; below it all values. Why a value is as it
/// is stands in place of the words, so that nothing moves. Where there is little height the card
/// scrolls as one, below the line with the buttons.
class CardPane final : public QWidget, public RecordPane {
    Q_OBJECT

  public:
    using Load = std::function<std::optional<RecordCard>(UrlId)>;
    /// Takes `properties` into itself.
    CardPane(Load load, PropertiesPane &properties, QWidget *parent = nullptr);

    void showRecord(UrlId id) override;
    void clear() override;
    bool showsMarks() const override { return true; }
    /// Marks what the search has found; null marks nothing.
    void setHits(std::shared_ptr<HitFinder> finder);

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

  private:
    void write();
    void mark();
    void arrange();
    void fitWords();
    void showAnswer(const QString &why);
    void follow(QWidget *focus);

    Load m_load;
    PropertiesPane &m_properties;
    QTextEdit *m_text = nullptr;
    QPlainTextEdit *m_answer = nullptr;
    QStackedWidget *m_words = nullptr; ///< the text, or the answer
    QScrollArea *m_scroll = nullptr;
    QSplitter *m_halves = nullptr; ///< the words and the list
    UrlId m_id = UrlId::none;
    std::optional<RecordCard> m_card;
    std::shared_ptr<HitFinder> m_finder;
};

} // namespace nv
