#include "support/RecordGolden.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "db/records/RecordFacts.h"
#include "readers/Body.h"
#include "readers/ContentProbe.h"
#include "readers/RecordKind.h"
#include "readers/Registry.h"
#include "support/SqliteHistoryReading.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "time/DateFormat.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace nv::test {

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path &path) {
    const Bytes bytes = readWhole(path);
    return {bytes.begin(), bytes.end()};
}

int numberIn(std::string_view text) {
    return std::stoi(std::string(text));
}

/// "transition=typed [1]; count=3"
std::string factsOf(const UrlRecord &record) {
    std::string text;
    for (const RecordFact &fact : record.facts)
        text += fmt::format("{}{}={}", text.empty() ? "" : "; ", fact.name, factText(fact));
    return replaceAll(text, "\r\n", "\\r\\n");
}
/// How the cases of a folder are written down, in words of its file "form.txt". Without that file
/// none is set: new folders need none.
struct Form {
    explicit Form(const fs::path &folder) {
        if (fs::exists(folder / "form.txt"))
            words = contentOf(folder / "form.txt");
    }
    bool has(std::string_view word) const {
        const auto lines = split(words, '\n');
        return std::ranges::find(lines, word) != lines.end();
    }
    std::string words;
};

/// What a record is, with all that a cell needs.
struct Row {
    const UrlRecord &record;
    const Reader &reader;
    const fs::path &input;
    const Form &form;

    /// Dates "without zone": some are in that of the machine.
    std::string date(Date date) const {
        if (!date.has() && form.has("no date is a dash"))
            return "-";
        return form.has("dates without zone") ? formatDate(date, "yyyy-mm-dd hh:nn:ss")
                                              : isoUtc(date);
    }
    /// MD5 of the body as it is stored.
    std::string bodyMD5() const {
        const TempFolder scratch;
        BodyTarget target(scratch.path() / "body", kBodyInMemory);
        const bool isThere = reader.fetch && reader.fetch(record, Evidence(input), target);
        return isThere ? md5Hex(target.take().raw()) : "-";
    }
};

/// A column of expected.tsv.
struct GoldenColumn {
    std::string_view name;
    std::string (*cell)(const Row &row);
};

std::string wordIf(bool is, const char *word) {
    return is ? word : "";
}

std::string statusOf(const Row &row) {
    const std::string &status = row.record.Status;
    return row.form.has("status in brackets") ? "[" + status + "]" : status;
}

std::string existsWord(const Row &row) {
    return wordIf(row.record.CacheFileExists, row.form.has("files exist") ? "exists" : "there");
}

