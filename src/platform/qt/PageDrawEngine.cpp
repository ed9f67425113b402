#include "platform/qt/PageDrawEngine.h"

#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QImage>
#include <QTimer>
#include <QWebEngineSettings>
#include <QWebEngineView>
#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// Pages are laid out for a screen and then made small.
constexpr int kScreenWidth = 1024;
constexpr int kLowestScreen = 64;
constexpr int kHighestScreen = 4096;
/// The frame on screen is behind what is loaded: shot at once, every twentieth picture is of the
/// page before.
constexpr std::chrono::milliseconds kSettling{100};
constexpr int kQuality = 85; ///< of the JPEG, in percent
constexpr qint64 kLargestPage = qint64{64} << 20;

QSize screenFor(const DrawJob &job) {
    const int height = static_cast<int>(qint64{kScreenWidth} * job.height / job.width);
    return {kScreenWidth, std::clamp(height, kLowestScreen, kHighestScreen)};
}

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

bool save(const QImage &shot, const DrawJob &job) {
    return shot.scaled(job.width, job.height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .save(pathToQt(job.target), "JPEG", kQuality);
}

} // namespace

PageDrawEngine::PageDrawEngine() : m_profile(std::make_unique<GuardedProfile>()) {}

PageDrawEngine::~PageDrawEngine() = default;

std::string PageDrawEngine::load(QWebEngineView &view, const DrawJob &job,
                                 std::chrono::milliseconds timeout) {
    std::string failure = fmt::format("The page was not ready within {} seconds.",
                                      std::chrono::duration<double>(timeout).count());
    m_isStuck = true;
    QEventLoop loop;
    const auto end = [&](std::string why) {
        failure = std::move(why);
        m_isStuck = false;
        loop.quit();
    };
    QObject::connect(view.page(), &QWebEnginePage::loadFinished, &loop, [&](bool isLoaded) {
        end(isLoaded ? std::string() : "The page can't be loaded.");
    });
    QObject::connect(view.page(), &QWebEnginePage::renderProcessTerminated, &loop,
                     [&] { end("The page crashed the engine that draws it."); });
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    view.load(QUrl::fromLocalFile(pathToQt(job.source)));
    loop.exec();
    return failure;
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
    drawn.failure = load(view, job, timeout);
    if (drawn.failure.empty()) {
        wait(kSettling);
        drawn.done = save(view.grab().toImage(), job);
        if (!drawn.done)
            drawn.failure = "The thumbnail can't be written.";
    }
    drawn.refusedRequests = m_profile->guard().refused();
    return drawn;
}

} // namespace nv
