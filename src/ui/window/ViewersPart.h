#pragma once

#include "app/jobs/RecordContent.h"
#include "ui/window/Workbench.h"

namespace nv {

class HexPane;
class NotesPane;
class PicturePane;
class ReportPane;
class TextPane;

/// The card of the record with all its values, which stands beside the viewers. Nobody owns it yet.
QWidget *newCard(Workbench &bench);

/// The panes of the record's cached content (Text, Picture, Hex), its note, and the last report.
/// What they show is kept in `ProgramState.Viewer`.
class ViewersPart final : public QObject {
    Q_OBJECT

  public:
    explicit ViewersPart(Workbench &bench);

  private:
    class ContentPane;
    template <class Pane>
    void addContentPane(Pane &pane, const QString &title, const char *procedure,
                        void (ViewersPart::*show)(UrlId));
    void addPicture();
    void addNotes();
    void addReport();
    /// Nothing when the record has no content; `showReason` of the pane has been told why.
    std::optional<RecordContent> contentFor(UrlId id, const std::function<void(QString)> &missing);
    void showText(UrlId id);
    void showHex(UrlId id);
    void showSource(UrlId id);

    ProgramState &state() { return m_bench.program.state; }

    Workbench &m_bench;
    TextPane *m_text = nullptr;
    PicturePane *m_picture = nullptr;
    HexPane *m_hex = nullptr;
    NotesPane *m_notes = nullptr;
    ReportPane *m_report = nullptr;
};

} // namespace nv
