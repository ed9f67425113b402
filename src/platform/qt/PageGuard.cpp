#include "platform/qt/PageGuard.h"

#include "platform/qt/QtText.h"

#include <QWebEngineCertificateError>
#include <QWebEngineCookieStore>
#include <QWebEngineDownloadRequest>
#include <QWebEngineSettings>
#include <QWebEngineUrlRequestInfo>

#include <algorithm>
#include <array>
#include <unistd.h>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

using Attribute = QWebEngineSettings::WebAttribute;

constexpr std::array kOff = {
    Attribute::JavascriptEnabled,
    Attribute::JavascriptCanOpenWindows,
    Attribute::JavascriptCanAccessClipboard,
    Attribute::JavascriptCanPaste,
    Attribute::AllowWindowActivationFromJavaScript,
    Attribute::LocalStorageEnabled,
    Attribute::HyperlinkAuditingEnabled,
    Attribute::ErrorPageEnabled,
    Attribute::PluginsEnabled,
    Attribute::PdfViewerEnabled,
    Attribute::FullScreenSupportEnabled,
    Attribute::ScreenCaptureEnabled,
    Attribute::WebGLEnabled,
    Attribute::Accelerated2dCanvasEnabled,
    Attribute::AutoLoadIconsForPage,
    Attribute::TouchIconsEnabled,
    Attribute::AllowRunningInsecureContent,
    Attribute::AllowGeolocationOnInsecureOrigins,
    Attribute::DnsPrefetchEnabled,
    Attribute::NavigateOnDropEnabled,
    Attribute::FocusOnNavigationEnabled,
};

constexpr std::array kOn = {
    Attribute::AutoLoadImages,
    // Otherwise remote requests end before the guard can count them; it refuses each.
    Attribute::LocalContentCanAccessRemoteUrls,
    Attribute::LocalContentCanAccessFileUrls,
    Attribute::PlaybackRequiresUserGesture,
    Attribute::WebRTCPublicInterfacesOnly,
};

void setUp(QWebEngineSettings &settings) {
    for (const Attribute attribute : kOff)
        settings.setAttribute(attribute, false);
    for (const Attribute attribute : kOn)
        settings.setAttribute(attribute, true);
    settings.setUnknownUrlSchemePolicy(QWebEngineSettings::DisallowUnknownUrlSchemes);
}

bool isBelow(const fs::path &folder, const fs::path &file) {
    const auto [end, rest] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
    return end == folder.end() && rest != file.end();
}

} // namespace

void PageGuard::protect(const fs::path &page) {
    std::error_code unknown;
    m_folder = fs::canonical(page, unknown).parent_path();
    m_refused = 0;
}

bool PageGuard::lets(const QUrl &url) const {
    if (url.scheme() == QLatin1String("data"))
        return true;
    if (url.scheme() != QLatin1String("file") || !url.host().isEmpty() || m_folder.empty())
        return false;
    // Percent codes may stand for bytes that are no UTF-8: they are the name as it lies on disk.
    const QByteArray name =
        QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    std::error_code unknown;
    const fs::path file = fs::canonical(name.toStdString(), unknown);
    // Neither a listing of the folder nor a pipe, which would hold the page up for ever.
    return !unknown && fs::is_regular_file(file, unknown) && isBelow(m_folder, file);
}

void PageGuard::interceptRequest(QWebEngineUrlRequestInfo &info) {
    if (lets(info.requestUrl()))
        return;
    info.block(true);
    countRefusal();
}

GuardedProfile::GuardedProfile(QObject *parent)
    : QWebEngineProfile(parent), m_guard(new PageGuard(this)) {
    setHttpCacheType(NoCache);
    setPersistentCookiesPolicy(NoPersistentCookies);
    cookieStore()->setCookieFilter([](const auto &) { return false; });
    setSpellCheckEnabled(false);
    setUrlRequestInterceptor(m_guard);
    setUp(*settings());
    connect(this, &QWebEngineProfile::downloadRequested, this,
            [](QWebEngineDownloadRequest *download) { download->cancel(); });
}

GuardedPage::GuardedPage(GuardedProfile &profile, QObject *parent)
    : QWebEnginePage(&profile, parent), m_guard(profile.guard()) {
    connect(this, &QWebEnginePage::featurePermissionRequested, this,
            [this](const QUrl &origin, Feature feature) {
                setFeaturePermission(origin, feature, PermissionDeniedByUser);
            });
    connect(this, &QWebEnginePage::certificateError, this,
            [](QWebEngineCertificateError error) { error.rejectCertificate(); });
}

bool GuardedPage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) {
    if (m_guard.lets(url) && (!isMainFrame || type == NavigationTypeTyped))
        return true;
    const bool isHarmless = url.scheme() == QLatin1String("about"); // an empty frame, for instance
    if (!isHarmless)
        m_guard.countRefusal();
    return isHarmless;
}

QWebEnginePage *GuardedPage::createWindow(WebWindowType) {
    return nullptr;
}

QStringList GuardedPage::chooseFiles(FileSelectionMode, const QStringList &, const QStringList &) {
    return {};
}

void GuardedPage::javaScriptAlert(const QUrl &, const QString &) {}

bool GuardedPage::javaScriptConfirm(const QUrl &, const QString &) {
    return false;
}

bool GuardedPage::javaScriptPrompt(const QUrl &, const QString &, const QString &, QString *) {
    return false;
}

void GuardedPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString &, int,
                                           const QString &) {}

void prepareWebEngine() {
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS",
            "--disable-gpu --disable-dev-shm-usage --host-resolver-rules=\"MAP * ~NOTFOUND\" "
            "--force-webrtc-ip-handling-policy=disable_non_proxied_udp");
    // The engine's sandbox refuses to start for the superuser, and only for it.
    if (::geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
}

} // namespace nv
