#pragma once

#include "app/jobs/RecordContent.h"
#include "ui/window/Workbench.h"

namespace nv {

class HexPane;
class NotesPane;
class PicturePane;
class PropertiesPane;
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
    void addWhy();
    /// Where a property of the current record comes from.
    void explain(const QString &field);
    void showBytes();

    ProgramState &state() { return m_bench.program.state; }

    Workbench &m_bench;
    TextPane *m_text = nullptr;
    PicturePane *m_picture = nullptr;
    HexPane *m_hex = nullptr;
    NotesPane *m_notes = nullptr;
    ReportPane *m_report = nullptr;
    PropertiesPane *m_properties = nullptr;
    /// The bytes that the last answer to "Why?" named, and whether they are to be marked next.
    struct NamedBytes {
        UrlId id = UrlId::none;
        std::filesystem::path file; ///< empty: the one that the Hex pane shows for the record
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
        bool isWanted = false;
    };
    std::optional<NamedBytes> m_named;
};

} // namespace nv
