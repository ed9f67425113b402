#include "app/ui/ViewersPart.h"

#include "app/DrawingTools.h"
#include "app/Project.h"
#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "views/CellText.h"
#include "views/ui/BrowserPane.h"
#include "views/ui/HexPane.h"
#include "views/ui/NotesPane.h"
#include "views/ui/PicturePane.h"
#include "views/ui/PropertiesPane.h"
#include "views/ui/ReportPane.h"
#include "views/ui/TextPane.h"

#include <QImage>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kDrawingTimeout{30};

std::vector<Property> propertiesOf(Workbench &bench, UrlId id) {
    Program &program = bench.program;
    const auto picture = [&]() -> std::optional<fs::path> {
        Unwatched nobody;
        RebuildTools tools(program, nobody, program.thisClass.TempFolderPath);
        const auto content = contentOfRecord(tools, id);
        return content ? content->file : std::nullopt;
    };
    return LoadProperties(id, {bench.project(), program.thisClass.GMTZone, dateSettings(program),
                               program.log, picture});
}

QString sentence(const std::string &reason) {
    QString text = toQt(displayText(reason, 2000));
    return text.isEmpty() ? text : text.front().toUpper() + text.mid(1) + u'.';
}

} // namespace

void addProperties(Workbench &bench) {
    auto *pane = new PropertiesPane([&bench](UrlId id) { return propertiesOf(bench, id); });
    bench.viewers->addPane(*pane, *pane, ViewersPart::tr("Properties"),
                           "MainForm.LoadProperties()");
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
    m_picture->setNoResize(state().NoResizePicture);
    m_hex = new HexPane(bench.runTask, bench.program.log);
    addContentPane(*m_text, tr("Text"), "MainForm.showText()", &ViewersPart::showText);
    addContentPane(*m_picture, tr("Picture"), "MainForm.showPicture()", &ViewersPart::showPicture);
    addContentPane(*m_hex, tr("Hex"), "MainForm.showHex()", &ViewersPart::showHex);
    addNotes();
    addReport();
    connect(m_picture, &PicturePane::noResizeChanged, this,
            [this](bool noResize) { state().NoResizePicture = noResize; });
    connect(m_hex, &HexPane::sourceToggled, bench.viewers, &ViewerTabs::refresh);
    connect(bench.table, &TableTab::currentUrlChanged, this, [this] { state().Viewer.ClearAll(); });
}

void ViewersPart::addNotes() {
    Workbench &bench = m_bench;
    m_notes = new NotesPane(
        {[&bench](UrlId id) { return readNote(bench.project(), id); },
         [&bench](UrlId id, const std::string &text) {
             NoteOutcome outcome = storeNote(bench.project(), id, text, bench.program.around.clock,
                                             bench.program.log);
             bench.table->refreshRows(); // its mark comes or goes
             return outcome;
         },
         [&bench](Date date) { return utcProperty(date, dateSettings(bench.program)); },
         [&bench](const Message &message) { bench.examiner().tell(message); }});
    bench.viewers->addPane(*m_notes, *m_notes, tr("Notes"), "MainForm.NotesText_Validate()");
    connect(&bench, &Workbench::projectClosing, m_notes, [this] {
        if (m_bench.isProjectOpen())
            m_notes->clear();
        m_notes->forgetUnstored();
    });
}

void ViewersPart::addReport() {
    m_report = new ReportPane([this] { return state().Viewer.ReportURL; });
    m_bench.viewers->addPane(*m_report, *m_report, tr("Report"), "MainForm.showReport()");
    connect(&m_report->browser(), &BrowserPane::navigationBlocked, &m_bench,
            &Workbench::showNotice);
    // The report is one of the project that is left.
    connect(&m_bench, &Workbench::projectClosing, m_report, [this] {
        state().Viewer.ReportURL.clear();
        m_report->refresh();
    });
}

std::optional<RecordContent> ViewersPart::contentFor(UrlId id,
                                                     const std::function<void(QString)> &missing) {
    Program &program = m_bench.program;
    Unwatched nobody;
    RebuildTools tools(program, nobody, program.thisClass.TempFolderPath);
    auto content = contentOfRecord(tools, id);
    if (!content)
        missing(tr("The selected record could not be found."));
    else if (!content->file)
        missing(sentence(content->reason));
    return content && content->file ? std::move(content) : std::nullopt;
}

void ViewersPart::showText(UrlId id) {
    m_text->clear();
    const auto content =
        contentFor(id, [this](const QString &reason) { m_text->showReason(reason); });
    if (!content)
        return;
    const CachedText text =
        readCachedText(*content->file, content->record.MetaData, TextPane::kMostBytes);
    state().Viewer.TextContent = text.text;
    m_text->showText(text);
}

void ViewersPart::showPicture(UrlId id) {
    m_picture->clear();
    const auto content =
        contentFor(id, [this](const QString &reason) { m_picture->showReason(reason); });
    if (!content)
        return;
    state().Viewer.PicturePath = textOf(*content->file);
    drawPicture(*content->file);
}

/// Pictures of evidence are decoded outside of this process: damaged ones can crash what reads
/// them.
void ViewersPart::drawPicture(const fs::path &file) {
    const fs::path scratch = state().TempFolderPath;
    const fs::path target = scratch / "~picture.bmp";
    const DrawJob job{DrawJob::Kind::picture, file, target, PicturePane::kMostPixels,
                      PicturePane::kMostPixels};
    Drawn drawn;
    m_bench.runTask({"DRAWING", "Drawing the picture", "", ""}, [&](TaskMonitor &task) {
        makeDrawing(scratch)->draw(
            std::span(&job, 1), kDrawingTimeout,
            [&drawn](std::size_t, const Drawn &done) {
                drawn = done;
                return true;
            },
            [&task] { return task.advance(0); });
    });
    const QImage image = drawn.done ? QImage(pathToQt(target)) : QImage();
    std::error_code ignored; // it is scratch
    fs::remove(target, ignored);
    if (image.isNull())
        return m_picture->showReason(tr("The cached content can't be shown as a picture. %1")
                                         .arg(toQt(displayText(drawn.failure))));
    m_picture->showPicture(image, {drawn.pictureWidth, drawn.pictureHeight});
}

void ViewersPart::showHex(UrlId id) {
    if (m_hex->wantsSource())
        return showSource(id);
    const auto content =
        contentFor(id, [this](const QString &reason) { m_hex->showMissing(reason); });
    if (!content)
        return;
    state().Viewer.HexFilePath = textOf(*content->file);
    m_hex->showFile(*content->file, 0);
}

void ViewersPart::showSource(UrlId id) {
    Program &program = m_bench.program;
    Unwatched nobody;
    RebuildTools tools(program, nobody, program.thisClass.TempFolderPath);
    const auto record = tools.record(number(id));
    if (!record)
        return m_hex->showMissing(tr("The selected record could not be found."));
    const auto source = sourceOfRecord(*record);
    if (!source)
        return m_hex->showMissing(sentence(missingSource(*record)));
    state().Viewer.HexFilePath = textOf(source->file);
    m_hex->showFile(source->file, source->offset);
}

} // namespace nv
