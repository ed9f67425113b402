#pragma once

#include "ui/views/RecordPane.h"
#include "views/RecordCard.h"

#include <QWidget>

#include <functional>
#include <optional>

class QTextEdit;

namespace nv {

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

  protected:
    void changeEvent(QEvent *event) override;

  private:
    void write();

    Load m_load;
    PropertiesPane &m_properties;
    QTextEdit *m_text = nullptr;
    std::optional<RecordCard> m_card;
};

} // namespace nv
