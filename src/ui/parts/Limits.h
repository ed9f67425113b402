#pragma once

#include <QObject>
#include <QString>
#include <QUndoStack>
#include <QVariant>

#include <vector>

namespace nv {

/// One thing by which rows are hidden, in words, and how it is taken back.
struct LimitChip {
    QString text;
    QVariant without; ///< what the limiter is left with; invalid when that hides nothing
};

/// Something that hides rows of the table: a query, a host, a span of time, a search ... What it
/// hides them by is a value, by which it is shown, taken back and brought back.
class Limiter {
  public:
    virtual ~Limiter() = default;
    /// What hides rows of the table now; invalid when nothing does. Equal values hide the same.
    virtual QVariant limit() const = 0;
    /// Puts a limit in force from the next load on, and loads nothing. An invalid one hides
    /// nothing.
    virtual void setLimit(const QVariant &limit) = 0;
    virtual std::vector<LimitChip> chips() const = 0;
    /// Other rows than those of the last query may come: it has to be asked again. Otherwise it is
    /// enough to narrow its rows.
    virtual bool asksAgain() const { return true; }
    /// The examiner is still at work on it: undo takes the steps between as one.
    virtual bool isBeingTyped() const { return false; }
};

/// All that hides rows of the table, in one list: its chips, taking it back, undo and redo.
/// A limiter is added once and reports nothing: after each load the list looks by itself.
class Limits final : public QObject {
    Q_OBJECT

  public:
    Limits();

    /// Stays until the end; chips stand in this order.
    void add(Limiter &limiter);

    struct Chip {
        Limiter *limiter = nullptr;
        LimitChip chip;
    };
    std::vector<Chip> chips() const;
    void lift(const Chip &chip);
    void liftAll();

    /// The examiner is typing something that limits rows.
    bool isTyped() const;

    /// What the window can undo. Others may put their commands on it too.
    QUndoStack &history() { return m_history; }

    /// The rows are those of the limits in force now.
    void look();
    /// The project was closed: nothing of it is brought back.
    void forget();

  signals:
    /// Rows have to be hidden by other limits: by asking the query again, or not.
    void loadWanted(bool asksAgain);
    /// Other chips than before.
    void changed();

  private:
    friend class LimitsChange;
    using States = std::vector<QVariant>; ///< by the limiters
    void put(const States &states);

    States statesNow() const;
    bool isTypedAlone(const States &before) const;

    std::vector<Limiter *> m_limiters;
    States m_states;  ///< as they were looked at last
    int m_typing = 0; ///< counts what is typed; steps of the same are one
    bool m_wasTyped = false;
    bool m_isFirst = true;    ///< the limits with which a project comes up are no step
    bool m_isPutting = false; ///< the load is one of undo
    QUndoStack m_history;
};

} // namespace nv
