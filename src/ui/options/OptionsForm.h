#pragma once

#include "app/options/Options.h"
#include "ui/options/OptionsTab.h"
#include "ui/options/PathsTab.h"

#include <QDialog>

#include <functional>
#include <vector>

class QSpinBox;
class QTabWidget;

namespace nv {

class ZoneTab;

/// The one place for settings of program and project, and the first step of a new project. All is
/// applied on Okay, but for the formats, which are written at each choice.
class OptionsForm final : public QDialog {
    Q_OBJECT

  public:
    enum class Mode { settings, newProject };

    OptionsForm(Program &program, OptionsDialogs dialogs, Mode mode, QWidget *parent = nullptr);

    /// Called before a new project's values come into force while another project is open.
    std::function<void()> closeOpenProject;
    /// Of an accepted new project.
    std::filesystem::path project() const { return shown().projectDBPath; }
    std::filesystem::path base() const { return shown().rootPath; }

    void accept() override;

  signals:
    /// What the gallery shows is no longer what is ticked here.
    void galleryOutdated();

  private:
    void addTabs(OptionsDialogs dialogs);
    void addTab(OptionsTab *tab, const QString &title);
    QWidget *newStatus();
    QWidget *newBeyond();
    QWidget *newButtons();
    void stayAt(OptionsField field);
    Options shown() const;

    Program &m_program;
    Mode m_mode;
    std::vector<ZoneRow> m_zones;
    Options m_start;
    SettingBoxes m_settings;
    QTabWidget *m_tabs = nullptr;
    std::vector<OptionsTab *> m_ownTabs;
    PathsTab *m_paths = nullptr;
    ZoneTab *m_zone = nullptr;
    QSpinBox *m_rate = nullptr;
};

} // namespace nv
