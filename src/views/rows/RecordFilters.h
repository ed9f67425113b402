#pragma once

#include "base/Examiner.h"

#include <array>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace nv {

struct UrlRecord;

/// The record filters: which rows of a query are shown. Kept in memory only, for one run of the
/// program. The flags stand in the order of their tests.
struct RecordFilters {
    bool enableFilters = false; ///< off: every row is shown

    // Data sources: off, they veto.
    bool showHistoryURLs = false;
    bool showCacheURLs = false;
    bool showCookies = false;
    bool showBookmarks = false;

    // Kinds of file
    bool showBitmaps = false;
    bool showPNG = false;
    bool showGIF = false;
    bool showJPEG = false;
    bool showMusic = false;
    bool showAudioFiles = false;
    bool showPDF = false;
    bool showHTML = false;
    bool showXML = false;
    bool showASP = false;
    bool showJS = false;
    bool showCSS = false;
    bool showPHPCGI = false;
    bool showMissingFileExt = false;
    bool showExcelDocs = false;
    bool showPowerpoint = false;
    bool showEXEs = false;
    bool showHelp = false;
    bool showAccessFiles = false;
    bool showMovies = false;
    bool showWordDocs = false;
    bool showArchiveFiles = false;

    // Sites
    bool showGoogle = false;
    bool showYahoo = false;
    bool showHotmailLive = false;
    bool showAOL = false;
    bool showFacebook = false;
    bool showMySpace = false;
    bool showYouTube = false;
    bool showEBAY = false;
    bool showBlogs = false;
    bool showFilesOpened = false;

    bool showAll = false; ///< what no source vetoes is shown, whatever its kind

    // Whose records: those of others are vetoed. Empty admits everybody's.
    std::string browser;
    std::string profile;
    std::string person;

    bool operator==(const RecordFilters &) const = default;
};

/// As a run of the program starts: off, and with every source and kind admitted, so that enabling
/// them hides nothing yet.
RecordFilters firstFilters();

/// What the filters look at, in the form in which they compare it.
struct FilterFacts {
    bool isHistory = false;
    bool isCookie = false;
    bool isBookmark = false;
    bool isCache = false;   ///< by its `CacheType`
    std::string category;   ///< upper case
    std::string urlFileExt; ///< as stored
    std::string url;        ///< lower case
    std::string browser;
    std::string profile;
    std::string person;
};

/// A few words of a filter's test, at most as many as the longest needs.
struct FilterWords {
    std::array<std::string_view, 4> word{};
    std::size_t count = 0;
    constexpr FilterWords(std::initializer_list<std::string_view> words) {
        for (const std::string_view each : words)
            word[count++] = each;
    }
    std::span<const std::string_view> all() const { return {word.data(), count}; }
};

enum class FilterGroup { Source, Kind, Site, All };

/// A flag: its name, what the dialog calls it, and what admits a record by it. Sources and
/// `showAll` have no words.
struct FilterFlag {
    bool RecordFilters::*flag;
    std::string_view name;
    std::string_view label;
    FilterGroup group;
    FilterWords extensions = {};    ///< the extension is one of these
    FilterWords categories = {};    ///< the category is one of these
    FilterWords categoryParts = {}; ///< the category contains one of these
    FilterWords urlParts = {};      ///< the URL contains one of these
};

/// All flags but `enableFilters`, in the order of their tests.
std::span<const FilterFlag> filterFlags();
/// By its name in any case, with or without the "show" before it; null when there is none.
const FilterFlag *findFilterFlag(std::string_view name);

/// A part of the origin by which records are chosen: its word, and what the dialog calls it.
struct OriginFilter {
    std::string RecordFilters::*text;
    std::string FilterFacts::*fact;
    std::string_view word;
    std::string_view label;
};
std::span<const OriginFilter> originFilters();

/// Whether a record is shown by flags that are enabled.
bool filterRecord(const RecordFilters &filters, const UrlRecord &record);
/// The same by what was read of a row. Facts that needsOf() leaves out may be empty.
bool filterRecord(const RecordFilters &filters, const FilterFacts &facts);

/// Which facts the flags that are on look at, besides source and type.
struct FilterNeeds {
    bool category = false;
    bool urlFileExt = false;
    bool url = false;
    bool origin = false; ///< browser, profile and person
};
FilterNeeds needsOf(const RecordFilters &filters);

/// Whether any data source is admitted: without one hardly a record can be.
bool hasSource(const RecordFilters &filters);
/// What the examiner is told of filters without one.
Message missingRecordType();

} // namespace nv
