#include "app/program/DrawingTools.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/ChosenFilters.h"
#include "cli/Commands.h"
#include "cli/ContactSheet.h"
#include "cli/LoadedTable.h"
#include "cli/OutputPath.h"
#include "cli/ReportedRows.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "cli/SheetPicture.h"
#include "platform/posix/SheetFile.h"
#include "reports/exports/ExportFile.h"
#include "views/gallery/Gallery.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

struct Arguments {
    std::string project;
    ReportedRows rows;
    std::string pard; ///< "15-40"; empty for any
    std::vector<std::string> sizes;
    int page = 1;
    int perPage = 0; ///< 0 for the settings' number
    std::string out; ///< an HTML file or a picture
    bool overwrite = false;
};

struct SizeWord {
    std::string_view word;
    bool PardChoice::*flag;
};
constexpr std::array<SizeWord, 5> kSizes = {{{"xs", &PardChoice::showXSmallPics},
                                             {"s", &PardChoice::showSmallPics},
                                             {"m", &PardChoice::showMediumPics},
                                             {"l", &PardChoice::showLargePics},
                                             {"xl", &PardChoice::showXLargePics}}};

std::optional<std::int16_t> valueOf(std::string_view text) {
    std::int16_t value = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || value < 0 || value > 100)
        return std::nullopt;
    return value;
}

/// A range that runs backwards shows everything, which nobody asks for here.
void readRange(const std::string &text, PardChoice &pard) {
    const auto parts = split(text, '-');
    const auto from = parts.size() == 2 ? valueOf(parts[0]) : std::nullopt;
    const auto to = parts.size() == 2 ? valueOf(parts[1]) : std::nullopt;
    if (!from || !to || *from > *to)
        throw UsageError(fmt::format("--pard {}: a range from 0-0 to 100-100 was expected, such as "
                                     "15-40",
                                     text));
    pard.fromValue = *from;
    pard.toValue = *to;
}

PardChoice shapesOf(const Arguments &arguments) {
    PardChoice pard;
    // Sizes count together with a range only; this one leaves no picture out.
    pard.toValue = 100;
    pard.enablePARD = !arguments.pard.empty() || !arguments.sizes.empty();
    if (!arguments.pard.empty())
        readRange(arguments.pard, pard);
    for (const std::string &word : arguments.sizes) {
        const auto *size = std::ranges::find(kSizes, word, &SizeWord::word);
        if (size == kSizes.end())
            throw UsageError(
                fmt::format("--sizes: xs, s, m, l and xl were expected, not {}", word));
        pard.*(size->flag) = true;
    }
    return pard;
}

bool isPicture(const fs::path &file) {
    return toLower(textOf(file.extension())) == ".png";
}

void checkTarget(const Arguments &arguments, ProgramState &state) {
    const fs::path file = arguments.out;
    const std::string extension = toLower(textOf(file.extension()));
    if (extension != ".html" && extension != ".htm" && !isPicture(file))
        throw UsageError(
            fmt::format("--out {}: a file *.html or *.png was expected", arguments.out));
    refuseUntouchable(file, state);
    if (fs::exists(file) && !arguments.overwrite)
        throw UsageError(
            fmt::format("\"{}\" is there already; --overwrite replaces a file", textOf(file)));
}

Gallery galleryOf(Session &session, const Arguments &arguments) {
    ProgramState &state = session.program.state;
    SQLite::Database &project = session.program.state.projectDB.connection();
    Gallery gallery(project, session.program.log);
    gallery.choice = choiceOf(arguments.rows.rows);
    gallery.pard = shapesOf(arguments);
    gallery.settings.galleryRecordsPerPage =
        arguments.perPage > 0 ? arguments.perPage : state.galleryRecordsPerPage;
    gallery.settings.media = {state.galleryIncludePictures, state.galleryIncludeHTML};
    return gallery;
}

/// What was asked for, so that a printed sheet says what it leaves out.
std::vector<std::string> linesOf(const Gallery &gallery, const Arguments &arguments) {
    std::vector<std::string> lines{fmt::format("Page {}, {} of {} pictures and pages",
                                               gallery.pageText(), gallery.gallery().tiles.count(),
                                               gallery.rowCount())};
    if (const UnreadRows unread = gallery.unread(); !unread.empty())
        lines.push_back(noteOf(unread));
    const RowsAsked &rows = arguments.rows.rows;
    if (!rows.query.empty())
        lines.push_back("Query: " + rows.query);
    if (!rows.host.empty())
        lines.push_back("Hosts that contain: " + rows.host);
    if (!rows.filter.empty())
        lines.push_back(fmt::format("Filters: {}", fmt::join(rows.filter, ", ")));
    ReportedRows others = arguments.rows;
    others.rows = {};
    if (const std::string limits = contentText(others); !limits.empty())
        lines.push_back("Only: " + limits);
    if (!arguments.pard.empty())
        lines.push_back("P.A.R.D.: " + arguments.pard);
    if (!arguments.sizes.empty())
        lines.push_back(fmt::format("Sizes: {}", fmt::join(arguments.sizes, ", ")));
    return lines;
}

