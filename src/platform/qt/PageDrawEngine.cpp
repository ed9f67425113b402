#include "platform/qt/PageDrawEngine.h"

#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QImage>
#include <QPointer>
#include <QTimer>
#include <QWebEngineSettings>
#include <QWebEngineView>
#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace nv {

namespace {

/// The place at which a rebuilt page shows without its banner (kBannerOff of
/// rebuild/exact/OwnParts.h). Other pages have no such place.
constexpr const char *kWithoutBanner = "nv-rebuilt";

/// Pages are laid out for a screen and then made small.
constexpr int kScreenWidth = 1024;
constexpr int kLowestScreen = 64;
constexpr int kHighestScreen = 4096;
/// Between two shots. The frame on screen is behind what is loaded: shot at once, every twentieth
/// picture is of the page before, and a page that paints slowly comes out white.
constexpr std::chrono::milliseconds kSettling{50};
/// A page that is white by itself or moves for ever is waited for no longer.
constexpr std::chrono::milliseconds kLongestSettling{500};
constexpr int kQuality = 85; ///< of the JPEG, in percent
constexpr qint64 kLargestPage = qint64{64} << 20;

QSize screenFor(const DrawJob &job) {
    const int height = static_cast<int>(qint64{kScreenWidth} * job.height / job.width);
    return {kScreenWidth, std::clamp(height, kLowestScreen, kHighestScreen)};
}

/// Outlives the wait for it: the engine answers late, or when the page goes.
struct Loading {
    void end(std::string failure) {
        if (!outcome)
            outcome = std::move(failure);
        if (loop)
            loop->quit();
    }
    QPointer<QEventLoop> loop;
    std::optional<std::string> outcome; ///< empty text when the page is ready
};

void wait(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

void showUnseen(QWebEngineView &view, const DrawJob &job, GuardedProfile &profile) {
    auto *page = new GuardedPage(profile, &view);
    page->settings()->setAttribute(QWebEngineSettings::ShowScrollBars, false);
    view.setPage(page);
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.resize(screenFor(job));
    view.show();
}

bool isWhite(const QImage &shot) {
    QImage white(shot.size(), shot.format());
    white.fill(Qt::white);
    return shot == white;
}

/// The page when two shots of it agree and hold something, and what it is by then after a while.
QImage settledShot(QWebEngineView &view, std::chrono::milliseconds timeout) {
    const auto longest = std::min(timeout, kLongestSettling);
    wait(kSettling);
    QImage last = view.grab().toImage();
    for (auto waited = kSettling; waited < longest; waited += kSettling) {
        wait(kSettling);
        QImage next = view.grab().toImage();
        const bool settled = next == last && !isWhite(next);
        last = std::move(next);
        if (settled)
            break;
    }
    return last;
}

bool save(const QImage &shot, const DrawJob &job) {
    return shot.scaled(job.width, job.height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .save(pathToQt(job.target), "JPEG", kQuality);
}

} // namespace

PageDrawEngine::PageDrawEngine() : m_profile(std::make_unique<GuardedProfile>()) {}

PageDrawEngine::~PageDrawEngine() = default;

std::string PageDrawEngine::load(QWebEngineView &view, const DrawJob &job,
                                 std::chrono::milliseconds timeout, QImage &shot) {
    QEventLoop loop;
    const auto loading = std::make_shared<Loading>();
    loading->loop = &loop;
    QWebEnginePage &page = *view.page();
    QObject::connect(&page, &QWebEnginePage::loadFinished, &loop, [&page, loading](bool isLoaded) {
        // A page that is there and fails was refused to lead elsewhere: it is shown all the same.
        if (!isLoaded && page.url().isEmpty())
            return loading->end("The page can't be loaded.");
        // A page that is loaded may be long from laid out, which its text has to wait for.
        page.toPlainText([loading](const QString &) { loading->end({}); });
    });
    QObject::connect(&page, &QWebEnginePage::renderProcessTerminated, &loop, [loading] {
        // Then the engine has answered nothing, or nothing that counts.
        loading->outcome = "The page crashed the engine that draws it.";
        loading->end({});
    });
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    QUrl target = QUrl::fromLocalFile(pathToQt(job.source));
    target.setFragment(QString::fromLatin1(kWithoutBanner));
    view.load(target);
    loop.exec();
    if (loading->outcome && loading->outcome->empty())
        shot = settledShot(view, timeout);
    m_isStuck = !loading->outcome;
    return loading->outcome.value_or(fmt::format("The page was not ready within {} seconds.",
                                                 std::chrono::duration<double>(timeout).count()));
}

Drawn PageDrawEngine::draw(const DrawJob &job, std::chrono::milliseconds timeout) {
    Drawn drawn;
    const QFileInfo source(pathToQt(job.source));
    if (!source.isFile() || source.size() > kLargestPage) {
        drawn.failure = source.isFile() ? "The page is too large to be drawn."
                                        : "The page is no file that can be read.";
        return drawn;
    }
    m_profile->guard().protect(job.source);
    QWebEngineView view;
    showUnseen(view, job, *m_profile);
    QImage shot;
    drawn.failure = load(view, job, timeout, shot);
    if (drawn.failure.empty()) {
        drawn.done = save(shot, job);
        if (!drawn.done)
            drawn.failure = kTargetNotWritten;
    }
    drawn.refusedRequests = m_profile->guard().refused();
    return drawn;
}

} // namespace nv
