#pragma once

#include "app/jobs/ReportTags.h"
#include "base/Examiner.h"
#include "reports/report/ReportWriter.h"
#include "ui/reports/RedactionForm.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QRadioButton;
class QStackedWidget;

namespace nv {

class CaseReportBox;

/// What a report is to hold, and how it calls itself.
class ReportForm final : public QDialog {
    Q_OBJECT

  public:
    /// The rows of the table.
    struct Rows {
        std::size_t all = 0;
        std::size_t ticked = 0;
        std::vector<ReportTag> tags;
        std::vector<std::string> chosenTags; ///< of the last report; empty for none
        RedactionAdviser adviser = {};       ///< of the redactions that are written
    };
    /// `report` and `examiner` must outlive it.
    ReportForm(const ReportWriter &report, Rows rows, Examiner &examiner,
               QWidget *parent = nullptr);

    /// Takes what the examiner chose into `report`.
    void apply(ReportWriter &report) const;
    void accept() override;
    /// The report holds rows with one of these tags only; empty for no such limit.
    std::vector<std::string> chosenTags() const;
    /// The report is to be published as soon as it is made.
    bool publishes() const { return m_publishes; }

  private:
    void addWhat(QFormLayout &form);
    void addRows(QFormLayout &form);
    void addTags(QFormLayout &form);
    std::vector<std::string> checkedTags() const;
    void countTagged();
    void addTexts(QFormLayout &form);
    void addPictures(QFormLayout &form);
    void addContents(QFormLayout &form);
    QWidget *newButtons();
    void explain();
    void show(const ReportWriter &report);
    void followType();
    void previewLogo();
    QWidget *picturePath(QLineEdit *&path, const char *name, const QString &title);
    int type() const; ///< -1 when none is chosen

    Rows m_rows;
    Examiner &m_examiner;
    QComboBox *m_type = nullptr;
    QLabel *m_explanation = nullptr;
    QLabel *m_kinds = nullptr; ///< of rows, where the explanation leaves doubt
    QRadioButton *m_all = nullptr;
    QRadioButton *m_tagged = nullptr;
    QRadioButton *m_named = nullptr; ///< null in a project without tags
    QListWidget *m_tags = nullptr;
    QRadioButton *m_ascending = nullptr;
    QRadioButton *m_descending = nullptr;
    QLineEdit *m_title = nullptr;
    QLineEdit *m_caseNumber = nullptr;
    QLineEdit *m_organization = nullptr;
    QLineEdit *m_reportedBy = nullptr;
    QCheckBox *m_useLogo = nullptr;
    QLineEdit *m_logo = nullptr;
    QLabel *m_logoPreview = nullptr;
    QCheckBox *m_useThumbnail = nullptr;
    QLineEdit *m_thumbnail = nullptr;
    QCheckBox *m_header = nullptr;
    QCheckBox *m_trail = nullptr;
    QCheckBox *m_origins = nullptr;
    QCheckBox *m_audit = nullptr;
    QCheckBox *m_links = nullptr;
    QCheckBox *m_notes = nullptr;
    QCheckBox *m_timeRebuilt = nullptr;
    QCheckBox *m_dataSource = nullptr;
    QCheckBox *m_user = nullptr;
    QComboBox *m_width = nullptr;
    CaseReportBox *m_case = nullptr;
    QStackedWidget *m_contents = nullptr; ///< the classic boxes, and those of a case
    bool m_publishes = false;
};

} // namespace nv
