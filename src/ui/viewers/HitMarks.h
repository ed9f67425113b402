#pragma once

#include "ui/viewers/HitViewer.h"

#include <QList>
#include <QTextEdit>

#include <vector>

class QPlainTextEdit;
class QTextDocument;

namespace nv {

/// A mark for each hit in a box of text, or in that part of it which begins at `from` and has
/// `length` letters; -1 is the rest of it.
QList<QTextEdit::ExtraSelection> hitSelections(QTextDocument &text, HitFinder *finder, int from = 0,
                                               int length = -1);

/// The hits in a box of text, whatever text the box comes to show.
class HitMarks final : public HitViewer {
    Q_OBJECT

  public:
    /// The box owns it. `viewer` is what has it.
    HitMarks(QPlainTextEdit &box, QWidget &viewer, QString name);

    QWidget &viewer() override { return m_viewer; }
    QString name() const override { return m_name; }
    void take(const RecordHits &hits) override;
    HitCount count() const override;
    /// Chooses the next mark behind the cursor, or before it.
    HitStep goOn(bool forward) override;

  private:
    void mark();

    QPlainTextEdit &m_box;
    QWidget &m_viewer;
    QString m_name;
    std::shared_ptr<HitFinder> m_finder;
    QList<QTextEdit::ExtraSelection> m_marks; ///< from the left
};

} // namespace nv
