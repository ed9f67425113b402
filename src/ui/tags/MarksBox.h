#pragma once

#include "db/hashes/FoundHashSets.h"
#include "db/marks/NamedTags.h"
#include "views/limits/HashLimit.h"
#include "views/limits/TagLimit.h"

#include <QWidget>

#include <vector>

class QCheckBox;
class QComboBox;

namespace nv {

/// What a project has of tags and hash sets.
struct ProjectMarks {
    std::vector<NamedTag> tags;
    std::vector<FoundHashSet> sets;
};

/// Choices of one tag and of hash sets, for dialogs that choose rows.
class MarksBox final : public QWidget {
    Q_OBJECT

  public:
    /// The limits are in force.
    MarksBox(const ProjectMarks &marks, const TagLimit &tags, const HashLimit &limit,
             QWidget *parent = nullptr);

    TagLimit tags() const;
    HashLimit hashSets() const;

  private:
    QComboBox *newChoice(const char *name, const QString &label, const QString &any);
    void addTags(const std::vector<NamedTag> &tags, const TagLimit &limit);
    void addSets(const std::vector<FoundHashSet> &sets, const HashLimit &limit);

    QComboBox *m_tag = nullptr;
    QComboBox *m_set = nullptr;
    QCheckBox *m_hideKnown = nullptr;
};

/// "any notable set or library", for those that the limit shows.
QString shownSetsText(const HashLimit &limit);

} // namespace nv
