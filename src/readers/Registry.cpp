#include "readers/Registry.h"

#include "readers/RecordKind.h"
#include "readers/chrome/Formats.h"
#include "readers/chrome/UnreadFormats.h"
#include "readers/chrome/cache/CacheFormats.h"
#include "readers/chrome/history/HistoryFormats.h"
#include "readers/chrome/profile/ProfileFormats.h"
#include "readers/firefox/Formats.h"
#include "readers/firefox/UnreadFormats.h"
#include "readers/firefox/cache/Cache2Formats.h"
#include "readers/firefox/profile/ProfileFormats.h"
#include "readers/ie/Formats.h"
#include "readers/ie/UnreadFormats.h"
#include "readers/mac/Formats.h"
#include "readers/opera/Formats.h"
#include "readers/others/UnreadFormats.h"
#include "readers/results/Formats.h"
#include "readers/safari/Formats.h"
#include "readers/safari/UnreadFormats.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

// The order of trial.
constexpr std::array kFormats = {
    &kFirefoxCacheFormat,
    &kMorkHistoryFormat,
    &kChromeHistoryFormat,
    &kChromeCacheFormat,
    &kFirefox3HistoryFormat,
    &kOperaCacheFormat,
    &kOperaHistoryFormat,
    &kSafariCacheFormat,
    &kSafariHistoryFormat,
    &kIECookiesFormat,
    &kIEHistoryFormat,
    &kIECacheFormat,
    &kHistExIndexFormat,
    &kOperaCookiesFormat,
    &kFirefoxCookiesFormat,
    &kSafariCookiesFormat,
    &kChromeCookiesFormat,
    &kNetAnalysisFormat,
    &kNvdFormat,
    &kHistExFormat,
    &kSimpleHtmlFormat,
    &kMacIECacheFormat,
    &kCsvFormat,
    // Beyond the classic rules; what isn't read yet is the last to be tried.
    &kChromiumHistoryFormat,
    &kChromiumFaviconsFormat,
    &kChromiumTopSitesFormat,
    &kChromiumShortcutsFormat,
    &kChromiumPredictorFormat,
    &kChromiumCookiesFormat,
    &kChromiumWebDataFormat,
    &kChromiumLoginsFormat,
    &kChromiumBookmarksFormat,
    &kChromiumPreferencesFormat,
    &kChromiumLocalStateFormat,
    &kChromiumSimpleCacheFormat,
    &kChromiumSqlCacheFormat,
    &kChromiumLoneIndexFormat,
    &kFirefoxFormsFormat,
    &kFirefoxPermissionsFormat,
    &kFirefoxLoginsFormat,
    &kFirefoxFaviconsFormat,
    &kFirefoxDownloadsFormat,
    &kFirefoxCache2Format,
    &kFirefoxSiteCacheFormat,
    &kFirefoxJsonlz4Format,
    &kFirefoxStorageFormat,
    &kLevelDBFormat,
    &kChromiumSessionFormat,
    &kChromiumSiteDataFormat,
    &kIEWebCacheFormat,
    &kSafariDatabaseFormat,
    &kSafariBinaryCookiesFormat,
    &kWebKitCacheFormat,
    &kEpiphanyHistoryFormat,
    &kEpiphanyCookiesFormat,
    &kFalkonHistoryFormat,
    &kAndroidBrowserFormat,
};

template <class Wanted>
const Reader *findReader(Formats formats, Wanted &&wanted) {
    const auto found =
        std::ranges::find_if(formats, [&](const Reader *reader) { return wanted(*reader); });
    return found == formats.end() ? nullptr : *found;
}

bool recognises(const Reader &reader, const Candidate &candidate) {
    return reader.recognises && reader.recognises(candidate);
}

bool makes(const Reader &reader, const RecordKind &kind) {
    return std::ranges::find(reader.kinds, &kind) != reader.kinds.end();
}

} // namespace

Formats registry() {
    return kFormats;
}

const Reader *recognise(const Candidate &candidate) {
    return findReader(registry(),
                      [&](const Reader &reader) { return recognises(reader, candidate); });
}

std::vector<const Reader *> readersTaking(const Candidate &candidate, Formats formats) {
    std::vector<const Reader *> takers;
    for (const Reader *reader : formats)
        if ((takers.empty() || reader->takesBesideOthers) && recognises(*reader, candidate))
            takers.push_back(reader);
    return takers;
}

const Reader *readerFor(HistoryFileType type) {
    return findReader(registry(), [type](const Reader &reader) {
        const auto &further = reader.furtherTypes;
        return reader.type == type || std::ranges::find(further, type) != further.end();
    });
}

const Reader *readerByKey(std::string_view key) {
    return findReader(registry(), [key](const Reader &reader) { return reader.key == key; });
}

const Reader *sourceOf(const UrlRecord &record, Formats formats) {
    const RecordKind *kind = recordKind(record.cacheType);
    return findReader(formats, [&](const Reader &reader) {
        return kind && reader.fetch && makes(reader, *kind) &&
               (!reader.isSourceOf || reader.isSourceOf(record));
    });
}

std::filesystem::path artefactOf(const Reader &reader, const Candidate &candidate) {
    return reader.artefact ? reader.artefact(candidate) : candidate.file;
}

bool holdsShaders(const Reader &reader, const Candidate &candidate) {
    return reader.holdsShaders && reader.holdsShaders(candidate);
}

std::string warningOn(const Reader &reader, const std::filesystem::path &file,
                      const Evidence &evidence) {
    return reader.warningOn ? reader.warningOn(file, evidence) : std::string();
}

} // namespace nv
