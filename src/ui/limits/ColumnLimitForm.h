#pragma once

#include "views/limits/ColumnLimit.h"

#include <QDialog>

#include <optional>

class QFormLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;

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
    /// Stays open, saying why, for a number or a date that isn't one, and while values that aren't
    /// listed yet would be hidden.
    void accept() override;

    /// Values come as they are counted in so many rows, from now on until endCounting().
    void startCounting(qint64 rows);
    void showProgress(int hundredths);
    /// Those of the first rows. What was ticked stays so.
    void showCounted(const CountedValues &counted, qint64 rows);
    /// Those of all rows; with a failure those stay that are listed.
    void endCounting(const CountedValues &counted, const QString &failure);

  signals:
    void countingStopped();

  private:
    void addLines(QFormLayout &lines);
    std::optional<DateRange> dates() const;
    QString faultOfDates() const;
    QWidget *newValues(const CountedValues &counted);
    QWidget *newCounting();
    void list(const CountedValues &counted);
    void addValue(const QByteArray &value, qint64 rows, Qt::CheckState state);
    Qt::CheckState stateOfNew(const QByteArray &value) const;
    bool hidesWhatIsNotListed() const;
    void stopCounting();
    QLineEdit *newLine(const char *name, const QString &what, const QString &text);
    void showListed(const QString &part);
    void tickListed(bool ticked);
    bool readNumber(const QLineEdit *line, std::optional<double> &number) const;

    ColumnLimit m_now;
    qint64 m_all = 0; ///< rows that are counted; 0 when all are
    qint64 m_done = 0;
    std::optional<bool> m_ticksNew; ///< what was asked of all values
    QLineEdit *m_part = nullptr;    ///< null for numbers
    FormClock m_clock;
    QLineEdit *m_from = nullptr; ///< null for texts
    QLineEdit *m_to = nullptr;
    QListWidget *m_values = nullptr;
    QLineEdit *m_search = nullptr;
    QLabel *m_others = nullptr;
    QWidget *m_counting = nullptr;
    QLabel *m_counted = nullptr;
    QProgressBar *m_progress = nullptr;
    QPushButton *m_stop = nullptr;
    QLabel *m_fault = nullptr;
};

} // namespace nv
