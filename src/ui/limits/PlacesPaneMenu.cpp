#include "ui/limits/PlacesPane.h"
#include "ui/table/TagPills.h"

#include <QMenu>
#include <QTreeView>

#include <algorithm>

// What a right click on a place offers.
namespace nv {

namespace {

constexpr std::size_t kTagKeys = 9;

} // namespace

QAction *PlacesPane::addAction(const char *name, const QString &text,
                               const std::function<void()> &command) {
    QAction *action = m_menu->addAction(text, this, command);
    action->setObjectName(QLatin1String(name));
    return action;
}

void PlacesPane::addPlaceActions(const PlaceLimit &limit) {
    const auto has = [&limit](const std::vector<PlaceLimit> &limits) {
        return std::ranges::find(limits, limit) != limits.end();
    };
    addAction("actOnlyPlace", tr("&Only This Place"), [this, limit] { showOnly(limit); });
    addAction("actAddPlace",
              has(m_choice.only) ? tr("Take This Place A&way") : tr("&Add This Place"),
              [this, limit] { flip(limit); })
        ->setToolTip(tr("Ctrl and a click does the same"));
    addAction("actWithoutPlace",
              has(m_choice.without) ? tr("Don't &Leave Out This Place")
                                    : tr("&Leave Out This Place"),
              [this, limit] { leaveOut(limit); });
}

void PlacesPane::addHashSetActions(const PlaceLimit &limit) {
    addAction("actOnlyPlace", tr("&Only These Files"), [this, limit] { showOnly(limit); });
    addAction("actAddPlace",
              hasTerm(m_hashLimit, limit.terms.back()) ? tr("Take These Files A&way")
                                                       : tr("&Add These Files"),
              [this, limit] { flip(limit); })
        ->setToolTip(tr("Ctrl and a click does the same"));
    if (isKnownFiles(limit))
        addAction("actWithoutPlace",
                  m_hashLimit.withoutKnown ? tr("Don't &Hide Known Files")
                                           : tr("&Hide Known Files"),
                  [this, limit] { leaveOut(limit); });
}

void PlacesPane::addTagActions(const PlaceLimit &limit) {
    addAction("actOnlyPlace", tr("&Only These Rows"), [this, limit] { showOnly(limit); });
    addAction("actAddPlace",
              hasAll(m_tagLimit, tagsOf(limit)) ? tr("Take These Rows A&way")
                                                : tr("&Add These Rows"),
              [this, limit] { flip(limit); })
        ->setToolTip(tr("Ctrl and a click does the same"));
}

QMenu *PlacesPane::addTagMenu(const char *name, const QString &text, const PlaceChoice &places,
                              bool isSet) {
    QMenu *menu = m_menu->addMenu(text);
    menu->setObjectName(QLatin1String(name));
    std::size_t number = 0;
    for (const NamedTag &tag : m_model.tags()) {
        QString entry = menuText(tag);
        if (isSet && ++number <= kTagKeys)
            entry += u'\t' + QString::number(number);
        menu->addAction(tagIcon(tag), entry, this, [this, places, id = tag.tagID, isSet] {
            emit tagWanted(places, id, isSet);
        });
    }
    return menu;
}

/// What is done with the rows of a place, or of all that are chosen with it.
void PlacesPane::addRowActions(const PlaceLimit &limit) {
    const PlaceChoice places = m_model.chosenWith(limit);
    const auto count = static_cast<qlonglong>(places.only.size());
    if (count > 1)
        m_menu->addSection(tr("The rows of %L1 places").arg(count));
    else
        m_menu->addSeparator();
    QMenu *tag = addTagMenu("menuTagPlace", tr("&Tag"), places, true);
    if (!m_model.tags().empty())
        tag->addSeparator();
    QAction *make =
        tag->addAction(tr("&New Tag..."), this, [this, places] { emit newTagWanted(places); });
    make->setObjectName(QStringLiteral("actNewPlaceTag"));
    QMenu *untag = addTagMenu("menuUntagPlace", tr("Ta&ke Tag Away"), places, false);
    tag->setEnabled(!m_readOnly);
    untag->setEnabled(!m_readOnly && !m_model.tags().empty());
    addAction("actTickPlace", count > 1 ? tr("T&ick Their Rows") : tr("T&ick Its Rows"),
              [this, places] { emit tickWanted(places, true); })
        ->setEnabled(!m_readOnly);
    addAction("actUntickPlace", count > 1 ? tr("&Untick Their Rows") : tr("&Untick Its Rows"),
              [this, places] { emit tickWanted(places, false); })
        ->setEnabled(!m_readOnly);
    m_menu->addSeparator();
}

void PlacesPane::showMenu(const QPoint &place) {
    const QModelIndex at = m_tree->indexAt(place);
    const auto limit = limitAt(at.isValid() ? at : m_tree->currentIndex());
    m_menu->clear();
    qDeleteAll(m_menu->findChildren<QMenu *>(Qt::FindDirectChildrenOnly));
    if (limit) {
        if (isOfTags(*limit))
            addTagActions(*limit);
        else if (isOfHashSets(*limit))
            addHashSetActions(*limit);
        else
            addPlaceActions(*limit);
        addRowActions(*limit);
    }
    m_menu->addActions(m_tree->actions());
    m_menu->addAction(tr("&Fold All"), m_tree, &QTreeView::collapseAll);
    m_menu->popup(m_tree->viewport()->mapToGlobal(place));
}

} // namespace nv
