#pragma once

#include "views/UrlTable.h"

#include <QWidget>

class QPlainTextEdit;
class QTreeWidget;

namespace nv {

/// All columns of one record with their values, hidden columns too; below them the whole text of
/// the chosen one.
class PropertiesPane final : public QWidget {
    Q_OBJECT

  public:
    explicit PropertiesPane(QWidget *parent = nullptr);

    /// `place` is the row's, 0-based. Keeps the chosen property. The table must outlive the
    /// showing: clear() ends it.
    void showRecord(UrlTable &table, std::size_t place);
    void clear();

  private:
    void showChosen();

    QTreeWidget *m_list = nullptr;
    QPlainTextEdit *m_whole = nullptr;
    UrlTable *m_table = nullptr;
    std::size_t m_place = 0;
};

} // namespace nv
