#pragma once

#include <QWidget>

namespace nv {

/// A pane of the main window in a window of its own. Closing it gives the pane back.
class PaneWindow final : public QWidget {
    Q_OBJECT

  public:
    /// `pane` is its own until leaving() has been told. `owner` is the main window.
    PaneWindow(QWidget &pane, const QString &title, QWidget *owner);

  signals:
    /// The pane is free, and whoever takes it gives it another parent.
    void leaving();

  protected:
    void closeEvent(QCloseEvent *event) override;

  private:
    QWidget &m_pane;
};

} // namespace nv
