#include "readers/results/Formats.h"

#include "readers/Candidate.h"
#include "readers/SourceOption.h"
#include "readers/ie/Formats.h"
#include "readers/ie/Kinds.h"
#include "readers/results/HistEx.h"
#include "readers/results/Kinds.h"
#include "readers/results/LooseFile.h"
#include "readers/results/NetAnalysis.h"
#include "readers/results/Nvd.h"

namespace nv {

namespace {

using enum HistoryFileType;

constexpr SourceOption kNvd = {
    "chkHistoryNVD", RecordGroup::other, nullptr, "Results files (*.nvd)", 5, 0};
constexpr SourceOption kHistEx = {
    "chkHistEx", RecordGroup::other, nullptr, "Recovered records (*-UC-index.dat)", 17, 1};
constexpr SourceOption kCases = {
    "IncludeNetAnalysis", RecordGroup::other, nullptr, "NetAnalysis case files (*.net)", 16, 2};
constexpr SourceOption kPages = {
    "chkHTMLFiles", RecordGroup::other, nullptr, "Loose HTML files (*.htm, *.html)", 18, 3};
constexpr std::string_view kHistExMask = "*-UC-index.dat";

constexpr const RecordKind *kRecovered[] = {&kUnallocated};
constexpr const RecordKind *kCaseKinds[] = {&kNetAnalysis};
constexpr const RecordKind *kNvdKinds[] = {&kImportedBinary};
constexpr const RecordKind *kPageKinds[] = {&kSimpleHtml};

bool isHistExIndex(const Candidate &file) {
    return hasIndexName(file) && contentHas(file, "NetAnalysisURLCacheMSIE5Hstex");
}

bool isCase(const Candidate &file) {
    return file.extension == "net";
}

bool isNvd(const Candidate &file) {
    return file.extension == "nvd";
}

bool isPage(const Candidate &file) {
    return file.extension == "htm" || file.extension == "html";
}

} // namespace

constinit const Reader kHistExIndexFormat = {
    .type = histExIndex,
    .key = "hist-ex-index",
    .kind = "Hist-Ex Index",
    .option = &kHistEx,
    .mask = kHistExMask,
    .recognises = isHistExIndex,
    .read = ParseHistExFile,
    .kinds = kRecovered,
    .page = "hist-ex",
    .cases = {"hist-ex", "index.dat", "hist-ex/mark-with-the-letters-of-a-signature"},
};

constinit const Reader kNetAnalysisFormat = {
    .type = netAnalysis,
    .key = "netanalysis",
    .kind = "NetAnalysis",
    .version = "1.x",
    .option = &kCases,
    .mask = "*.net",
    .recognises = isCase,
    .read = ParseNetAnalysisFile,
    .kinds = kCaseKinds,
    .page = "netanalysis",
    .cases = {"netanalysis", "case.net", "netanalysis/good-case"},
};

constinit const Reader kNvdFormat = {
    .type = norvelaneNVD,
    .key = "nvd",
    .kind = "Norvelane NVD",
    .version = "2.x",
    .option = &kNvd,
    .mask = "*.nvd",
    .recognises = isNvd,
    .read = ParseNorvelaneNVDFile,
    .kinds = kNvdKinds,
    .page = "nvd",
    .cases = {"nvd", "case.nvd", "nvd/three-records"},
};

constinit const Reader kHistExFormat = {
    .type = histEx,
    .key = "hist-ex",
    .kind = "Hist-Ex",
    .version = "1.x",
    .option = &kHistEx,
    .mask = kHistExMask,
    .recognises = hasNameOfRecoveredIndex,
    .read = ParseHistExFile,
    .kinds = kRecovered,
    .page = "hist-ex",
    .cases = {"hist-ex", "0001-UC-index.dat", "hist-ex/three-signatures"},
};

constinit const Reader kSimpleHtmlFormat = {
    .type = simpleHTML,
    .key = "html",
    .kind = "Simple HTML",
    .option = &kPages,
    .mask = "*.htm;*.html",
    .recognises = isPage,
    .read = ParseSimpleHTML,
    .kinds = kPageKinds,
    .page = "html",
    .cases = {"html", "a%20page.htm", "html/page-with-a-title"},
    .isOneRecord = true,
};

// Its files have no name of their own: the examiner says what a file is.
constinit const Reader kCsvFormat = {
    .type = csv,
    .key = "csv",
    .kind = "Unallocated",
    .read = ParseCSVFile,
    .kinds = kRecovered,
    .page = "html",
    .cases = {"html", "list.csv", "html/list-of-values"},
};

} // namespace nv
