#pragma once

#include <QWidget>

#include <vector>

class QAction;
class QLabel;
class QTableView;

namespace nv {

class AuditModel;
struct AuditRow;

/// The substitution log of one rebuilt page: each of its references, and what stands in its place.
/// Of a page that was rebuilt exactly it tells more, and lets another part be chosen.
class AuditPane final : public QWidget {
    Q_OBJECT

  public:
    explicit AuditPane(QWidget *parent = nullptr);

    void showAudit(std::vector<AuditRow> rows);
    /// No table, but why there is none.
    void showReason(const QString &text);
    void clear() { showReason({}); }

  signals:
    /// The examiner wants to see a record in the table.
    void recordWanted(qint64 id);
    /// Another record is to stand for that reference, of a page that was rebuilt exactly.
    void otherPartWanted(const nv::AuditRow &row);

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    void addTableActions();
    void setWidths();
    const AuditRow *currentRow() const;
    void offerActions() const;
    void goToPart();
    void goToDocument();
    void chooseOther();

    QLabel *m_summary = nullptr;
    AuditModel *m_model = nullptr;
    QTableView *m_table = nullptr;
    QAction *m_goToPart = nullptr;
    QAction *m_goToDocument = nullptr;
    QAction *m_chooseOther = nullptr;
};

} // namespace nv
