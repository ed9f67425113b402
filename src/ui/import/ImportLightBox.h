#pragma once

#include <QFrame>

#include <cstdint>

class QLabel;

namespace nv {

enum class ImportLight : std::uint8_t;
struct ImportOverview;

/// What an import came to, in plain words on the colour of its light. Sign and word say the same as
/// the colour.
class ImportLightBox final : public QFrame {
    Q_OBJECT

  public:
    explicit ImportLightBox(QWidget *parent = nullptr);

    void take(const ImportOverview &overview);

  protected:
    void changeEvent(QEvent *event) override;

  private:
    void paintLight();

    ImportLight m_light{};
    QLabel *m_sign = nullptr;
    QLabel *m_headline = nullptr;
    QLabel *m_meaning = nullptr;
    bool m_isPainting = false;
};

} // namespace nv
