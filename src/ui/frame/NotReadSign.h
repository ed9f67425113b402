#pragma once

#include <QToolButton>

namespace nv {

/// "12 things not read: what?" in the colours of what isn't complete; hidden where all was read.
class NotReadSign final : public QToolButton {
    Q_OBJECT

  public:
    explicit NotReadSign(QWidget *parent = nullptr);

    void setCount(std::uint64_t things);

  protected:
    void changeEvent(QEvent *event) override;

  private:
    void paintLight();

    bool m_isPainting = false;
};

} // namespace nv
