#pragma once

#include "ui/views/RecordPane.h"
#include "views/RecordCard.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QTextEdit;

namespace nv {

class HitFinder;
class PropertiesPane;

/// The card of a record: what is asked first, in words; below it all values.
class CardPane final : public QWidget, public RecordPane {
    Q_OBJECT

  public:
    using Load = std::function<std::optional<RecordCard>(UrlId)>;
    /// Takes `properties` into itself.
    CardPane(Load load, PropertiesPane &properties, QWidget *parent = nullptr);

    void showRecord(UrlId id) override;
    void clear() override;
    /// Marks what the search has found; null marks nothing.
    void setHits(std::shared_ptr<HitFinder> finder);

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    void write();
    void mark();

    Load m_load;
    PropertiesPane &m_properties;
    QTextEdit *m_text = nullptr;
    std::optional<RecordCard> m_card;
    std::shared_ptr<HitFinder> m_finder;
};

} // namespace nv
