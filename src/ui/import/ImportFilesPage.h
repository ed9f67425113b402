#pragma once

#include "app/program/Program.h"
#include "import/Scan.h"
#include "ui/import/ImportProject.h"
#include "ui/import/WizardTask.h"
#include "views/overview/FoundTree.h"

#include <QWidget>

#include <filesystem>
#include <functional>
#include <vector>

class QLabel;
class QProgressBar;
class QTreeView;

namespace nv {

class FoundFilesModel;
class ImportNetwork;
class ImportZone;

/// The wizard's page of what the scan found: a tree of its places, of which the examiner takes what
/// is to be imported, what could not be looked at, the time zone, the file of a new project, and
/// the warning of a network: all that has to be settled before an import.
class ImportFilesPage final : public QWidget {
    Q_OBJECT

  public:
    ImportFilesPage(Program &program, ChooseProject chooseProject);

    /// Looks through the places, by the choice of the page before, and shows what it found. The
    /// window stays live: cancelScan() ends it. Failures are told.
    ScanResult scanEvidence(const std::vector<std::filesystem::path> &places);
    bool isScanning() const { return m_task != nullptr; }
    void cancelScan();

    std::size_t found() const;
    /// Of the files that are read.
    std::size_t chosen() const;
    /// "To be imported: 3 of 4 files, 12,345 bytes".
    QString chosenText() const;
    /// Gives the import's job what is chosen. Another project may have come since the scan, and
    /// with it another job.
    void handOver();
    ImportZone &zone() { return *m_zone; }
    ImportProject &project() { return *m_project; }
    ImportNetwork &network() { return *m_network; }
    /// A project or the network may have come or gone since it was shown last.
    void look();

  signals:
    /// A scan began or ended, or files were chosen.
    void changed();

  private:
    ScanResult runScan(const std::vector<std::filesystem::path> &places);
    void run(const std::function<void(WizardTask &)> &work);
    void group(ScanResult &result);
    void show(const ScanResult &result);
    void openPlaces();

    Program &m_program;
    FoundFilesModel *m_files;
    QTreeView *m_tree;
    QLabel *m_step;
    QLabel *m_folder;
    QLabel *m_gaps;
    QLabel *m_total;
    QProgressBar *m_bar;
    QLabel *m_pace;
    ImportZone *m_zone;
    ImportProject *m_project;
    ImportNetwork *m_network;
    ScanResult m_scanned;
    FoundTree m_found;
    WizardTask *m_task = nullptr; ///< while the scan runs
};

} // namespace nv
