#pragma once

#include "app/project/RecentFiles.h"
#include "ui/frame/MainActions.h"
#include "ui/frame/Theme.h"
#include "views/rows/UrlQuery.h"

#include <QObject>

#include <vector>

class QActionGroup;
class QMainWindow;
class QMenu;
class QToolBar;

namespace nv {

/// Menus and toolbar of the main window, with the entries that aren't fixed.
class MainMenus final : public QObject {
    Q_OBJECT

  public:
    /// Puts them into `window`, which owns them.
    MainMenus(QMainWindow &window, const MainActions &actions);

    void showRecentFiles(const std::vector<RecentFile> &files);
    /// The system queries of the open project, without their leading "_"; none when closed.
    void showQuickQueries(const QStringList &names);
    void showTheme(Theme theme);
    void setEnabled(bool enabled);
    void setProjectOpen(bool open);

  signals:
    void recentFileChosen(const std::filesystem::path &path);
    /// Empty is the default query.
    void quickQueryChosen(const QString &name);
    void sortChosen(nv::SortChoice choice);
    void themeChosen(nv::Theme theme);

  private:
    void buildFile(const MainActions &actions);
    void buildEdit(const MainActions &actions);
    void buildView(const MainActions &actions);
    void buildToolsAndHelp(const MainActions &actions);
    void buildToolBar(const MainActions &actions);
    void addSortChoices();
    void addThemes(QMenu &menu);

    QMainWindow &m_window;
    QMenu *m_file = nullptr;
    QMenu *m_quickQuery = nullptr;
    QMenu *m_sortBy = nullptr;
    QAction *m_recentEnd = nullptr; ///< recent files stand before it
    std::vector<QAction *> m_recent;
    std::vector<QAction *> m_themes; ///< in the order of Theme
    QToolBar *m_toolBar = nullptr;
};

} // namespace nv