// clang-format off
constexpr GoldenColumn kColumns[] = {
    {"Action", [](const Row &r) { return r.record.Action; }},
    {"ActionDateUTC", [](const Row &r) { return r.date(r.record.ActionDateUTC); }},
    {"CacheFileCreatedGMTDOS", [](const Row &r) { return r.date(r.record.CacheFileCreatedGMTDOS); }},
    {"CacheFileExists", existsWord},
    {"CacheFileName", [](const Row &r) { return r.record.CacheFileName; }},
    {"CacheFileNameDecoded", [](const Row &r) { return r.record.CacheFileNameDecoded; }},
    {"CacheFileRelativePath", [](const Row &r) { return r.record.CacheFileRelativePath; }},
    {"CacheFileSize", [](const Row &r) { return std::to_string(r.record.CacheFileSize); }},
    {"CacheFolderName", [](const Row &r) { return r.record.CacheFolderName; }},
    {"Category", [](const Row &r) { return r.record.Category; }},
    {"DataBlockFile", [](const Row &r) { return r.record.DataBlockFile; }},
    {"DataBlockFileOffset", [](const Row &r) { return std::to_string(r.record.DataBlockFileOffset); }},
    {"ExpiryDate", [](const Row &r) { return r.date(r.record.ExpiryDate); }},
    {"GZipEncoded", [](const Row &r) { return wordIf(r.record.GZipEncoded, "gzip"); }},
    {"Hidden", [](const Row &r) { return wordIf(r.record.Hidden, "hidden"); }},
    {"HistoryVersion", [](const Row &r) { return r.record.HistoryVersion; }},
    {"IsHistory", [](const Row &r) { return wordIf(r.record.IsHistory, "history"); }},
    {"IsPicture", [](const Row &r) { return wordIf(r.record.IsPicture, "picture"); }},
    {"IsWebPage", [](const Row &r) { return wordIf(r.record.IsWebPage, "page"); }},
    {"Links", [](const Row &r) { return r.record.Links; }},
    {"MD5", [](const Row &r) { return r.bodyMD5(); }},
    {"MIMEType", [](const Row &r) { return r.record.MIMEType; }},
    {"MapFileOffset", [](const Row &r) { return std::to_string(r.record.MapFileOffset); }},
    {"MetaData", [](const Row &r) { return replaceAll(r.record.MetaData, "\r\n", "\\r\\n"); }},
    {"MetaDataRecordOffset", [](const Row &r) { return std::to_string(r.record.MetaDataRecordOffset); }},
    {"Notes", [](const Row &r) { return r.record.Notes; }},
    {"OtherDate", [](const Row &r) { return r.date(r.record.OtherDate); }},
    {"OtherDateMeaning", [](const Row &r) { return r.record.OtherDateMeaning; }},
    {"RecordSize", [](const Row &r) { return std::to_string(r.record.RecordSize); }},
    {"Referrer", [](const Row &r) { return r.record.Referrer; }},
    {"Reference_ID", [](const Row &r) { return std::to_string(r.record.Reference_ID); }},
    {"Status", statusOf},
    {"Typed", [](const Row &r) { return wordIf(r.record.Typed, "typed"); }},
    {"URL", [](const Row &r) { return r.record.URL; }},
    {"URLFileName", [](const Row &r) { return r.record.URLFileName; }},
    {"URLParameters", [](const Row &r) { return r.record.URLParameters; }},
    {"URLRawValue", [](const Row &r) { return r.record.URLRawValue; }},
    {"User", [](const Row &r) { return r.record.User; }},
    {"Visits", [](const Row &r) { return std::to_string(r.record.Visits); }},
    {"WebpageTitle", [](const Row &r) { return r.record.WebpageTitle; }},
    {"cacheType", [](const Row &r) { return r.record.cacheType; }},
    {"facts", [](const Row &r) { return factsOf(r.record); }},
    {"host", [](const Row &r) { return r.record.host; }},
};
// clang-format on

/// The first line of expected.tsv that doesn't begin with a word of the reading's own.
std::string headLineOf(const std::string &expected) {
    for (const std::string_view line : split(expected, '\n'))
        if (!line.starts_with('@'))
            return std::string(line);
    return {};
}

std::string cellOf(const Row &row, std::string_view name) {
    for (const GoldenColumn &column : kColumns)
        if (column.name == name)
            return column.cell(row);
    ADD_FAILURE() << "expected.tsv has a column \"" << name << "\", which no field is known for";
    return {};
}

std::string countsOf(const char *word, const std::map<std::string, std::uint64_t> &counts) {
    std::string text;
    for (const auto &[reason, count] : counts)
        text += fmt::format("{}\t{}\t{}\n", word, reason, count);
    return text;
}

/// What a case's first line may give, "@given": the type of the file, the machine's offset from UTC
/// in minutes, and where the file lies below "input".
struct Given {
    Given(const std::string &expected, const fs::path &oneCase, const Reader &ofFolder) {
        const std::string firstLine = expected.substr(0, expected.find('\n'));
        const auto words = split(firstLine, '\t');
        if (words[0] == "@given") {
            line = firstLine + "\n";
            type = HistoryFileType{static_cast<std::int16_t>(numberIn(words.at(1)))};
            offset = std::chrono::minutes(numberIn(words.at(2)));
        }
        const Reader *ofCase = line.empty() ? nullptr : readerFor(type);
        reader = ofCase ? ofCase : &ofFolder;
        if (line.empty())
            type = reader->type;
        artefact = words.size() > 3 && !line.empty() ? oneCase / "input" / words[3]
                                                     : artefactIn(oneCase, *reader);
    }
    std::string line; ///< empty when there is none
    HistoryFileType type = HistoryFileType::none;
    std::chrono::minutes offset{0};
    const Reader *reader;
    fs::path artefact;
};

