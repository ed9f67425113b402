#pragma once

#include "views/limits/TagLimit.h"

#include <QWidget>

#include <cstdint>
#include <optional>
#include <vector>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace nv {

/// The list of a project's tags: colour, name, key, how many rows have it, and its note.
class TagsPane final : public QWidget {
    Q_OBJECT

  public:
    explicit TagsPane(QWidget *parent = nullptr);

    /// What is current stays so, when it is still there.
    void setTags(const std::vector<NamedTag> &tags, const TagCounts &counts);
    /// The tags to whose rows the table is limited.
    void setLimit(const TagLimit &limit);
    std::optional<std::int64_t> currentTag() const;

  signals:
    void newRequested();
    void editRequested(qint64 tagID);
    void deleteRequested(qint64 tagID);
    /// By `steps` places, down or (when negative) up.
    void moveRequested(qint64 tagID, int steps);
    /// The table shall show rows with this tag only.
    void rowsRequested(qint64 tagID);
    void allRowsRequested();

  private:
    QWidget *newButtons();
    QPushButton *newButton(const char *name, const QString &text);
    void enableButtons();
    void showRows();

    std::vector<NamedTag> m_tags;
    QTreeWidget *m_list = nullptr;
    QLabel *m_empty = nullptr;
    QLabel *m_limit = nullptr;
    QPushButton *m_show = nullptr;
    QPushButton *m_all = nullptr;
    std::vector<QPushButton *> m_ofTag; ///< need a tag that is chosen
};

} // namespace nv
