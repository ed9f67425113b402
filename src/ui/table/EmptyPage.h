#pragma once

#include "views/table/UrlTable.h"

#include <QWidget>

#include <cstddef>

class QLabel;
class QPushButton;
class QScrollArea;

namespace nv {

class ImportSteps;

/// Stands in place of a table without rows and says what to do about it.
class EmptyPage final : public QWidget {
    Q_OBJECT

  public:
    explicit EmptyPage(QWidget *parent = nullptr);
    enum class HiddenBy { filters, others };
    /// `hidden` is how many records the filters hide, or other limits too.
    /// Shows the three steps of an import where there are no records. They must outlive it.
    void offerSteps(ImportSteps &steps);
    void showState(EmptyState state, std::size_t hidden = 0, HiddenBy by = HiddenBy::filters);

  signals:
    void showAllRequested();
    void filtersRequested();

  private:
    QLabel *m_text = nullptr;
    QPushButton *m_showAll = nullptr;
    QPushButton *m_filters = nullptr;
    QScrollArea *m_steps = nullptr; ///< while they are offered
    EmptyState m_state = EmptyState::NotLoaded;
};

} // namespace nv
