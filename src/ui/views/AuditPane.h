#pragma once

#include "views/Audit.h"

#include <QWidget>

class QLabel;
class QTableView;

namespace nv {

class AuditModel;

/// The substitution log of one rebuilt page: each of its references, and what stands in its place.
class AuditPane final : public QWidget {
    Q_OBJECT

  public:
    explicit AuditPane(QWidget *parent = nullptr);

    void showAudit(std::vector<AuditRow> rows);
    /// No table, but why there is none.
    void showReason(const QString &text);
    void clear() { showReason({}); }

  protected:
  private:
    QLabel *m_summary = nullptr;
    AuditModel *m_model = nullptr;
    QTableView *m_table = nullptr;
};

} // namespace nv
