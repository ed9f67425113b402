#pragma once

#include "ui/viewers/RecordPane.h"
#include "views/links/LinkList.h"

#include <QWidget>

#include <functional>

class QAction;
class QLabel;
class QPushButton;
class QTableView;

namespace nv {

class LinksModel;

/// The pairs that link analysis found for one record: the pages that link to it, and the records
/// that it links to.
class LinksPane final : public QWidget, public RecordPane {
    Q_OBJECT

  public:
    /// Where the pane gets its pairs; only asked while a project is open.
    struct Source {
        std::function<LinkList(UrlId)> links;
        std::function<bool()> isAnalysed; ///< whether the project has pairs at all
    };
    explicit LinksPane(Source source, QWidget *parent = nullptr);

    void showRecord(UrlId id) override;
    void clear() override;

  signals:
    /// The examiner wants to see the other record of a pair in the table.
    void recordWanted(qint64 id);
    void analysisWanted();

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    void buildTable();
    void addTableActions();
    void showRows(std::vector<LinkRow> rows);
    /// No table, but why there is none and what to do about it.
    void showReason(const QString &text, bool offersAnalysis);
    void goToOther();

    Source m_source;
    QLabel *m_summary = nullptr;
    QPushButton *m_analyse = nullptr;
    LinksModel *m_model = nullptr;
    QTableView *m_table = nullptr;
};

} // namespace nv
