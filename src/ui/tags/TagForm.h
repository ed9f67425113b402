#pragma once

#include "db/marks/NamedTags.h"

#include <QDialog>

#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QToolButton;

namespace nv {

/// Asks for name, colour and note of a tag.
class TagForm final : public QDialog {
    Q_OBJECT

  public:
    /// `others` are the tags that the project has besides this one.
    TagForm(const NamedTag &tag, std::vector<NamedTag> others, QWidget *parent = nullptr);

    /// As it was filled in.
    NamedTag tag() const;

  private:
    QWidget *newColors();
    void chooseOther();
    void choose(const std::string &color);
    void showFault();

    NamedTag m_tag;
    std::vector<NamedTag> m_others;
    QLineEdit *m_name = nullptr;
    QPlainTextEdit *m_note = nullptr;
    QLabel *m_fault = nullptr;
    QPushButton *m_okay = nullptr;
    std::vector<QToolButton *> m_colors;
    QToolButton *m_other = nullptr;
};

} // namespace nv
