#pragma once

#include "reports/case/Redaction.h"

#include <QDialog>

class QLabel;
class QPlainTextEdit;

namespace nv {

/// What a report of a case is to be kept free of, a line each.
class RedactionForm final : public QDialog {
    Q_OBJECT

  public:
    explicit RedactionForm(const RedactionRules &rules, QWidget *parent = nullptr);

    /// As they were when the examiner agreed.
    const RedactionRules &rules() const { return m_rules; }
    /// Stays open, and says why, while a line can't be read.
    void accept() override;

  private:
    RedactionRules m_rules;
    QPlainTextEdit *m_lines = nullptr;
    QLabel *m_fault = nullptr;
};

} // namespace nv