/// One reading of a case, with all that the reader says.
struct CaseReading {
    CaseReading(const Given &given, const fs::path &input, const Form &form)
        : reader(*given.reader) {
        file.historyFileType = given.type;
        file.sourceFileID = SourceFileId{7};
        file.fullPath = given.artefact;
        file.fileName = textOf(given.artefact.filename());
        file.fileParentPath = textOf(given.artefact.parent_path());
        if (!form.has("file without version"))
            file.version = given.reader->version;
        clock.offset = given.offset;
        const Evidence evidence(input);
        ContentProbe content;
        Unwatched task;
        const TempFolder scratch;
        ReadContext ctx{file, evidence, content, clock, scratch.path(), sink, log, task};
        ctx.classicOnly = form.has("classic rows alone");
        result = reader.read(ctx);
    }

    std::string logText(const Form &form) const {
        std::string text;
        for (const Failure &failure : log.entries) {
            if (failure.severity == Severity::Low && form.has("log without low entries"))
                continue;
            text += form.has("log by messages")
                        ? fmt::format("@log\t{}\n", failure.message)
                        : fmt::format("@log\t{}\t{}\t{}\n", severityWord(failure.severity),
                                      failure.procedure, failure.message);
        }
        return text;
    }

    /// In the form of expected.tsv: one line a record, so that a difference shows as one line.
    std::string text(const std::string &headLine, const fs::path &input, const Form &form) const {
        std::string text;
        if (form.has("type of the file"))
            text += fmt::format("@type\t{}\t{}\n", static_cast<int>(file.historyFileType),
                                file.version);
        text += fmt::format("@state\t{}\t{}\t{}\n", wordOf(result.state), result.notReached,
                            result.reason);
        text += countsOf("@passedOver", result.passedOver) + countsOf("@noted", result.noted) +
                logText(form) + headLine + '\n';
        for (const UrlRecord &record : sink.records) {
            std::vector<std::string> cells;
            for (const std::string_view name : split(headLine, '\t'))
                cells.push_back(cellOf({record, reader, input, form}, name));
            text += fmt::format("{}\n", fmt::join(cells, "\t"));
        }
        return replaceAll(text, input.string() + "/", "");
    }

    /// A kind that its row doesn't name would be unknown to filters, rebuilding and reports.
    void checkKinds() const {
        for (const UrlRecord &record : sink.records) {
            const bool isNamed =
                std::ranges::find(reader.kinds, recordKind(record.cacheType)) != reader.kinds.end();
            EXPECT_TRUE(isNamed || record.cacheType.empty()) << record.cacheType;
        }
    }

    const Reader &reader;
    HistoryFile file;
    FixedClock clock;
    MemorySink sink;
    MemoryLog log;
    ReadResult result;
};

} // namespace

std::vector<GoldenFolder> goldenFolders() {
    std::vector<GoldenFolder> folders;
    for (const Reader *reader : registry())
        for (const std::string_view name : split(reader->cases.folders, ';'))
            if (!name.empty() &&
                std::ranges::find(folders, name, &GoldenFolder::name) == folders.end())
                folders.push_back({std::string(name), reader});
    return folders;
}

void checkGoldenCases(const GoldenFolder &folder, const fs::path &golden) {
    const Form form(golden / folder.name);
    std::size_t count = 0;
    for (const auto &entry : fs::directory_iterator(golden / folder.name)) {
        if (!entry.is_directory())
            continue;
        SCOPED_TRACE(entry.path().filename().string());
        const fs::path input = entry.path() / "input";
        const std::string expected = contentOf(entry.path() / "expected.tsv");
        const Given given(expected, entry.path(), *folder.reader);
        const CaseReading reading(given, input, form);
        EXPECT_EQ(given.line + reading.text(headLineOf(expected), input, form), expected);
        EXPECT_FALSE(contentOf(entry.path() / "case.md").empty());
        reading.checkKinds();
        ++count;
    }
    EXPECT_GT(count, 0U);
}

fs::path artefactIn(const fs::path &oneCase, const Reader &reader) {
    for (const auto &entry : fs::recursive_directory_iterator(oneCase / "input"))
        for (const std::string_view name : split(reader.cases.artefact, ';'))
            if (entry.path().filename() == name)
                return entry.path();
    return {};
}

fs::path soundCase(const Reader &reader, const fs::path &golden) {
    return golden / reader.cases.sound;
}

} // namespace nv::test
