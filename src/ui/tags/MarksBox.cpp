#include "ui/tags/MarksBox.h"

#include "base/DisplayText.h"
#include "platform/qt/QtText.h"
#include "ui/table/TagPills.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>

#include <algorithm>

namespace nv {

namespace {

/// The rows that are shown, without those that are hidden.
HashLimit onlyOf(HashLimit limit) {
    limit.withoutKnown = false;
    return limit;
}

QString shown(const std::string &text) {
    constexpr std::size_t kMost = 60; // characters
    return toQt(displayText(text, kMost));
}

} // namespace

QString shownSetsText(const HashLimit &limit) {
    QStringList names;
    if (limit.notable)
        names += MarksBox::tr("any notable set");
    if (limit.known)
        names += MarksBox::tr("any known set");
    for (const std::string &set : limit.sets)
        names += shown(set);
    return names.join(MarksBox::tr(" or "));
}

MarksBox::MarksBox(const ProjectMarks &marks, const TagLimit &tags, const HashLimit &limit,
                   QWidget *parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("MarksBox"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    m_tag = newChoice("cbNamedTag", tr("Tag"), tr("any or none"));
    m_set = newChoice("cbHashSet", tr("Hash set"), tr("any or none"));
    m_hideKnown = new QCheckBox(tr("Hide &known files"));
    m_hideKnown->setObjectName(QStringLiteral("chkHideKnown"));
    m_hideKnown->setToolTip(
        tr("Hide rows whose file is in a known hash set, unless a notable one has it too"));
    m_hideKnown->setChecked(limit.withoutKnown);
    m_hideKnown->setEnabled(!marks.sets.empty() || limit.withoutKnown);
    row->addWidget(m_hideKnown);
    addTags(marks.tags, tags);
    m_tag->setEnabled(m_tag->count() > 1);
    addSets(marks.sets, onlyOf(limit));
    m_set->setEnabled(m_set->count() > 1);
}

QComboBox *MarksBox::newChoice(const char *name, const QString &label, const QString &any) {
    constexpr int kNameWidth = 12; // characters
    auto *box = new QComboBox;
    box->setObjectName(QLatin1String(name));
    box->setAccessibleName(label);
    // A long name doesn't widen the window.
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(kNameWidth);
    box->addItem(any);
    auto *title = new QLabel(label + u':');
    title->setBuddy(box);
    auto *row = static_cast<QHBoxLayout *>(layout());
    row->addWidget(title);
    row->addWidget(box, 1);
    return box;
}

/// What is in force may be more than one of the choices.
void MarksBox::addTags(const std::vector<NamedTag> &tags, const TagLimit &limit) {
    const auto add = [&](const QIcon &icon, const QString &name, const TagLimit &choice) {
        m_tag->addItem(icon, name, QVariant::fromValue(choice));
        if (choice == limit)
            m_tag->setCurrentIndex(m_tag->count() - 1);
    };
    for (const NamedTag &tag : tags)
        add(tagIcon(tag), shown(tag.name), {{tag.tagID}, false});
    if (!limit.isEmpty() && m_tag->currentIndex() == 0)
        add({}, shown(tagLimitText(tags, limit)), limit);
}

/// The same of hash sets.
void MarksBox::addSets(const std::vector<FoundHashSet> &sets, const HashLimit &limit) {
    std::vector<HashLimit> choices;
    choices.reserve(sets.size() + 3);
    if (!sets.empty()) {
        choices.emplace_back().notable = true;
        choices.emplace_back().known = true;
    }
    for (const FoundHashSet &set : sets)
        choices.emplace_back().sets.push_back(set.name);
    if (limit.isOnly() && std::ranges::find(choices, limit) == choices.end())
        choices.push_back(limit);
    for (const HashLimit &choice : choices) {
        m_set->addItem(shownSetsText(choice), QVariant::fromValue(choice));
        if (choice == limit)
            m_set->setCurrentIndex(m_set->count() - 1);
    }
}

TagLimit MarksBox::tags() const {
    return m_tag->currentData().value<TagLimit>();
}

HashLimit MarksBox::hashSets() const {
    auto limit = m_set->currentData().value<HashLimit>();
    limit.withoutKnown = m_hideKnown->isChecked();
    return limit;
}

} // namespace nv
