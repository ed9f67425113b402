#pragma once

#include <QUrl>
#include <QWidget>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QTimer;
class QWebEnginePage;
class QWebEngineView;

namespace nv {

class GuardedProfile;

/// A cached page as a browser shows it, without script and cut off from everything but the files
/// beside it. The web engine is started when the first page is shown.
class BrowserPane final : public QWidget {
    Q_OBJECT

  public:
    explicit BrowserPane(QWidget *parent = nullptr);
    ~BrowserPane() override;
    BrowserPane(const BrowserPane &) = delete;
    BrowserPane &operator=(const BrowserPane &) = delete;

    /// `page` must lie in a folder of the program's own: all files of that folder are let through.
    /// `kind` says what it is. The line above it shows `address`, the record's; without one, where
    /// the file lies.
    void showPage(const std::filesystem::path &page, const QString &kind,
                  const std::string &address = {});
    /// No page, but why there is none.
    void showReason(const QString &text);
    void clear() { showReason({}); }

    std::uint64_t refused() const;
    /// The page that is up; null for none.
    QWebEnginePage *page() const;

  signals:
    /// What was up is there no more.
    void pageLeft();
    /// A link was refused; the text is for people.
    void navigationBlocked(const QString &text);
    void pageShown();
    /// The page that was asked for can't be shown; the text is for people, and shown in its place.
    void pageFailed(const QString &reason);

  private:
    QWidget *newLocationBar();
    void startEngine();
    /// Not the engine's own way back, which leads to pages of other records.
    void goBack();
    void showLocation();
    void showFailure(const QString &reason);
    void showRefused();

    QPushButton *m_back = nullptr;
    QLabel *m_kind = nullptr;
    QLineEdit *m_location = nullptr;
    QStackedWidget *m_pages = nullptr;
    QLabel *m_reason = nullptr;
    QLabel *m_refused = nullptr;
    QTimer *m_count = nullptr;
    std::unique_ptr<GuardedProfile> m_profile; ///< must outlive the view's page
    QString m_address;                         ///< the record's, as it can be shown
    QUrl m_page;                               ///< what was last asked for
    QWebEngineView *m_view = nullptr;          ///< null until the first page is shown
};

} // namespace nv
