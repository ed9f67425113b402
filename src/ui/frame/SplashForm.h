#pragma once

#include <QWidget>

namespace nv {

/// What is shown while the program comes up.
class SplashForm final : public QWidget {
    Q_OBJECT

  public:
    /// `version` is "major.minor.revision", or empty while it isn't known.
    explicit SplashForm(const QString &version);

    /// Shows it in the middle of the first screen, drawn before anything else happens.
    void showCentred();

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    QString m_version;
};

} // namespace nv
