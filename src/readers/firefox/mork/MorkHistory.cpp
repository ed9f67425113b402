// The layout is told in MorkFile.cpp.

#include "readers/firefox/mork/MorkHistory.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Dissection.h"
#include "readers/PageObjects.h"
#include "readers/WholeFile.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/mork/MorkFile.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainBAS.ParseMorkFile()";
constexpr std::string_view kLikelyDamaged =
    "Mork file is likely improperly formatted or partially corrupted";
constexpr std::string_view kTakesTime =
    "Due to the complex file format of Firefox history files, this could take a few minutes for "
    "larger files so please be extra patient...";

/// The share of the task that finding the entries takes.
constexpr double kParseShare = 0.5;
/// Dates hold microseconds; their first digits are the seconds.
constexpr std::size_t kSecondDigits = 10;

/// Noon and midnight to the second are taken for dates that were never set, as they always were:
/// examiners compare with earlier cases. The summary counts them.
bool isTakenForNone(Date date) {
    constexpr int kHalfDay = 12;
    const CivilTime time = date.civil();
    return time.hour % kHalfDay == 0 && time.minute == 0 && time.second == 0;
}

Date storedDate(std::string_view digits, const char *reason, ReadResult &result) {
    if (digits.size() < kSecondDigits || !MorkFileParser::numberOf(digits))
        return {};
    const Date date = MorkFileParser::convertSecondsToUTCDate(digits.substr(0, kSecondDigits));
    if (!date.has() || !isTakenForNone(date))
        return date;
    ++result.noted[reason];
    return {};
}

/// A page whose count isn't told was visited all the same.
std::int64_t visitsOf(std::string_view count) {
    std::int64_t visits = 0;
    count = trim(count);
    std::from_chars(count.data(), count.data() + count.size(), visits);
    return visits == 0 ? 1 : visits;
}

/// What follows the first "?", when that is neither the first character nor the last.
std::string parametersBehind(const std::string &url) {
    return url.starts_with('?') ? std::string() : parametersOf(url);
}

void setUrl(UrlRecord &record, const MorkEntry &entry) {
    record.URL = entry.url;
    record.URLRawValue = entry.url;
    record.host = entry.hostname;
    record.HashedURL = hashOfUrl(record.URL);
    record.CacheFileName = getFilenameFromPath(record.URL);
    record.URLProtocol = getURLProtocol(record.URL);
    record.URLParameters = parametersBehind(record.URL);
    setPageObjects(record);
}

void setDates(UrlRecord &record, const MorkEntry &entry, const Clock &clock, ReadResult &result) {
    record.ActionDateUTC = storedDate(
        entry.lastVisitDate, "last visit at noon or midnight, stored without that date", result);
    record.LastVisited = record.ActionDateUTC;
    record.ActionDateLocal = utcDateToLocal(record.ActionDateUTC, clock);
    record.OtherDate = storedDate(
        entry.firstVisitDate, "first visit at noon or midnight, stored without that date", result);
    if (record.OtherDate.has())
        record.OtherDateMeaning = "First Visit Date";
}

UrlRecord entryRecord(const ReadContext &ctx, const MorkEntry &entry, const std::string &version,
                      ReadResult &result) {
    UrlRecord record;
    record.SourceFile_ID = ctx.file.sourceFileID;
    setUrl(record, entry);
    record.RootPath = ctx.evidence.rootOf(ctx.file.fullPath);
    record.HistoryFilePath = textOf(ctx.file.fullPath);
    if (!record.URL.empty())
        record.HistoryVersion = version;
    record.MapFileOffset = entry.fileOffset;
    record.cacheType = kFirefox2History.word;
    record.IsHistory = true;
    record.Action = "Visited";
    record.Status = "URL";
    record.Typed = entry.typed == "1";
    record.Visits = visitsOf(entry.visitCount);
    setDates(record, entry, ctx.clock, result);
    return record;
}

void noteEntry(const MorkEntry &entry, ReadResult &result) {
    if (entry.url.empty())
        ++result.noted["row without a URL, stored as it is"];
    if (entry.rowID.starts_with('-'))
        ++result.noted["row marked for deletion"];
}

void showStep(TaskMonitor &task, std::size_t number, std::size_t total) {
    if (!task.wantsStep())
        return;
    TaskStep step;
    step.topMessage = fmt::format("Saving record {} of {} records...", number, total);
    step.topCounter = static_cast<std::int64_t>(number);
    step.topTotal = static_cast<std::int64_t>(total);
    task.show(step);
}

void saveEntries(ReadContext &ctx, const MorkFileParser &file, ReadResult &result) {
    RecordTrap trap(ctx.log, kProcedure, textOf(ctx.file.fullPath));
    SubTask task(ctx.task, kParseShare, 1);
    const std::size_t total = file.entries.count();
    std::size_t number = 0;
    for (const MorkEntry &entry : file.entries) {
        if (!task.advance(static_cast<double>(number++) / static_cast<double>(total))) {
            result.state = ReadState::cancelled;
            return;
        }
        showStep(task, number, total);
        const bool saved = trap.run(static_cast<std::uint64_t>(entry.fileOffset), [&] {
            UrlRecord record = entryRecord(ctx, entry, file.version, result);
            noteEntry(entry, result);
            ctx.sink.save(record);
        });
        if (!saved)
            ++result.passedOver["damaged record"];
    }
}

/// The damage is told when all that could be read is saved.
void tellDamage(ReadContext &ctx, ReadResult &result) {
    if (result.state != ReadState::cutShort && result.state != ReadState::failed)
        return;
    result.reason = textOf(ctx.file.fullPath) + ": " + result.reason;
    ctx.log.write(
        {result.reason, std::string(kProcedure), Severity::Warning, std::string(kLikelyDamaged)});
}

ReadResult readEntries(ReadContext &ctx) {
    ReadResult result;
    MorkFileParser file;
    SubTask task(ctx.task, 0, kParseShare);
    file.parseFile(ctx.evidence.open(ctx.file.fullPath), task, result);
    if (result.state != ReadState::cancelled && file.entries.count() > 0) {
        ctx.task.describe({"PARSING MOZILLA FIREFOX HISTORY FILE",
                           fmt::format("A total of {} URLs were found.", file.entries.count()),
                           std::string(kTakesTime), "firefox-32.gif"});
        saveEntries(ctx, file, result);
    }
    tellDamage(ctx, result);
    return result;
}

} // namespace

ReadResult parseMorkFile(ReadContext &ctx) {
    return trapped(ctx.log, Severity::Warning, kProcedure, kLikelyDamaged, unreadable(ctx),
                   [&ctx] { return readEntries(ctx); });
}

} // namespace nv
