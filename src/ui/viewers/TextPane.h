#pragma once

#include "ui/viewers/ViewerFrame.h"
#include "views/record/CachedText.h"

class QCheckBox;
class QLineEdit;
class QPlainTextEdit;

namespace nv {

/// The cached content as text.
class TextPane final : public ViewerFrame {
    Q_OBJECT

  public:
    /// So much of a file is shown: a box of text that is longer takes seconds to lay out.
    static constexpr std::uint64_t kMostBytes = std::uint64_t{2} << 20;

    explicit TextPane(QWidget *parent = nullptr);

    void showText(const CachedText &text);
    void clear();

  protected:
    void openFind() override;
    void findNext() override;

  private:
    void setWrapped(bool wrapped);

    QPlainTextEdit *m_text = nullptr;
    QLineEdit *m_find = nullptr;
    QCheckBox *m_matchCase = nullptr;
    QLabel *m_result = nullptr;
    QLabel *m_charset = nullptr;
};

} // namespace nv
