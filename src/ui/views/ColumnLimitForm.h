#pragma once

#include "views/ColumnLimit.h"

#include <QDialog>

#include <optional>

class QLabel;
class QLineEdit;
class QListWidget;

namespace nv {

/// Which rows are shown by what stands in one column: ticked values, a part of the text, a range.
class ColumnLimitForm final : public QDialog {
    Q_OBJECT

  public:
    /// `now` is in force.
    ColumnLimitForm(const CountedValues &counted, const ColumnLimit &now, const QString &title,
                    QWidget *parent = nullptr);

    /// Nothing when all rows are shown.
    std::optional<ColumnLimit> limit() const;
    /// Stays open, saying why, for a number that isn't one.
    void accept() override;

  private:
    QWidget *newValues(const CountedValues &counted);
    QLineEdit *newLine(const char *name, const QString &what, const QString &text);
    void showListed(const QString &part);
    void tickListed(bool ticked);
    bool readNumber(const QLineEdit *line, std::optional<double> &number) const;

    ColumnLimit m_now;
    bool m_isCut;
    QLineEdit *m_part = nullptr; ///< null for numbers
    QLineEdit *m_from = nullptr; ///< null for texts
    QLineEdit *m_to = nullptr;
    QListWidget *m_values = nullptr;
    QLabel *m_fault = nullptr;
};

} // namespace nv
