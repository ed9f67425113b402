#include "ui/viewers/HitMarks.h"

#include <QPlainTextEdit>
#include <QTextDocument>

#include <algorithm>
#include <iterator>
#include <utility>

namespace nv {

QList<QTextEdit::ExtraSelection> hitSelections(QTextDocument &document, HitFinder *finder, int from,
                                               int length) {
    QList<QTextEdit::ExtraSelection> marks;
    if (finder == nullptr)
        return marks;
    const QByteArray text = document.toPlainText().mid(from, length).toUtf8();
    qsizetype byte = 0;
    qsizetype letter = from;
    const auto letterAt = [&](std::size_t place) {
        const auto to = static_cast<qsizetype>(place);
        letter += QString::fromUtf8(text.constData() + byte, to - byte).size();
        byte = to;
        return static_cast<int>(letter);
    };
    const auto spans = finder->marksIn({text.constData(), static_cast<std::size_t>(text.size())});
    marks.reserve(static_cast<qsizetype>(spans.size()));
    for (const TextSpan &span : spans) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(&document);
        mark.cursor.setPosition(letterAt(span.at));
        mark.cursor.setPosition(letterAt(span.at + span.length), QTextCursor::KeepAnchor);
        mark.format.setBackground(kHitGround);
        mark.format.setForeground(Qt::black);
        marks.push_back(mark);
    }
    return marks;
}

HitMarks::HitMarks(QPlainTextEdit &box, QWidget &viewer, QString name)
    : HitViewer(&box), m_box(box), m_viewer(viewer), m_name(std::move(name)) {
    connect(&box, &QPlainTextEdit::textChanged, this, &HitMarks::mark);
    connect(&box, &QPlainTextEdit::selectionChanged, this, &HitMarks::changed);
}

void HitMarks::take(const RecordHits &hits) {
    if (m_finder == hits.finder)
        return;
    m_finder = hits.finder;
    mark();
}

void HitMarks::mark() {
    m_marks = hitSelections(*m_box.document(), m_finder.get());
    m_box.setExtraSelections(m_marks);
    emit changed();
}

HitCount HitMarks::count() const {
    HitCount count;
    count.all = static_cast<std::size_t>(m_marks.size());
    count.isMore = count.all >= HitFinder::kMostMarks;
    const QTextCursor now = m_box.textCursor();
    const auto chosen = std::ranges::find_if(m_marks, [&](const QTextEdit::ExtraSelection &mark) {
        return now.hasSelection() && mark.cursor.selectionStart() == now.selectionStart() &&
               mark.cursor.selectionEnd() == now.selectionEnd();
    });
    if (chosen != m_marks.end())
        count.at = static_cast<std::size_t>(std::distance(m_marks.begin(), chosen));
    return count;
}

HitStep HitMarks::goOn(bool forward) {
    const QTextCursor now = m_box.textCursor();
    const QTextCursor *to = nullptr;
    for (const QTextEdit::ExtraSelection &mark : m_marks) {
        // A cursor that nobody has moved stands on the first letter.
        if (forward && mark.cursor.selectionStart() >= now.selectionEnd()) {
            to = &mark.cursor;
            break;
        }
        if (!forward && mark.cursor.selectionEnd() <= now.selectionStart())
            to = &mark.cursor;
    }
    if (to == nullptr)
        return HitStep::none;
    m_box.setTextCursor(*to);
    m_box.ensureCursorVisible();
    return HitStep::gone;
}

} // namespace nv
