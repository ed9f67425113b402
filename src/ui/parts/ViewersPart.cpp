#include "ui/parts/ViewersPart.h"

#include "app/jobs/ExplainJob.h"
#include "app/jobs/Trail.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "ui/parts/PictureFeed.h"
#include "ui/viewers/BrowserPane.h"
#include "ui/viewers/CardPane.h"
#include "ui/viewers/HexPane.h"
#include "ui/viewers/NotesPane.h"
#include "ui/viewers/PicturePane.h"
#include "ui/viewers/PropertiesPane.h"
#include "ui/viewers/ReportPane.h"
#include "ui/viewers/TextPane.h"
#include "views/explain/NoBytes.h"
#include "views/record/ViewerChoice.h"
#include "views/rows/CellText.h"

#include <QAction>
#include <QSplitter>

namespace nv {

namespace fs = std::filesystem;

namespace {

std::vector<Property> propertiesOf(Workbench &bench, UrlId id) {
    Program &program = bench.program;
    const auto picture = [&]() -> std::optional<fs::path> {
        Unwatched nobody;
        RecordTools tools(program, nobody, program.state.tempFolderPath);
        const auto content = contentOfRecord(tools, id);
        return content ? content->file : std::nullopt;
    };
    return loadProperties(
        id, {bench.project(), program.state.gmtZone, dateSettings(program), program.log, picture});
}

std::optional<RecordCard> cardOf(Workbench &bench, UrlId id) {
    Program &program = bench.program;
    return loadCard(id,
                    {bench.project(), program.state.gmtZone, dateSettings(program), program.log});
}

QString sentence(const std::string &reason) {
    QString text = toQt(displayText(reason, 2000));
    return text.isEmpty() ? text : text.front().toUpper() + text.mid(1) + u'.';
}

HexPane::Missing whatIsMissing(const UrlRecord &record) {
    return isSourceGone(record) ? HexPane::Missing::evidence : HexPane::Missing::content;
}

} // namespace

QWidget *newCard(Workbench &bench) {
    auto *properties = new PropertiesPane([&bench](UrlId id) { return propertiesOf(bench, id); });
    auto *card = new CardPane([&bench](UrlId id) { return cardOf(bench, id); }, *properties);
    bench.viewers->addAside(*card, *card, "MainForm.LoadProperties()");
    bench.viewers->setLook([&bench](UrlId id) {
        std::optional<ViewedRecord> viewed;
        if (bench.isProjectOpen())
            logFailureOf(bench.program.log, "MainForm.markViewers()",
                         [&] { viewed = viewedRecord(bench.project(), id); });
        return viewed;
    });
    return card;
}

/// A pane that the part fills.
class ViewersPart::ContentPane final : public QObject, public RecordPane {
  public:
    ContentPane(QObject *owner, std::function<void(UrlId)> show, std::function<void()> clear)
        : QObject(owner), m_show(std::move(show)), m_clear(std::move(clear)) {}
    void showRecord(UrlId id) override { m_show(id); }
    void clear() override { m_clear(); }

