#pragma once

#include "views/UrlTable.h"

#include <QWidget>

#include <cstddef>

class QLabel;
class QPushButton;

namespace nv {

/// Stands in place of a table without rows and says what to do about it.
class EmptyPage final : public QWidget {
    Q_OBJECT

  public:
    explicit EmptyPage(QWidget *parent = nullptr);
    enum class HiddenBy { filters, others };
    /// `hidden` is how many records the filters hide, or other limits too.
    void showState(EmptyState state, std::size_t hidden = 0, HiddenBy by = HiddenBy::filters);

  signals:
    void importRequested();
    void showAllRequested();
    void filtersRequested();

  private:
    QLabel *m_text = nullptr;
    QPushButton *m_import = nullptr;
    QPushButton *m_showAll = nullptr;
    QPushButton *m_filters = nullptr;
};

} // namespace nv
