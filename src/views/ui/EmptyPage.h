#pragma once

#include "views/UrlTable.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace nv {

/// Stands in place of a table without rows and says what to do about it.
class EmptyPage final : public QWidget {
    Q_OBJECT

  public:
    explicit EmptyPage(QWidget *parent = nullptr);
    void showState(EmptyState state);

  signals:
    void importRequested();
    void showAllRequested();

  private:
    QLabel *m_text = nullptr;
    QPushButton *m_import = nullptr;
    QPushButton *m_showAll = nullptr;
};

} // namespace nv