void drawSheet(Session &session, const ContactSheet &sheet, const fs::path &target) {
    if (sheet.tiles.count() > kMostSheetTiles)
        throw UsageError(fmt::format("{} tiles are too many for a picture: ask for {} with "
                                     "--per-page, or for *.html",
                                     sheet.tiles.count(), kMostSheetTiles));
    drawContactSheet(sheet, *makeDrawing(session.scratch()), session.scratch(), target);
}

void writeSheet(Session &session, const Gallery &gallery, const Arguments &arguments) {
    Program &program = session.program;
    const ContactSheet sheet{
        "Gallery of " + textOf(fs::path(arguments.project).filename()), linesOf(gallery, arguments),
        gallery.gallery().tiles, [&program](UrlId id) {
            return thumbnailOf(program.state.projectDB.connection(), program.log, id);
        }};
    ExportFile file(arguments.out);
    if (isPicture(arguments.out))
        drawSheet(session, sheet, file.aside());
    else
        writeContactSheet([&file](std::string_view text) { file.write(text); }, sheet);
    file.finish();
}

/// The window shows the nearest page; a sheet of another page than was asked for would mislead.
void checkPage(const Gallery &gallery, int page) {
    const int last = std::max(1, gallery.galleryADOPageCount());
    if (page < 1 || page > last)
        throw UsageError(fmt::format("--page {}: the gallery has {}", page,
                                     counted(static_cast<std::uint64_t>(last), "page")));
}

/// Writes a page of the gallery as a contact sheet.
Exit run(Session &session, const Arguments &arguments) {
    checkReportedRows(arguments.rows);
    session.program.state.filters = filtersFrom(arguments.rows.rows.filter);
    session.openForReading(arguments.project);
    Program &program = session.program;
    checkTarget(arguments, program.state);
    auto ids = idsOf(session, arguments.rows);
    if (!ids)
        return Exit::interrupted;
    std::ranges::sort(*ids);
    Gallery gallery = galleryOf(session, arguments);
    gallery.among = std::make_shared<const FoundIds>(std::move(*ids));
    const LoadResult loaded = gallery.load(session.task);
    session.task.clear();
    if (loaded == LoadResult::Cancelled)
        return Exit::interrupted;
    if (loaded == LoadResult::Loaded)
        checkPage(gallery, arguments.page);
    if (loaded == LoadResult::Failed || !gallery.showPage(arguments.page))
        throw StorageFailure(
            fmt::format("the gallery can't be shown; see \"{}\"", textOf(program.log.path())));
    writeSheet(session, gallery, arguments);
    session.out << fmt::format("page {}, {} of {} pictures and pages\n", gallery.pageText(),
                               gallery.gallery().tiles.count(), gallery.rowCount());
    if (gallery.rowCount() == 0)
        session.err << "no row that was asked for has a thumbnail; the command thumbnails draws "
                       "them\n";
    const Exit read = tellUnread(session, gallery.unread());
    closeProject(program);
    return read;
}

} // namespace

Command galleryCommand() {
    const auto given = std::make_shared<Arguments>();
    Command command{
        .name = "gallery",
        .what = "Write a page of thumbnails as one HTML file or picture",
        .readme = {"`gallery PROJECT --out FILE`",
                   "writes a contact sheet, `*.html` or `*.png`, of the rows that `report` would "
                   "take; `--pard`, `--sizes`"},
        .examples = {{"gallery case.nvp --pard 15-40 --sizes l,xl --out p.html",
                      "large photographs"},
                     {"gallery case.nvp --tag Important --without-known --out p.html",
                      "of tagged rows, without known files"},
                     {"gallery case.nvp --page 2 --per-page 50 --out page2.png", "as one picture"}},
        .arguments =
            {projectWord(given->project),
             value("--pard", given->pard, "Only P.A.R.D. values FROM-TO, best 15-40"),
             value("--sizes", given->sizes, "Only these sizes: xs,s,m,l,xl").separatedByCommas(),
             value("--page", given->page, "Number of the page, from 1"),
             value("--per-page", given->perPage, "Tiles a page (default: the settings')").from1(),
             value("--out", given->out, "The file to write, *.html or *.png").required(),
             flag("--overwrite", given->overwrite, "Replace the file when it is there")},
        .run = [given](Session &session) { return run(session, *given); }};
    for (Argument &option : chosenRowsOptions(given->rows))
        command.arguments.push_back(std::move(option));
    return command;
}

} // namespace nv::cli
