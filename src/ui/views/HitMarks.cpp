#include "ui/views/HitMarks.h"

#include <QPlainTextEdit>

#include <algorithm>
#include <iterator>
#include <utility>

namespace nv {

HitMarks::HitMarks(QPlainTextEdit &box) : QObject(&box), m_box(box) {
    connect(&box, &QPlainTextEdit::textChanged, this, &HitMarks::mark);
}

void HitMarks::setMarker(Marker marker) {
    m_marker = std::move(marker);
    mark();
}

void HitMarks::mark() {
    m_marks.clear();
    QList<QTextEdit::ExtraSelection> shown;
    if (m_marker) {
        const QByteArray text = m_box.toPlainText().toUtf8();
        qsizetype byte = 0;
        qsizetype letter = 0;
        const auto letterAt = [&](std::size_t place) {
            const auto to = static_cast<qsizetype>(place);
            letter += QString::fromUtf8(text.constData() + byte, to - byte).size();
            byte = to;
            return static_cast<int>(letter);
        };
        for (const TextSpan &span :
             m_marker({text.constData(), static_cast<std::size_t>(text.size())})) {
            const int begin = letterAt(span.at);
            m_marks.push_back({begin, letterAt(span.at + span.length)});
        }
    }
    shown.reserve(static_cast<qsizetype>(m_marks.size()));
    for (const Mark &each : m_marks) {
        QTextEdit::ExtraSelection selection;
        selection.cursor = QTextCursor(m_box.document());
        selection.cursor.setPosition(each.begin);
        selection.cursor.setPosition(each.end, QTextCursor::KeepAnchor);
        selection.format.setBackground(QColor(0xFF, 0xD5, 0x4F));
        selection.format.setForeground(Qt::black);
        shown.push_back(selection);
    }
    m_box.setExtraSelections(shown);
}

bool HitMarks::goOn(bool forward) {
    const QTextCursor now = m_box.textCursor();
    const Mark *to = nullptr;
    if (forward) {
        const auto next = std::ranges::find_if(
            m_marks, [&](const Mark &mark) { return mark.begin >= now.selectionEnd(); });
        // A cursor that nobody has moved stands on the first letter.
        to = next == m_marks.end() ? nullptr : &*next;
    } else {
        for (const Mark &mark : m_marks)
            if (mark.end <= now.selectionStart())
                to = &mark;
    }
    if (!to)
        return false;
    QTextCursor cursor = now;
    cursor.setPosition(to->begin);
    cursor.setPosition(to->end, QTextCursor::KeepAnchor);
    m_box.setTextCursor(cursor);
    m_box.ensureCursorVisible();
    return true;
}

} // namespace nv
