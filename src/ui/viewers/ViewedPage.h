#pragma once

#include "platform/qt/PageGuard.h"

namespace nv {

/// A guarded page whose links lead to other files of its folder, and nowhere else.
class ViewedPage final : public GuardedPage {
    Q_OBJECT

  public:
    using GuardedPage::GuardedPage;

  signals:
    /// The address as it stands in the page; empty for a link that opens another window.
    void blocked(const QString &address);

  protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage *createWindow(WebWindowType type) override;
};

} // namespace nv
