#pragma once

#include "ui/parts/Workbench.h"

class QLabel;

namespace nv {

class FilterForm;
class MarksBox;

/// The record filters in the main window: their dialog, and a sign in the status bar while they are
/// on, since rows that are hidden in silence look like rows that aren't there.
class FiltersPart final : public QObject, public Limiter {
    Q_OBJECT

  public:
    explicit FiltersPart(Workbench &bench);

    // Limiter
    QVariant limit() const override;
    void setLimit(const QVariant &limit) override;
    std::vector<LimitChip> chips() const override;

  private:
    void chooseFilters();
    const MarksBox *addMarks(FilterForm &form) const;
    void takeMarks(const MarksBox &marks);
    void showSign();

    Workbench &m_bench;
    QLabel *m_sign = nullptr;
};

} // namespace nv
