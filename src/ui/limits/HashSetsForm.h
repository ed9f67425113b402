#pragma once

#include "app/jobs/HashSetJob.h"

#include <QDialog>

#include <vector>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace nv {

/// The examiner's hash sets: what they are for, how many hashes they have, and how many rows of the
/// project were found in each. What is done with them is the window's.
class HashSetsForm final : public QDialog {
    Q_OBJECT

  public:
    explicit HashSetsForm(QWidget *parent = nullptr);

    void setSets(std::vector<ListedHashSet> sets);
    /// Why no rows can be matched; empty when they can.
    void setHindrance(const QString &why);
    /// What came of the last command.
    void showNote(const QString &note);

  signals:
    void addWanted();
    void removeWanted(const QString &name);
    void matchWanted();
    /// The rows that were found in the set are to be shown.
    void rowsWanted(const QString &name);

  private:
    QPushButton *newButton(const char *name, const QString &text, const QString &hint);
    void addItem(const ListedHashSet &set);
    const ListedHashSet *current() const;
    void enableButtons();

    std::vector<ListedHashSet> m_sets;
    QTreeWidget *m_list = nullptr;
    QLabel *m_empty = nullptr;
    QLabel *m_note = nullptr;
    QLabel *m_why = nullptr;
    QPushButton *m_add = nullptr;
    QPushButton *m_remove = nullptr;
    QPushButton *m_match = nullptr;
    QPushButton *m_rows = nullptr;
    bool m_mayMatch = true;
};

} // namespace nv
