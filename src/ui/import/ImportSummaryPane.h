#pragma once

#include "app/program/Program.h"
#include "views/overview/ImportOverview.h"

#include <QWidget>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QTreeWidget;

namespace nv {

class ImportLightBox;

/// Asks for the file of a page; nothing is chosen when the examiner cancels.
using ChoosePage =
    std::function<std::optional<std::filesystem::path>(const std::filesystem::path &offered)>;

/// The system's dialog for a page, which asks before it replaces a file.
std::optional<std::filesystem::path> choosePageByDialog(const std::filesystem::path &offered);

/// What to go on with after a summary was read.
enum class AfterSummary { table, thumbnails, searchIndex };

/// What came of an import, as the open project tells it: headline and light, counts, what wasn't
/// read and why, and what can be done next.
class ImportSummaryPane final : public QWidget {
    Q_OBJECT

  public:
    ImportSummaryPane(Program &program, ChoosePage choosePage, QWidget *parent = nullptr);

    /// Reads the project.
    void load(ImportScope scope);
    /// Of the import that has just been made.
    void load(const ImportSummary &summary);
    /// An import that hasn't come to its files.
    void showFailure(const std::string &reason);
    /// Leads to the list of what wasn't read, where there is one.
    void showNotRead();
    const ImportOverview &overview() const { return m_overview; }

  signals:
    /// The examiner wants to leave for this.
    void wanted(nv::AfterSummary what);

  private:
    QWidget *newButtons();
    using Load = std::function<Walk(SQLite::Database &project, ImportOverview &overview)>;
    void load(const Load &load, const std::string &everyFile);
    void showOverview();
    void showCounts();
    void showGaps();
    void showNext();
    void save();

    Program &m_program;
    ChoosePage m_choosePage;
    ImportOverview m_overview;
    ImportLightBox *m_light = nullptr;
    QLabel *m_span = nullptr;
    QLabel *m_notes = nullptr;
    QTabWidget *m_tabs = nullptr;
    QTreeWidget *m_counts = nullptr;
    QTreeWidget *m_gaps = nullptr;
    QPlainTextEdit *m_everyFile = nullptr;
    int m_gapsTab = 0;
    int m_everyFileTab = 0;
    QPushButton *m_notRead = nullptr;
    QPushButton *m_thumbnails = nullptr;
    QPushButton *m_index = nullptr;
};

} // namespace nv
