#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;

namespace nv {

/// A line below the grid that looks for a text in the columns that are shown.
class FindBar final : public QWidget {
    Q_OBJECT

  public:
    explicit FindBar(QWidget *parent = nullptr);

    /// Shows the bar with its text ready to be typed over.
    void reveal();
    void dismiss();
    QString text() const;
    /// A word on how the search ended; empty when the text was found.
    void showResult(const QString &text);

  signals:
    void nextRequested();
    void closed();

  protected:
    void keyPressEvent(QKeyEvent *event) override;

  private:
    QLineEdit *m_text = nullptr;
    QLabel *m_result = nullptr;
};

} // namespace nv
