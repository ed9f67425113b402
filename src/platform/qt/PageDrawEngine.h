#pragma once

#include "platform/Drawing.h"

#include <chrono>
#include <memory>

class QImage;
class QWebEngineView;

namespace nv {

class GuardedProfile;

/// Draws HTML files as a browser without a network shows them. Needs the application object, made
/// after prepareWebEngine().
class PageDrawEngine {
  public:
    PageDrawEngine();
    ~PageDrawEngine();
    PageDrawEngine(const PageDrawEngine &) = delete;
    PageDrawEngine &operator=(const PageDrawEngine &) = delete;

    /// Writes a JPEG of exactly the job's width by height, of the page's upper part. The source's
    /// name has to end in .htm or .html. Events are handled meanwhile.
    Drawn draw(const DrawJob &job, std::chrono::milliseconds timeout);
    /// After a page that was not ready in time the engine may still be busy with it: pages after it
    /// had better be drawn by another process.
    bool isStuck() const { return m_isStuck; }

  private:
    /// Empty when the page is loaded; `shot` is what it looks like then.
    std::string load(QWebEngineView &view, const DrawJob &job, std::chrono::milliseconds timeout,
                     QImage &shot);

    std::unique_ptr<GuardedProfile> m_profile;
    bool m_isStuck = false;
};

} // namespace nv
