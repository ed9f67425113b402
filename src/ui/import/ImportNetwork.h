#pragma once

#include "app/program/Program.h"

#include <QFrame>

class QLabel;
class QPushButton;

namespace nv {

/// The wizard's warning of a network that the computer is connected to: it stands on the page
/// before the import, so that whoever imports has seen it, and offers to disable the connection. It
/// is hidden while there is none.
class ImportNetwork final : public QFrame {
    Q_OBJECT

  public:
    explicit ImportNetwork(Program &program, QWidget *parent = nullptr);

    /// Asks for the state of the connection and shows it.
    void look();
    /// It is connected, and the warning stands on the page.
    bool warns() const { return m_warns; }

  protected:
    void changeEvent(QEvent *event) override;

  private:
    void disable();
    void paintLight();

    Program &m_program;
    QLabel *m_sign;
    QLabel *m_title;
    QLabel *m_text;
    QPushButton *m_disable;
    bool m_warns = false;
    bool m_isPainting = false;
};

} // namespace nv
