#pragma once

#include "base/Examiner.h"
#include "views/limits/OriginChoices.h"
#include "views/rows/RecordFilters.h"

#include <QDialog>

#include <vector>

class QCheckBox;
class QComboBox;
class QVBoxLayout;

namespace nv {

/// The dialog of the record filters: a check box a flag, and whose records. It changes nothing
/// itself; the flags are there once it was confirmed.
class FilterForm final : public QDialog {
    Q_OBJECT

  public:
    FilterForm(const RecordFilters &filters, Examiner &examiner, QWidget *parent = nullptr,
               const OriginChoices &origins = {});

    /// Below the boxes: choices that hold whether the filters are enabled or not. Takes it over.
    void addMarks(QWidget &marks);
    RecordFilters filters() const;
    /// Stays open, saying why, when no data source is ticked while the filters are enabled.
    void accept() override;

  private:
    struct FlagBox {
        QCheckBox *box;
        bool RecordFilters::*flag;
    };
    QCheckBox *newBox(const QString &name, const QString &text, bool RecordFilters::*flag);
    QWidget *newGroup(const QString &title, FilterGroup group, int columns);
    QWidget *newOrigins(const OriginChoices &origins);
    void enableBoxes();
    void tickAll(bool ticked);

    Examiner &m_examiner;
    RecordFilters m_start;
    std::vector<FlagBox> m_boxes;       ///< all, that of `enableFilters` first
    std::vector<QComboBox *> m_origins; ///< in the order of originFilters()
    QWidget *m_groups = nullptr;
    QVBoxLayout *m_column = nullptr;
    QCheckBox *m_all = nullptr;
};

} // namespace nv
