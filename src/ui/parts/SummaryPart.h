#pragma once

#include "ui/import/ImportSummaryForm.h"
#include "ui/parts/Workbench.h"

#include <optional>

namespace nv {

class NotReadSign;

/// The command Import Summary, and the sign in the status bar of what no import has read.
class SummaryPart final : public QObject {
    Q_OBJECT

  public:
    explicit SummaryPart(Workbench &bench);

  private:
    void addSign();
    void countNotRead();
    void show(ImportSummaryForm::First first);

    Workbench &m_bench;
    NotReadSign *m_sign = nullptr;           ///< the status bar owns it
    std::optional<std::int64_t> m_countedTo; ///< the last entry of the trail at the time
};

} // namespace nv
