#pragma once

#include "ui/import/ImportSummaryPane.h"

#include <QDialog>

class QCheckBox;

namespace nv {

/// The summary of the last import, or of all, at any later time. A project must be open.
class ImportSummaryForm final : public QDialog {
    Q_OBJECT

  public:
    enum class First {
        counts, ///< of the last import
        notRead ///< what any import hasn't read
    };
    ImportSummaryForm(Program &program, ChoosePage choosePage, First first,
                      QWidget *parent = nullptr);

    /// What to go on with; nothing when the form was only closed.
    std::optional<AfterSummary> next() const { return m_next; }

  private:
    void loadFirst(First first);
    void load(ImportScope scope);

    ImportSummaryPane *m_pane;
    QCheckBox *m_all; ///< only where the project tells the last import from others
    std::optional<AfterSummary> m_next;
};

} // namespace nv
