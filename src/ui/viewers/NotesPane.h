#pragma once

#include "ui/viewers/RecordPane.h"
#include "views/tags/Notes.h"

#include <QWidget>

#include <functional>
#include <map>

class QLabel;
class QPlainTextEdit;

namespace nv {

/// The examiner's note of a record. A changed one is stored when the box is left, when another
/// record comes, and before the project closes. One that couldn't be stored comes again with its
/// record, and is tried again.
class NotesPane final : public QWidget, public RecordPane {
    Q_OBJECT

  public:
    struct Storage {
        std::function<std::optional<Note>(UrlId)> read;
        std::function<NoteOutcome(UrlId, const std::string &)> write;
        std::function<std::string(Date)> dateText;
        std::function<void(const Message &)> tell;
    };
    explicit NotesPane(Storage storage, QWidget *parent = nullptr);

    void showRecord(UrlId id) override;
    void clear() override;
    /// Stores the note if it was changed; the examiner is told when that fails.
    void notesTextValidate();
    /// The records to come are those of another project.
    void forgetUnstored();
    /// Notes are shown and can't be changed.
    void setReadOnly(bool readOnly);

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    void showPlaceholder();
    void showNote(const Note &note);
    void showDate(Date date);
    static QString notStored();

    Storage m_storage;
    QPlainTextEdit *m_text = nullptr;
    QLabel *m_date = nullptr;
    std::optional<UrlId> m_id;
    std::map<UrlId, QString> m_unstored;
};

} // namespace nv
