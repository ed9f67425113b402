#include "base/Files.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "readers/ContentProbe.h"
#include "readers/Limits.h"
#include "readers/Registry.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

#include <array>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

struct Arguments {
    std::string file;
    std::string as; ///< key of the reader to use; empty for the one that recognises the file
    Format format = Format::table;
};

constexpr std::array<const char *, 22> kHeadings = {"MapFileOffset",
                                                    "Reference_ID",
                                                    "Status",
                                                    "Action",
                                                    "ActionDateUTC",
                                                    "OtherDate",
                                                    "OtherDateMeaning",
                                                    "ExpiryDate",
                                                    "FileCreated",
                                                    "Visits",
                                                    "CacheType",
                                                    "URL",
                                                    "URLRawValue",
                                                    "User",
                                                    "Host",
                                                    "WebPageTitle",
                                                    "CacheFolderName",
                                                    "CacheFileName",
                                                    "CacheFileSize",
                                                    "CacheFileExists",
                                                    "Hidden",
                                                    "MetaData"};

Cell dateCell(Date date) {
    return date.has() ? Cell(isoUtc(date)) : Cell(nullptr);
}

std::vector<Cell> cellsOf(const URLClass &r) {
    return {r.MapFileOffset,
            r.Reference_ID,
            r.Status,
            r.Action,
            dateCell(r.ActionDateUTC),
            dateCell(r.OtherDate),
            r.OtherDateMeaning,
            dateCell(r.ExpiryDate),
            dateCell(r.CacheFileCreatedGMTDOS),
            r.Visits == kVisitsUnknown ? Cell() : Cell(r.Visits),
            r.cacheType,
            r.URL,
            r.URLRawValue,
            r.User,
            r.host,
            r.WebpageTitle,
            r.CacheFolderName,
            r.CacheFileName,
            r.CacheFileSize,
            r.CacheFileExists,
            r.Hidden,
            r.MetaData};
}

/// Writes each record as it is read; nothing is saved.
class DumpSink final : public RecordSink {
  public:
    explicit DumpSink(RowWriter &writer) : m_writer(writer) {}
    void save(URLClass &record) override {
        m_writer.row(cellsOf(record));
        record.URLID = UrlId{++m_count};
    }

  private:
    RowWriter &m_writer;
    std::int64_t m_count = 0;
};

/// The reader that takes the file, and what it has to know of it.
const Reader *chooseReader(const fs::path &path, const std::string &as, const Evidence &evidence,
                           HistoryFile &file) {
    Candidate candidate = candidateOf(path, evidence);
    const Bytes head = evidence.head(path, limits::kHeadBytes);
    candidate.head = ByteView(head);
    const Reader *reader = as.empty() ? recognise(candidate) : readerByKey(as);
    if (!reader)
        return nullptr;
    file.FullPath = as.empty() ? artefactOf(*reader, candidate) : path;
    file.FileName = textOf(file.FullPath.filename());
    file.FileParentPath = textOf(file.FullPath.parent_path());
    file.fileExt = candidate.extension;
    file.FileSize = evidence.factsOf(file.FullPath).size; // none of a folder
    file.HistoryFileType = reader->type;
    file.Version = reader->version;
    return reader;
}

Exit tellResult(Session &session, const ReadResult &result, const std::string &warning) {
    if (!warning.empty())
        session.err << printable(warning) << '\n';
    for (const auto &[reason, count] : result.passedOver)
        session.err << fmt::format("{} passed over: {}\n", count, printable(reason));
    for (const auto &[reason, count] : result.noted)
        session.err << fmt::format("{} noted: {}\n", count, printable(reason));
    if (!result.reason.empty())
        session.err << printable(result.reason) << '\n';
    if (result.notReached > 0)
        session.err << fmt::format("{} entries were not reached\n", result.notReached);
    if (result.state == ReadState::cancelled)
        return Exit::interrupted;
    return result.state == ReadState::complete ? Exit::ok : Exit::damagedEvidence;
}

Exit run(Session &session, const Arguments &arguments) {
    const auto &[file, as, format] = arguments;
    if (!as.empty() && !readerByKey(as))
        throw UsageError(fmt::format("there is no reader \"{}\"", as));
    if (!fs::is_regular_file(file))
        throw UsageError(fmt::format("there is no file \"{}\"", file));
    HistoryFile artefact;
    const fs::path whole = fs::canonical(file);
    const Evidence evidence(whole.parent_path()); // where the artefact lies too
    const Reader *reader = chooseReader(whole, as, evidence, artefact);
    if (!reader || !reader->read) {
        session.err << fmt::format("\"{}\" is {}\n", printable(file),
                                   reader ? "a format that is not read yet"
                                          : "no file of a format that is known");
        return Exit::damagedEvidence;
    }
    const auto writer = makeRowWriter(format, session.out, {kHeadings.begin(), kHeadings.end()});
    DumpSink sink(*writer);
    ContentProbe content;
    Program &program = session.program;
    ReadContext context{artefact,          evidence, content,     program.around.clock,
                        session.scratch(), sink,     program.log, session.task};
    const ReadResult result = reader->read(context);
    session.task.clear();
    writer->finish();
    return tellResult(session, result, warningOn(*reader, artefact.FullPath, evidence));
}

} // namespace

Command dumpCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "dump",
            .what = "The records of one artefact, without a project",
            .readme = {"`dump FILE`", "shows the records of one artefact without a project"},
            .examples = {{"dump index.dat", "recognised by its name and first bytes"},
                         {"dump carved.bin --as ie-cache --format jsonl",
                          "whatever the file is called"}},
            .arguments = {value("FILE", given->file, "The artefact").required(),
                          value("--as", given->as,
                                "Key of the reader to use (default: the one that knows it)"),
                          formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
