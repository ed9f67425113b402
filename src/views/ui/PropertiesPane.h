#pragma once

#include "views/UrlTable.h"
#include "views/ui/RecordPane.h"

#include <QWidget>

#include <functional>

class QPlainTextEdit;
class QTreeWidget;

namespace nv {

/// All columns of one record with their values, hidden columns too; below them the whole text of
/// the chosen one.
class PropertiesPane final : public QWidget, public RecordPane {
    Q_OBJECT

  public:
    /// `table` gives the table that is open, which must outlive the showing: clear() ends it.
    explicit PropertiesPane(std::function<UrlTable *()> table, QWidget *parent = nullptr);

    /// Keeps the chosen property.
    void showRecord(UrlId id) override;
    void clear() override;

  private:
    void showChosen();

    std::function<UrlTable *()> m_openTable;
    QTreeWidget *m_list = nullptr;
    QPlainTextEdit *m_whole = nullptr;
    UrlTable *m_table = nullptr;
    std::size_t m_place = 0; ///< of the record in the table, 0-based
};

} // namespace nv
