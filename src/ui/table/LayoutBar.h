#pragma once

#include "views/table/LayoutBook.h"

#include <QWidget>

#include <optional>

class QAction;
class QComboBox;
class QMenu;

namespace nv {

class UrlGrid;

/// Chooses the column layout of the grid by its name, and keeps the examiner's own.
class LayoutBar final : public QWidget {
    Q_OBJECT

  public:
    explicit LayoutBar(UrlGrid &grid, QWidget *parent = nullptr);

    void restore(const TableLayout::Read &read);
    void save(const TableLayout::Write &write);
    /// The layouts with what has been made of the one that is shown.
    const LayoutBook &book();
    bool isClassic() const { return m_book.isClassic(); }
    void choose(const QString &name);

  signals:
    /// Another layout is shown.
    void chosen();
    /// The examiner has chosen, made, renamed, deleted or reset one.
    void edited();

  private:
    void buildMenu();
    void showNames();
    void showActive();
    /// Nothing when the examiner gives up.
    std::optional<QString> askName(const QString &title, const QString &first, bool renamesActive);
    void saveAs();
    void rename();
    void remove();
    void reset();

    UrlGrid &m_grid;
    LayoutBook m_book;
    QComboBox *m_names = nullptr;
    QAction *m_rename = nullptr;
    QAction *m_remove = nullptr;
    QAction *m_reset = nullptr;
    QMenu *m_menu = nullptr;
};

} // namespace nv
