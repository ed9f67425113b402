#pragma once

#include <QDialog>

namespace nv {

/// Shows a text file of the program's own, such as the error log. What evidence is quoted in it
/// stays plain text.
class TextForm final : public QDialog {
    Q_OBJECT

  public:
    TextForm(const QString &title, const QString &text, QWidget *parent = nullptr);
};

} // namespace nv
