#include "app/cli/Commands.h"
#include "base/Files.h"
#include "base/Text.h"
#include "readers/ContentProbe.h"
#include "readers/Limits.h"
#include "readers/Registry.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

#include <array>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

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
const Reader *chooseReader(const fs::path &path, const std::string &as, HistoryFile &file) {
    Candidate candidate = candidateOf(path);
    const Bytes head = readHead(path, limits::kHeadBytes);
    candidate.head = ByteView(head);
    const Reader *reader = as.empty() ? recognise(candidate) : readerByKey(as);
    if (!reader)
        return nullptr;
    file.FullPath = as.empty() ? artefactOf(*reader, candidate) : path;
    file.FileName = textOf(file.FullPath.filename());
    file.FileParentPath = textOf(file.FullPath.parent_path());
    file.fileExt = candidate.extension;
    file.FileSize = fs::is_directory(file.FullPath) ? 0 : fs::file_size(file.FullPath);
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

} // namespace

Exit dumpCommand(Session &session, const std::string &file, const std::string &as, Format format) {
    if (!as.empty() && !readerByKey(as))
        throw UsageError(fmt::format("there is no reader \"{}\"", as));
    if (!fs::is_regular_file(file))
        throw UsageError(fmt::format("there is no file \"{}\"", file));
    HistoryFile artefact;
    const Reader *reader = chooseReader(fs::canonical(file), as, artefact);
    if (!reader || !reader->read) {
        session.err << fmt::format("\"{}\" is {}\n", printable(file),
                                   reader ? "a format that is not read yet"
                                          : "no file of a format that is known");
        return Exit::damagedEvidence;
    }
    const auto writer = makeRowWriter(format, session.out, {kHeadings.begin(), kHeadings.end()});
    DumpSink sink(*writer);
    const Evidence evidence(artefact.FileParentPath);
    ContentProbe content;
    Program &program = session.program;
    ReadContext context{artefact,          evidence, content,     program.around.clock,
                        session.scratch(), sink,     program.log, session.task};
    const ReadResult result = reader->read(context);
    session.task.clear();
    writer->finish();
    return tellResult(session, result, warningOn(*reader, artefact.FullPath));
}

} // namespace nv::cli
