#pragma once

#include "reports/case/Redaction.h"

#include <QDialog>
#include <QTimer>

#include <functional>
#include <string>
#include <vector>

class QBoxLayout;
class QLabel;
class QPlainTextEdit;

namespace nv {

/// Finds out which of the rules fit no row, a sentence each, and tells it later; not any more where
/// it is asked again before.
using RedactionAdviser =
    std::function<void(const RedactionRules &, std::function<void(std::vector<std::string>)>)>;

/// What a report of a case is to be kept free of, a line each.
class RedactionForm final : public QDialog {
    Q_OBJECT

  public:
    /// Without an adviser nothing is told of the rules.
    explicit RedactionForm(const RedactionRules &rules, RedactionAdviser adviser = {},
                           QWidget *parent = nullptr);

    /// As they were when the examiner agreed.
    const RedactionRules &rules() const { return m_rules; }
    /// Stays open, and says why, while a line can't be read.
    void accept() override;

  private:
    void addLabels(QBoxLayout &column);
    void advise();
    void tell(const std::vector<std::string> &notes);

    RedactionRules m_rules;
    RedactionAdviser m_adviser;
    QTimer m_pause; ///< after a letter
    QPlainTextEdit *m_lines = nullptr;
    QLabel *m_fault = nullptr;
    QLabel *m_advice = nullptr;
};

} // namespace nv
