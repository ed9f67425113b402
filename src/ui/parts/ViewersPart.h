#pragma once

#include "app/jobs/RecordContent.h"
#include "ui/parts/Workbench.h"
#include "ui/viewers/HexPane.h"
#include "views/explain/Explain.h"

#include <map>
#include <optional>
#include <utility>

namespace nv {

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
    using TellMissing = std::function<void(const QString &reason, HexPane::Missing what)>;
    std::optional<RecordContent> contentFor(UrlId id, const TellMissing &missing);
    void showText(UrlId id);
    void showHex(UrlId id);
    void showSource(UrlId id);
    void showFile(UrlId id, const std::filesystem::path &file, std::uint64_t offset);
    void addWhy();
    /// Where a property of the current record comes from.
    void explain(const QString &field);
    void showBytes(const QString &field);
    void findBytes(UrlId id, const QString &field);
    void learn(UrlId id, const QString &field, const ValueOrigin &value);
    QString whyNoBytes(const QString &field);

    ProgramState &state() { return m_bench.program.state; }

    Workbench &m_bench;
    TextPane *m_text = nullptr;
    PicturePane *m_picture = nullptr;
    HexPane *m_hex = nullptr;
    NotesPane *m_notes = nullptr;
    ReportPane *m_report = nullptr;
    PropertiesPane *m_properties = nullptr;
    /// The bytes of a value.
    struct NamedBytes {
        std::filesystem::path file; ///< empty: the one that the Hex pane shows for the record
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
    };
    /// What the evidence has said of a value's bytes: where they are, or why there are none.
    struct KnownBytes {
        std::optional<NamedBytes> bytes;
        QString whyNone;
    };
    /// Of the record `m_knownOf`, by the property.
    std::map<QString, KnownBytes> m_known;
    UrlId m_knownOf = UrlId::none;
    std::optional<NamedBytes> m_named; ///< what of that record the Hex pane is to show
    bool m_isWanted = false;           ///< and hasn't yet
    /// What the Hex pane shows.
    std::optional<std::pair<UrlId, std::filesystem::path>> m_inHex;
};

} // namespace nv
