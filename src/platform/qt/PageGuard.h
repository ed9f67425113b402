#pragma once

#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineUrlRequestInterceptor>

#include <cstdint>
#include <filesystem>

namespace nv {

// What stands between a page of evidence and the world: it gets the files of its own folder, runs
// no script, leaves nothing behind and reaches no network. Whatever shows such pages uses these.

/// Refuses and counts every request but those for files in the page's own folder and below it, and
/// for data that the page itself holds.
class PageGuard final : public QWebEngineUrlRequestInterceptor {
    Q_OBJECT

  public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    /// From now on the files beside `page` are let through, and the count starts anew. Before the
    /// first call no file is.
    void protect(const std::filesystem::path &page);
    /// Links of the file system are followed first: none leads out of the folder.
    bool lets(const QUrl &url) const;
    /// Of requests, and of navigations that no request came from.
    std::uint64_t refused() const { return m_refused; }
    void countRefusal() { ++m_refused; }
    void interceptRequest(QWebEngineUrlRequestInfo &info) override;

  private:
    std::filesystem::path m_folder; ///< without links; empty while no file is let through
    std::uint64_t m_refused = 0;
};

/// An off-the-record profile that stores nothing, downloads nothing and asks `guard()`.
class GuardedProfile final : public QWebEngineProfile {
    Q_OBJECT

  public:
    explicit GuardedProfile(QObject *parent = nullptr);
    PageGuard &guard() { return *m_guard; }

  private:
    PageGuard *m_guard;
};

/// A page without script, plugins, windows, dialogs and permissions.
class GuardedPage : public QWebEnginePage {
    Q_OBJECT

  public:
    explicit GuardedPage(GuardedProfile &profile, QObject *parent = nullptr);

  protected:
    /// The page itself never leads elsewhere: only what the program loads comes into the main
    /// frame.
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage *createWindow(WebWindowType type) override;
    QStringList chooseFiles(FileSelectionMode mode, const QStringList &oldFiles,
                            const QStringList &acceptedMimeTypes) override;
    void javaScriptAlert(const QUrl &origin, const QString &text) override;
    bool javaScriptConfirm(const QUrl &origin, const QString &text) override;
    bool javaScriptPrompt(const QUrl &origin, const QString &text, const QString &preset,
                          QString *result) override;
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString &message,
                                  int line, const QString &source) override;

    PageGuard &guard() { return m_guard; }

  private:
    PageGuard &m_guard;
};

/// Settings of the engine that are read once, when the application object is made: call it before.
/// No name is looked up, nothing is fetched ahead, and pages are drawn without a graphics card.
void prepareWebEngine();

} // namespace nv
