#pragma once

#include "base/Examiner.h"
#include "reports/exports/Export.h"
#include "reports/exports/ExportFile.h"

#include <QDialog>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;

namespace nv {

/// Asks what an export writes, and where to.
class ExportForm final : public QDialog {
    Q_OBJECT

  public:
    /// `job` is filled when the dialog is confirmed; its `columnsAsString` gives the columns to
    /// choose from and its `SelectedURLs` the tagged rows. `rows` is the table's number of rows.
    ExportForm(Export &job, std::size_t rows, Untouchable untouchable, Examiner &examiner,
               QWidget *parent = nullptr);

    void accept() override;
    void reject() override;

  private:
    QWidget *newColumns();
    QWidget *newRowChoice(std::size_t rows);
    QWidget *newFormatChoice();
    QWidget *newNamesChoice();
    QWidget *newFileLine();
    void tickAll(bool on);
    void browse();
    void followFormat();
    ExportFormat format() const;
    void fillJob(const std::filesystem::path &path);

    Export &m_job;
    Untouchable m_untouchable;
    Examiner &m_examiner;
    QWidget *m_columnBox = nullptr;
    QListWidget *m_columns = nullptr; ///< List1
    QCheckBox *m_all = nullptr;       ///< chkAll
    QButtonGroup *m_rows = nullptr;   ///< opRows: 0 all, 1 tagged
    QButtonGroup *m_delimiter = nullptr;
    QWidget *m_delimiters = nullptr;
    QComboBox *m_format = nullptr;
    QComboBox *m_names = nullptr;
    QCheckBox *m_guard = nullptr;
    QLineEdit *m_file = nullptr;
};

} // namespace nv
