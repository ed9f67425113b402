#include "ui/queries/QueryActions.h"

#include "platform/qt/Icons.h"

#include <QAction>
#include <QKeySequence>

namespace nv {

namespace {

struct Facts {
    const char *name;
    QString text;
    QString hint;
    QKeySequence keys;
    const char *picture;
};

/// The keys stand in the hint too: the buttons of the tab show no menu.
QAction *make(QObject *owner, const Facts &facts) {
    auto *action = new QAction(icon(facts.picture), facts.text, owner);
    action->setObjectName(QLatin1String(facts.name));
    action->setShortcut(facts.keys);
    const QString keys = facts.keys.toString(QKeySequence::NativeText);
    action->setToolTip(keys.isEmpty() ? facts.hint
                                      : QStringLiteral("%1 (%2)").arg(facts.hint, keys));
    return action;
}

QString tr(const char *text) {
    return QObject::tr(text);
}

} // namespace

QueryActions::QueryActions(QObject *o)
    : show(make(o, {"actQueryTab", tr("Query &Tab"), tr("Write or build a statement"),
                    Qt::CTRL | Qt::Key_E, "query"})),
      validate(make(o, {"actValidateSQL", tr("&Validate"),
                        tr("Test the statement without running it to its end"),
                        Qt::CTRL | Qt::SHIFT | Qt::Key_Return, ""})),
      apply(make(o,
                 {"actApplyQuery", tr("&Apply"), tr("Put the statement in force and load its rows"),
                  Qt::CTRL | Qt::Key_Return, "filter"})),
      undo(make(o, {"actUndoQuery", tr("&Undo"),
                    tr("Go back to the statement before; once more brings this one again"),
                    Qt::CTRL | Qt::SHIFT | Qt::Key_U, ""})),
      reset(make(
          o,
          {"actDefaultQuery", tr("&Default"), tr("All rows in the order of their dates"), {}, ""})),
      save(make(o, {"actSaveQuery", tr("&Save..."), tr("Store the statement under a name"),
                    Qt::CTRL | Qt::Key_S, ""})),
      remove(make(
          o,
          {"actDeleteQuery", tr("D&elete..."), tr("Delete the stored query chosen here"), {}, ""})),
      builder(make(o, {"actQueryForm", tr("&Query Builder..."),
                       tr("Build a statement condition by condition, of any table"),
                       Qt::CTRL | Qt::SHIFT | Qt::Key_Q, ""})),
      favorites(make(o, {"actFavorites",
                         tr("Manage &favorites (queries)"),
                         tr("Manage favorites (queries)"),
                         {},
                         "star"})) {
    favorites->setIconText(tr("Favorites"));
    setProjectOpen(false, false);
}

/// What is put in force is kept in the project, as its query "_DEFAULT".
void QueryActions::setProjectOpen(bool open, bool readOnly) {
    for (QAction *action : {show, validate})
        action->setEnabled(open);
    for (QAction *action : {apply, undo, reset, save, remove, builder})
        action->setEnabled(open && !readOnly);
}

} // namespace nv
