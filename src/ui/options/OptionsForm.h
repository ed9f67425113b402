#pragma once

#include "app/options/Options.h"
#include "ui/options/SettingBox.h"

#include <QDialog>

#include <functional>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QScrollBar;
class QSpinBox;
class QTabWidget;
class QVBoxLayout;

namespace nv {

/// The dialogs behind the browse buttons; nothing is given back on Cancel.
struct OptionsDialogs {
    std::function<std::optional<std::filesystem::path>()> newProject;
    std::function<std::optional<std::filesystem::path>(const std::string &title,
                                                       const std::filesystem::path &start)>
        folder;
};

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
    QWidget *newPaths();
    QWidget *newDateTime();
    QWidget *newZone();
    QWidget *newGallery();
    QWidget *newPard();
    QWidget *newThumbnails();
    QWidget *newSafety();
    QWidget *newStatus();
    QWidget *newBeyond();
    QWidget *newButtons();
    QLineEdit *addPath(QFormLayout &form, int index, const QString &label, const char *name,
                       const std::filesystem::path &path, const QString &hint);
    QWidget *newFormats(const char *group, const char *box, const QStringList &formats,
                        const QString &chosen, QLineEdit *&entry, QLabel *&sample, const char *name,
                        std::string (*choose)(Program &, std::string_view));
    /// The setting's own control, which Okay asks.
    QWidget *addSetting(QVBoxLayout &column, const SettingFacts &row);
    QButtonGroup *addSizes(QFormLayout &form, const QString &label, const char *name, int width);
    void btnPathClick(int index);
    void chooseLogo();
    void addExactZone(QVBoxLayout &column);
    void showExactZone();
    void showZoneProperties();
    void showPard();
    void showConnection();
    void btnLocalAreaConnectionClick();
    std::string connectionName() const;
    void stayAt(OptionsField field);
    Options shown() const;

    Program &m_program;
    OptionsDialogs m_dialogs;
    Mode m_mode;
    std::vector<ZoneRow> m_zones;
    Options m_start;
    std::filesystem::path m_overwriteAgreed;
    std::optional<bool> m_offline; ///< when the connection was switched here
    QTabWidget *m_tabs = nullptr;
    std::vector<std::pair<const SettingFacts *, SettingBox>> m_settings;
    std::vector<QLineEdit *> m_paths; ///< in the order of the browse buttons
    QLineEdit *m_dateFormat = nullptr;
    QLabel *m_day = nullptr;
    QLineEdit *m_timeFormat = nullptr;
    QLabel *m_time = nullptr;
    QComboBox *m_zone = nullptr;
    QLineEdit *m_exactZone = nullptr;
    QCheckBox *m_dst = nullptr;
    QComboBox *m_perPage = nullptr;
    QComboBox *m_timeout = nullptr;
    QCheckBox *m_pard = nullptr;
    QSpinBox *m_from = nullptr;
    QSpinBox *m_to = nullptr;
    QLabel *m_pardText = nullptr;
    QButtonGroup *m_viewerSizes = nullptr;
    QButtonGroup *m_reportSizes = nullptr;
    QButtonGroup *m_connection = nullptr;
    QLineEdit *m_connectionName = nullptr;
    QPushButton *m_switch = nullptr;
    QLabel *m_status = nullptr;
    QSpinBox *m_rate = nullptr;
};

} // namespace nv
