#include "readers/sqlite/CookieRow.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "time/SourceClocks.h"

namespace nv {

namespace {

/// A leading point says that the cookie holds for all hosts of the domain.
std::string_view withoutLeadingPoint(std::string_view host) {
    return host.starts_with('.') ? host.substr(1) : host;
}

bool hasExpired(const CookieRow &row, const Clock &clock) {
    return row.expiry.has() && row.expiry < Date::fromTimePoint(clock.now());
}

} // namespace

UrlRecord cookieRecord(const ReadContext &ctx, const CookieRow &row, std::string_view cacheType,
                       Date fileCreated) {
    UrlRecord record;
    record.Action = "Cached";
    record.SourceFile_ID = ctx.file.sourceFileID;
    record.URLRawValue = withoutLeadingPoint(row.host);
    record.host = record.URLRawValue;
    record.URL = percentDecode(parseURLFromRawURL(record.URLRawValue));
    record.HashedURL = hashOfUrl(record.URL);
    record.RecordSize = charCount(record.URL);
    record.RootPath = ctx.evidence.rootOf(ctx.file.fullPath);
    record.cacheType = cacheType;
    record.CacheFileCreatedGMTDOS = fileCreated;
    record.HistoryFilePath = textOf(ctx.file.fullPath);
    record.HistoryVersion = ctx.file.version;
    record.IsCookie = true;
    record.ActionDateUTC = row.lastAccess;
    record.LastVisited = row.lastAccess;
    record.ActionDateLocal = utcDateToLocal(row.lastAccess, ctx.clock);
    record.ExpiryDate = row.expiry;
    record.Status = hasExpired(row, ctx.clock) ? "Expired" : "Cookie";
    record.MetaData = row.value;
    record.URLFileName = row.name;
    record.URLParameters = row.value;
    record.Visits = kVisitsUnknown;
    return record;
}

} // namespace nv
