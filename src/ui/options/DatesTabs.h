#pragma once

#include "ui/options/OptionsTab.h"

#include <QStringList>

#include <string>
#include <string_view>
#include <vector>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QVBoxLayout;

namespace nv {

/// How dates and times are written. A format is kept at each choice.
class DateTimeTab final : public OptionsTab {
    Q_OBJECT

  public:
    /// `program` must outlive it.
    DateTimeTab(Program &program, const Options &start);

    void putInto(Options &options) const override;

  private:
    using Choose = std::string (*)(Program &, std::string_view);
    QWidget *newFormats(const char *group, const char *box, const QStringList &formats,
                        const QString &chosen, QLineEdit *&entry, const char *name, Choose choose);

    Program &m_program;
    QLineEdit *m_dateFormat = nullptr;
    QLineEdit *m_timeFormat = nullptr;
};

/// The zone in which dates are shown.
class ZoneTab final : public OptionsTab {
    Q_OBJECT

  public:
    /// `zones` must outlive it. `exact` are the names of the exact ones.
    ZoneTab(const std::vector<ZoneRow> &zones, const std::vector<std::string> &exact,
            const Options &start);

    void putInto(Options &options) const override;
    /// To the list, or to the name that goes before it.
    void stay();

  private:
    void addExactZone(QVBoxLayout &column, const std::vector<std::string> &names,
                      const std::string &chosen);
    void showExactZone();
    void showZoneProperties();

    const std::vector<ZoneRow> &m_zones;
    QComboBox *m_zone = nullptr;
    QLineEdit *m_exactZone = nullptr;
    QCheckBox *m_dst = nullptr;
};

} // namespace nv
