#include "ui/widgets/DroppedUrls.h"

#include "platform/qt/QtText.h"

#include <QMimeData>
#include <QUrl>

namespace nv {

bool holdsUrls(const QMimeData &data) {
    return data.hasUrls() && !data.urls().isEmpty();
}

DroppedPaths droppedIn(const QMimeData &data) {
    std::vector<std::filesystem::path> paths;
    std::vector<NotTaken> elsewhere;
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile())
            paths.push_back(pathFromQt(url.toLocalFile()));
        else
            elsewhere.push_back({fromQt(url.toString()), "is no file or folder of this computer"});
    }
    DroppedPaths dropped = sortDropped(paths);
    dropped.notTaken.insert(dropped.notTaken.begin(), elsewhere.begin(), elsewhere.end());
    return dropped;
}

} // namespace nv
