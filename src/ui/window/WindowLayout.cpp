#include "ui/window/WindowLayout.h"

#include "app/settings/IniFile.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"

#include <QHeaderView>
#include <QMainWindow>
#include <QSplitter>
#include <QTabWidget>

namespace nv {

namespace {

// The places of windows are no settings: nobody changes them by hand.
constexpr std::string_view kSection = "BEYOND";
constexpr std::string_view kGeometry = "MainGeometry";

std::string keyOf(const char *kind, const QObject &part) {
    return kind + fromQt(part.objectName());
}

/// Parts that the toolkit has made have no name, or one that begins with "qt_". The URL table's
/// columns are kept in its project.
template <class Part>
QList<Part *> namedParts(const QWidget &window) {
    QList<Part *> parts = window.findChildren<Part *>();
    parts.removeIf([](const Part *part) {
        return part->objectName().isEmpty() || part->objectName().startsWith(u"qt_") ||
               part->objectName() == u"URLGridHeader";
    });
    return parts;
}

void keep(IniFile &settings, const std::string &key, const QByteArray &bytes) {
    settings.remember(kSection, key, bytes.toBase64().toStdString());
}

QByteArray kept(const IniFile &settings, const std::string &key) {
    return QByteArray::fromBase64(
        QByteArray::fromStdString(settings.readIniValue(kSection, key, std::string_view())));
}

} // namespace

void keepWindowLayout(const QMainWindow &window, IniFile &settings) {
    keep(settings, std::string(kGeometry), window.saveGeometry());
    for (const QSplitter *splitter : namedParts<QSplitter>(window))
        keep(settings, keyOf("Splitter_", *splitter), splitter->saveState());
    for (const QHeaderView *header : namedParts<QHeaderView>(window))
        keep(settings, keyOf("Header_", *header), header->saveState());
    // By name: a later version may have other tabs.
    for (const QTabWidget *tabs : namedParts<QTabWidget>(window))
        if (const QWidget *front = tabs->currentWidget())
            settings.remember(kSection, keyOf("Tab_", *tabs), fromQt(front->objectName()));
}

void restoreWindowLayout(QMainWindow &window, const IniFile &settings) {
    if (window.restoreGeometry(kept(settings, std::string(kGeometry))) && !window.isMaximized())
        resizeWithinScreen(window, window.size());
    for (QSplitter *splitter : namedParts<QSplitter>(window))
        splitter->restoreState(kept(settings, keyOf("Splitter_", *splitter)));
    for (QHeaderView *header : namedParts<QHeaderView>(window))
        header->restoreState(kept(settings, keyOf("Header_", *header)));
    for (QTabWidget *tabs : namedParts<QTabWidget>(window)) {
        const QString name =
            toQt(settings.readIniValue(kSection, keyOf("Tab_", *tabs), std::string_view()));
        for (int place = 0; !name.isEmpty() && place < tabs->count(); ++place)
            if (tabs->widget(place)->objectName() == name)
                tabs->setCurrentIndex(place);
    }
}

} // namespace nv
