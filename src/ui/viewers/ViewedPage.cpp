#include "ui/viewers/ViewedPage.h"

namespace nv {

bool ViewedPage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) {
    if (isMainFrame && type == NavigationTypeLinkClicked && guard().lets(url))
        return true;
    const bool accepted = GuardedPage::acceptNavigationRequest(url, type, isMainFrame);
    if (!accepted)
        emit blocked(url.toString());
    return accepted;
}

QWebEnginePage *ViewedPage::createWindow(WebWindowType) {
    guard().countRefusal();
    emit blocked({});
    return nullptr;
}

} // namespace nv
