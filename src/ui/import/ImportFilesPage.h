#pragma once

#include "app/program/Program.h"
#include "import/Scan.h"
#include "ui/import/WizardTask.h"

#include <QWidget>

class QLabel;
class QProgressBar;

namespace nv {

class FoundFilesModel;
class ImportZone;

/// The wizard's page of what the scan found: one line a file, of which the examiner takes those to
/// be imported, what could not be looked at, and the time zone.
class ImportFilesPage final : public QWidget {
    Q_OBJECT

  public:
    explicit ImportFilesPage(Program &program);

    /// Looks through the starting directory, by the choice of the page before, and shows what it
    /// found. The window stays live: cancelScan() ends it. Failures are told.
    ScanResult scanEvidence();
    bool isScanning() const { return m_task != nullptr; }
    void cancelScan();

    std::size_t found() const;
    bool hasChosen() const;
    /// What isn't chosen is not imported.
    void leaveOutUnchosen();
    ImportZone &zone() { return *m_zone; }

  signals:
    /// A scan began or ended, or files were chosen.
    void changed();

  private:
    ScanResult runScan();
    void show(const ScanResult &result);

    Program &m_program;
    FoundFilesModel *m_files;
    QLabel *m_step;
    QLabel *m_folder;
    QLabel *m_gaps;
    QProgressBar *m_bar;
    ImportZone *m_zone;
    WizardTask *m_task = nullptr; ///< while the scan runs
};

} // namespace nv
