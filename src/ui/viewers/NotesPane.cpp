#include "ui/viewers/NotesPane.h"

#include "platform/qt/QtText.h"
#include "ui/widgets/NoRow.h"

#include <QBoxLayout>
#include <QEvent>
#include <QLabel>
#include <QPlainTextEdit>

namespace nv {

NotesPane::NotesPane(Storage storage, QWidget *parent)
    : QWidget(parent), m_storage(std::move(storage)) {
    setObjectName(QStringLiteral("NotesPane"));
    m_text = new QPlainTextEdit;
    m_text->setObjectName(QStringLiteral("NotesText"));
    m_text->setAccessibleName(tr("Note of this record"));
    setReadOnly(false);
    m_text->setTabChangesFocus(true);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->installEventFilter(this);
    m_date = new QLabel;
    m_date->setObjectName(QStringLiteral("labNotesDate"));
    m_date->setTextFormat(Qt::PlainText);
    m_date->setContentsMargins(8, 3, 8, 3);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_text, 1);
    column->addWidget(m_date);
    setFocusProxy(m_text);
    clear();
}

void NotesPane::showRecord(UrlId id) {
    notesTextValidate();
    // What is typed now goes on; showing the same record anew would take its undo away.
    if (m_id == id && m_text->hasFocus())
        return;
    const auto note = m_storage.read(id);
    if (!note)
        return clear();
    m_id = id;
    m_text->setEnabled(true);
    showPlaceholder();
    showNote(*note);
}

void NotesPane::showNote(const Note &note) {
    const auto unstored = m_unstored.find(*m_id);
    const bool isStored = unstored == m_unstored.end();
    m_text->setPlainText(isStored ? toQt(note.notes) : unstored->second);
    m_text->document()->setModified(!isStored); // it is tried again
    if (isStored)
        showDate(note.notesDateTime);
    else
        m_date->setText(notStored());
}

void NotesPane::clear() {
    notesTextValidate();
    m_id.reset();
    m_text->clear();
    m_text->document()->setModified(false);
    m_text->setEnabled(false);
    m_text->setPlaceholderText(noRowText());
    m_date->clear();
}

void NotesPane::notesTextValidate() {
    if (!m_id || !m_text->document()->isModified())
        return;
    // Before anything is told: a message box takes the focus, which would store once more.
    m_text->document()->setModified(false);
    const UrlId id = *m_id;
    const QString text = m_text->toPlainText();
    const NoteOutcome outcome = m_storage.write(id, fromQt(text));
    if (outcome.stored != NoteStored::stored) {
        m_unstored[id] = text;
        m_date->setText(notStored());
        m_storage.tell(noteMessage(outcome));
        return;
    }
    m_unstored.erase(id);
    if (const auto note = m_storage.read(id))
        showDate(note->notesDateTime);
}

void NotesPane::showDate(Date date) {
    m_date->setText(date.has() ? tr("Last changed: %1").arg(toQt(m_storage.dateText(date)))
                               : tr("No note yet."));
}

bool NotesPane::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_text && event->type() == QEvent::FocusOut)
        notesTextValidate();
    return QWidget::eventFilter(watched, event);
}

void NotesPane::setReadOnly(bool readOnly) {
    m_text->setReadOnly(readOnly);
    showPlaceholder();
}

void NotesPane::showPlaceholder() {
    m_text->setPlaceholderText(
        !m_id ? noRowText()
        : m_text->isReadOnly()
            ? tr("The project is open for reading only: no note can be written.")
            : tr("Your note of this record. It is stored when you leave the box."));
}

void NotesPane::forgetUnstored() {
    m_unstored.clear();
}

QString NotesPane::notStored() {
    return tr("This note is not stored.");
}

} // namespace nv
