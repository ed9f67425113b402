#pragma once

#include <QDialog>

#include <vector>

class QTreeWidget;

namespace nv {

struct TrailEntry;

/// What was done with the project, one line a deed, with a command that hashes the imported files
/// again.
class CaseTrailForm final : public QDialog {
    Q_OBJECT

  public:
    explicit CaseTrailForm(QWidget *parent = nullptr);

    void showEntries(const std::vector<TrailEntry> &entries);

  signals:
    void verifyWanted();

  private:
    void copyAll();

    QTreeWidget *m_list = nullptr;
};

} // namespace nv
