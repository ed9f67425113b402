#pragma once

#include "base/Examiner.h"
#include "reports/ReportWriter.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QRadioButton;
class QStackedWidget;

namespace nv {

class CaseReportBox;

/// What a report is to hold, and how it calls itself.
class ReportForm final : public QDialog {
    Q_OBJECT

  public:
    /// `report` and `examiner` must outlive it. The counts are those of the table.
    ReportForm(const ReportWriter &report, std::size_t rows, std::size_t tagged, Examiner &examiner,
               QWidget *parent = nullptr);

    /// Takes what the examiner chose into `report`.
    void apply(ReportWriter &report) const;
    void accept() override;
    /// The report is to be published as soon as it is made.
    bool publishes() const { return m_publishes; }

  private:
    void addWhat(QFormLayout &form, std::size_t rows, std::size_t tagged);
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

    Examiner &m_examiner;
    QComboBox *m_type = nullptr;
    QLabel *m_explanation = nullptr;
    QRadioButton *m_all = nullptr;
    QRadioButton *m_tagged = nullptr;
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
