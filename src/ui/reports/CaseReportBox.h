#pragma once

#include "reports/case/CaseOptions.h"
#include "ui/reports/RedactionForm.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QPushButton;

namespace nv {

/// The choices that a report of a case has and the classic ones lack.
class CaseReportBox final : public QWidget {
    Q_OBJECT

  public:
    explicit CaseReportBox(QWidget *parent = nullptr);

    void show(const CaseOptions &options);
    void apply(CaseOptions &options) const;
    /// Who chooses rows by their tags means cards of these, and not of ticked ones.
    void preferTaggedCards();
    const RedactionRules &redactions() const { return m_redactions; }

    RedactionAdviser adviser; ///< of the redactions that are written

  private:
    void chooseRedactions();
    void countRedactions();

    RedactionRules m_redactions;
    QComboBox *m_cards = nullptr;
    QCheckBox *m_timeline = nullptr;
    QCheckBox *m_evidence = nullptr;
    QCheckBox *m_tagNotes = nullptr;
    QPushButton *m_redact = nullptr;
};

} // namespace nv
