#pragma once

#include "views/ColumnLimit.h"

#include <QDialog>

#include <optional>

class QFormLayout;
class QLabel;
class QLineEdit;
class QListWidget;

namespace nv {

/// The clock by which dates are typed.
struct FormClock {
    const TimeZone &zone;
    bool enableDSTChanges;
};

/// Which rows are shown by what stands in one column: ticked values, a part of the text, a range of
/// numbers or of dates.
class ColumnLimitForm final : public QDialog {
    Q_OBJECT

  public:
    /// `now` is in force. Dates are those of the zone's clock; their values aren't listed. The zone
    /// must outlive this.
    ColumnLimitForm(const CountedValues &counted, const ColumnLimit &now, const QString &title,
                    const FormClock &clock, QWidget *parent = nullptr);

    /// Nothing when all rows are shown.
    std::optional<ColumnLimit> limit() const;
    /// Stays open, saying why, for a number or a date that isn't one.
    void accept() override;

  private:
    void addLines(QFormLayout &lines);
    std::optional<DateRange> dates() const;
    QString faultOfDates() const;
    QWidget *newValues(const CountedValues &counted);
    QLineEdit *newLine(const char *name, const QString &what, const QString &text);
    void showListed(const QString &part);
    void tickListed(bool ticked);
    bool readNumber(const QLineEdit *line, std::optional<double> &number) const;

    ColumnLimit m_now;
    bool m_isCut;
    QLineEdit *m_part = nullptr; ///< null for numbers
    FormClock m_clock;
    QLineEdit *m_from = nullptr; ///< null for texts
    QLineEdit *m_to = nullptr;
    QListWidget *m_values = nullptr;
    QLabel *m_fault = nullptr;
};

} // namespace nv
