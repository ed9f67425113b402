#include "import/ImportClass.h"

#include "readers/Registry.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace nv {

namespace {

constexpr std::array<ImportOption, 19> kOptions = {{
    {"chkCacheChrome", &ImportClass::IncludeCacheChrome},
    {"chkCacheFirefox", &ImportClass::IncludeCacheFirefox},
    {"chkCacheIE", &ImportClass::IncludeCacheIE},
    {"chkCacheOpera", &ImportClass::IncludeCacheOpera},
    {"chkCacheSafari", &ImportClass::IncludeCacheSafari},
    {"chkHistoryNVD", &ImportClass::IncludeNVD},
    {"chkHistoryOpera", &ImportClass::IncludeHistoryOpera},
    {"chkHistorySafari", &ImportClass::IncludeHistorySafari},
    {"chkHistoryFirefox", &ImportClass::IncludeHistoryFirefox},
    {"chkHistoryChrome", &ImportClass::IncludeHistoryChrome},
    {"chkHistoryIE", &ImportClass::IncludeHistoryIE},
    {"chkCookiesFirefox", &ImportClass::IncludeCookiesFirefox},
    {"chkCookiesOpera", &ImportClass::IncludeCookiesOpera},
    {"chkCookiesSafari", &ImportClass::IncludeCookiesSafari},
    {"chkCookiesChrome", &ImportClass::IncludeCookiesChrome},
    {"chkCookiesIE", &ImportClass::IncludeCookiesIE},
    {"IncludeNetAnalysis", &ImportClass::IncludeNetAnalysis},
    {"chkHistEx", &ImportClass::IncludeHistEx},
    {"chkHTMLFiles", &ImportClass::IncludeSimpleHTMLFiles},
}};

/// Rows that share an option show the same mask.
std::string_view maskOf(std::string_view option) {
    const auto row = std::ranges::find(registry(), option, &Reader::option);
    return row == registry().end() ? std::string_view() : row->mask;
}

} // namespace

std::span<const ImportOption> importOptions() {
    return kOptions;
}

bool wants(const ImportClass &job, std::string_view option) {
    const auto *found = std::ranges::find(kOptions, option, &ImportOption::name);
    if (found == kOptions.end())
        throw std::out_of_range("no import option \"" + std::string(option) + "\"");
    return job.*found->member;
}

std::string maskText(const ImportClass &job) {
    std::string text;
    for (const ImportOption &option : kOptions) {
        const std::string_view mask = maskOf(option.name);
        if (!(job.*option.member) || mask.empty())
            continue;
        if (!text.empty())
            text.push_back(';');
        text.append(mask);
    }
    return text;
}

void removeFile(HistoryFiles &files, const std::filesystem::path &path) {
    for (std::size_t position = files.Count(); position > 0; --position)
        if (files.Item(position).FullPath == path)
            files.Remove(position);
}

} // namespace nv
