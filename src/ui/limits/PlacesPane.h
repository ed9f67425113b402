#pragma once

#include "ui/limits/PlacesModel.h"

#include <QSortFilterProxyModel>
#include <QWidget>

#include <functional>

class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QToolButton;
class QTreeView;

namespace nv {

/// The trees of places beside the table. A click on a place shows its rows only; Ctrl and a click
/// adds them to those that are shown, or takes them away again.
class PlacesPane final : public QWidget {
    Q_OBJECT

  public:
    explicit PlacesPane(QWidget *parent = nullptr);

    /// What is open stays open.
    void setPlaces(Places places);
    /// In the place of the trees' note; empty for none.
    void showNote(const QString &note);
    void setChoice(const PlaceChoice &choice);
    const PlaceChoice &choice() const { return m_choice; }
    /// What limits rows by hash sets, which are a tree among the places.
    void setHashLimit(const HashLimit &limit);
    /// The same of tags.
    void setTagLimit(const TagLimit &limit);
    void setTags(const std::vector<NamedTag> &tags, const std::vector<PlaceNode> &nodes);
    /// All rows that the trees count.
    std::uint64_t records() const { return m_model.places().records; }
    void setReadOnly(bool readOnly) { m_readOnly = readOnly; }

    bool eventFilter(QObject *watched, QEvent *event) override;

  signals:
    void choiceMade(const nv::PlaceChoice &choice);
    void hashLimitMade(const nv::HashLimit &limit);
    void tagLimitMade(const nv::TagLimit &limit);
    /// The ticks of the places' rows are to be set or taken.
    void tickWanted(const nv::PlaceChoice &places, bool ticked);
    /// The places' rows are to get a tag, or to lose it.
    void tagWanted(const nv::PlaceChoice &places, qint64 tagID, bool isSet);
    /// They are to get a tag that is to be made.
    void newTagWanted(const nv::PlaceChoice &places);
    /// The places are others than before.
    void filled();

  private:
    QWidget *newTop();
    QWidget *newFoot();
    QTreeView *newTree();
    void showMenu(const QPoint &place);
    void showWhetherFound();
    void showOnly(const PlaceLimit &limit);
    void flip(const PlaceLimit &limit);
    void leaveOut(const PlaceLimit &limit);
    void choose(const PlaceChoice &choice);
    void chooseHashSets(const HashLimit &limit);
    void chooseTags(const TagLimit &limit);
    TagLimit tagsOf(const PlaceLimit &limit) const;
    void addPlaceActions(const PlaceLimit &limit);
    void addHashSetActions(const PlaceLimit &limit);
    void addTagActions(const PlaceLimit &limit);
    void addRowActions(const PlaceLimit &limit);
    QMenu *addTagMenu(const char *name, const QString &text, const PlaceChoice &places, bool isSet);
    bool pressTagKey(int key);
    void openAtFirst();
    QAction *addAction(const char *name, const QString &text, const std::function<void()> &command);
    void activate(const QModelIndex &index, bool adds);
    std::optional<PlaceLimit> limitAt(const QModelIndex &index) const;
    QStringList openPlaces() const;
    void openAgain(const QStringList &open);
    void moveMark();

    PlacesModel m_model;
    QSortFilterProxyModel m_found;
    PlaceChoice m_choice;
    HashLimit m_hashLimit;
    TagLimit m_tagLimit;
    QLineEdit *m_filter = nullptr;
    QTreeView *m_tree = nullptr;
    QLabel *m_chosen = nullptr;
    QToolButton *m_all = nullptr;
    QWidget *m_foot = nullptr; ///< what is chosen
    QLabel *m_none = nullptr;  ///< no place has the text that was typed
    QLabel *m_note = nullptr;
    QMenu *m_menu = nullptr;
    bool m_readOnly = false;
    bool m_hasPlaces = false;
};

} // namespace nv