  private:
    std::function<void(UrlId)> m_show;
    std::function<void()> m_clear;
};

template <class Pane>
void ViewersPart::addContentPane(Pane &pane, const QString &title, const char *procedure,
                                 void (ViewersPart::*show)(UrlId)) {
    auto *record = new ContentPane(
        &pane, [this, show](UrlId id) { (this->*show)(id); }, [&pane] { pane.clear(); });
    m_bench.viewers->addPane(pane, *record, title, procedure);
}

ViewersPart::ViewersPart(Workbench &bench) : m_bench(bench) {
    m_text = new TextPane;
    m_picture = new PicturePane;
    m_picture->setNoResize(state().noResizePicture);
    m_hex = new HexPane(bench.runTask, bench.program.log);
    addContentPane(*m_text, tr("Text"), "MainForm.showText()", &ViewersPart::showText);
    addPicture();
    addContentPane(*m_hex, tr("Hex"), "MainForm.showHex()", &ViewersPart::showHex);
    addNotes();
    addReport();
    addWhy();
    connect(m_picture, &PicturePane::noResizeChanged, this,
            [this](bool noResize) { state().noResizePicture = noResize; });
    connect(m_hex, &HexPane::sourceToggled, bench.viewers, &ViewerTabs::refresh);
    connect(m_hex, &HexPane::evidenceWanted, bench.actions.baseFolder, &QAction::trigger);
    connect(bench.viewers, &ViewerTabs::fullSizeWanted, this,
            [this](bool full) { m_bench.dataArea->setVisible(!full); });
    connect(bench.table, &TableTab::currentUrlChanged, this, [this] { state().viewer.clearAll(); });
}

void ViewersPart::addPicture() {
    auto *feed = new PictureFeed(m_bench, *m_picture);
    auto *record = new ContentPane(
        m_picture, [feed](UrlId id) { feed->show(id); }, [feed] { feed->clear(); });
    m_bench.viewers->addPane(*m_picture, *record, tr("Picture"), "MainForm.showPicture()");
}

void ViewersPart::addNotes() {
    Workbench &bench = m_bench;
    m_notes = new NotesPane(
        {[&bench](UrlId id) { return readNote(bench.project(), id); },
         [&bench](UrlId id, const std::string &text) {
             NoteOutcome outcome = storeNote(bench.project(), id, text, bench.program.around.clock,
                                             bench.program.log);
             bench.refreshMarks(); // its mark comes or goes
             if (outcome.stored == NoteStored::stored)
                 noteNote(bench.program, id, text);
             return outcome;
         },
         [&bench](Date date) { return utcProperty(date, dateSettings(bench.program)); },
         [&bench](const Message &message) { bench.examiner().tell(message); }});
    bench.viewers->addPane(*m_notes, *m_notes, tr("Notes"), "MainForm.NotesText_Validate()");
    connect(&bench, &Workbench::projectOpened, m_notes,
            [this] { m_notes->setReadOnly(m_bench.program.state.projectDB.isReadOnly()); });
    connect(&bench, &Workbench::projectClosing, m_notes, [this] {
        if (m_bench.isProjectOpen())
            m_notes->clear();
        m_notes->forgetUnstored();
    });
}

void ViewersPart::addReport() {
    m_report = new ReportPane([this] { return state().viewer.reportURL; });
    m_bench.viewers->addPane(*m_report, *m_report, tr("Report"), "MainForm.showReport()");
    const auto mark = [this](bool isThere) {
        m_bench.viewers->setEmpty(
            *m_report,
            isThere ? QString() : tr("No report has been made yet: the command Report makes one"));
    };
    connect(m_report, &ReportPane::refreshed, this, mark);
    mark(false);
    connect(&m_report->browser(), &BrowserPane::navigationBlocked, &m_bench,
            &Workbench::showNotice);
    // The report is one of the project that is left.
    connect(&m_bench, &Workbench::projectClosing, m_report, [this] {
        state().viewer.reportURL.clear();
        m_report->refresh();
    });
}

std::optional<RecordContent> ViewersPart::contentFor(UrlId id, const TellMissing &missing) {
    Program &program = m_bench.program;
    Unwatched nobody;
    RecordTools tools(program, nobody, program.state.tempFolderPath);
    auto content = contentOfRecord(tools, id);
    if (!content)
        missing(tr("The selected record could not be found."), HexPane::Missing::content);
    else if (!content->file)
        missing(sentence(content->reason), whatIsMissing(content->record));
    return content && content->file ? std::move(content) : std::nullopt;
}

void ViewersPart::showText(UrlId id) {
    m_text->clear();
    const auto content =
        contentFor(id, [this](const QString &reason, auto) { m_text->showReason(reason); });
    if (!content)
        return;
    const CachedText text =
        readCachedText(*content->file, content->record.MetaData, TextPane::kMostBytes);
    state().viewer.textContent = text.text;
    m_text->showText(text);
}

void ViewersPart::showHex(UrlId id) {
    if (m_hex->wantsSource())
        return showSource(id);
    m_named.reset(); // whoever comes back to the source file sees the record's own place
    const auto content = contentFor(
        id, [this](const QString &reason, auto what) { m_hex->showMissing(reason, what); });
    if (content)
        showFile(id, *content->file, 0);
}

void ViewersPart::showSource(UrlId id) {
    Program &program = m_bench.program;
    Unwatched nobody;
    RecordTools tools(program, nobody, program.state.tempFolderPath);
    const auto record = tools.record(id);
    if (!record)
        return m_hex->showMissing(tr("The selected record could not be found."));
    if (m_knownOf != id)
        m_named.reset();
    const bool isNamed = m_named.has_value();
    // A value of a cache may lie in a file beside the one that the record is shown by.
    const bool isElsewhere = isNamed && !m_named->file.empty();
    const auto source = isElsewhere ? SourcePlace{m_named->file, m_named->offset}
                                    : sourceInProject(program, tools, id, *record);
    if (!source)
        return m_hex->showMissing(sentence(missingSource(*record)), whatIsMissing(*record));
    showFile(id, source->file, isNamed ? m_named->offset : source->offset);
    if (isNamed && std::exchange(m_isWanted, false))
        m_hex->mark(m_named->offset, m_named->length);
}

/// The same record may come again while it is read: its tags have changed, or the rows around it.
void ViewersPart::showFile(UrlId id, const std::filesystem::path &file, std::uint64_t offset) {
    state().viewer.hexFilePath = textOf(file);
    const bool isSame = m_inHex == std::pair(id, file) && m_hex->isShowing(file);
    m_inHex.emplace(id, file);
    if (isSame)
        m_hex->showAgain();
    else
        m_hex->showFile(file, offset);
}

void ViewersPart::addWhy() {
    m_properties = m_bench.card->findChild<PropertiesPane *>();
    m_properties->setWhyNoBytes([this](const QString &field) { return whyNoBytes(field); });
    connect(m_properties, &PropertiesPane::whyWanted, this, [this](const QString &field) {
        m_bench.run("MainForm.Explain()", [this, field] { explain(field); });
    });
    connect(m_properties, &PropertiesPane::bytesWanted, this, [this](const QString &field) {
        m_bench.run("MainForm.Explain()", [this, field] { showBytes(field); });
    });
}

void ViewersPart::explain(const QString &field) {
    const auto id = m_bench.viewers->record();
    if (!id || !m_bench.isProjectOpen())
        return;
    std::optional<RecordOrigin> origin;
    m_bench.runTask({"READING THE EVIDENCE AGAIN", "Hashing the source file...", "", ""},
                    [&](TaskMonitor &task) {
                        const RecordTools tools(m_bench.program, task,
                                                m_bench.program.state.tempFolderPath);
                        origin = explainInProject(m_bench.program, tools, *id, fromQt(field));
                    });
    if (!origin)
        return m_properties->showWhy(tr("The selected record could not be found."));
    QStringList lines;
    constexpr std::size_t kMost = 2100; // a little more than is told of a value and its length
    const auto add = [&lines](const auto &told) {
        for (const auto &[name, text] : told)
            lines += QStringLiteral("%1: %2").arg(toQt(name), toQt(displayText(text, kMost)));
    };
    for (const ValueOrigin &value : origin->values) {
        auto told = linesOf(value);
        std::erase_if(told, [](const auto &line) { return line.first == "Value"; });
        add(told);
        learn(*id, field, value);
    }
    if (origin->values.empty())
        lines += tr("This row isn't kept in the project: it is read out of the picture each time.");
    add(linesOf(*origin));
    m_properties->showWhy(lines.join(u'\n'));
}

/// What the evidence says is known from then on. Before, only that is said which holds for sure:
/// nothing is read while the examiner goes from row to row.
QString ViewersPart::whyNoBytes(const QString &field) {
    const auto id = m_bench.viewers->record();
    if (!id || !m_bench.isProjectOpen())
        return {};
    if (m_knownOf == *id && m_known.contains(field))
        return m_known.at(field).whyNone;
    std::string why;
    logFailureOf(m_bench.program.log, "MainForm.Explain()",
                 [&] { why = nv::whyNoBytes(m_bench.project(), *id, fromQt(field)); });
    return toQt(displayText(why));
}

void ViewersPart::learn(UrlId id, const QString &field, const ValueOrigin &value) {
    if (std::exchange(m_knownOf, id) != id) {
        m_known.clear();
        m_named.reset();
    }
    KnownBytes known;
    if (value.offset)
        known.bytes = NamedBytes{value.file, *value.offset, value.length};
    else
        known.whyNone = toQt(displayText(nv::whyNoBytes(value)));
    m_known[field] = std::move(known);
}

void ViewersPart::findBytes(UrlId id, const QString &field) {
    std::optional<ValueOrigin> value;
    m_bench.runTask(
        {"READING THE EVIDENCE AGAIN", "Looking for the bytes...", "", ""}, [&](TaskMonitor &task) {
            const RecordTools tools(m_bench.program, task, m_bench.program.state.tempFolderPath);
            value = explainValueInProject(m_bench.program, tools, id, fromQt(field));
        });
    if (!value) {
        value.emplace();
        value->note = fromQt(tr("it isn't kept in the project, but read out of the picture"));
    }
    learn(id, field, *value);
}

void ViewersPart::showBytes(const QString &field) {
    const auto id = m_bench.viewers->record();
    if (!id || !m_bench.isProjectOpen())
        return;
    if (m_knownOf != *id || !m_known.contains(field))
        findBytes(*id, field);
    const KnownBytes &known = m_known[field];
    if (!known.bytes) {
        m_bench.showNotice(tr("No bytes to show: %1").arg(known.whyNone));
        return m_properties->checkBytes();
    }
    m_named = known.bytes;
    m_isWanted = true;
    m_inHex.reset();
    m_hex->askForSource();
    m_bench.viewers->showOnce(*m_hex);
    m_bench.viewers->refresh();
}

} // namespace nv
