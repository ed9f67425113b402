#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace nv::test {

/// What a server of the made site answers to one address.
struct SiteAnswer {
    std::string url;
    std::string type;     ///< of its content, with the charset where the server tells it
    std::string coding{}; ///< "gzip", "br", "zstd", "deflate", "raw deflate"; empty: sent as it is
    int status = 200;
    std::string location{}; ///< of a redirect
    std::string body{};     ///< unpacked
    std::string shows{};    ///< of a page: what it is about; empty for parts
    /// Of a page: "page" looks like one, "feature" is for one way of a reference, "unscripted" for
    /// browsers without scripts; "limited", "lacking" and "scripted" can't be rebuilt whole.
    std::string group{};
    bool isKept = true; ///< by caches

    /// As it goes over the wire.
    std::string sent() const;
    /// Status line and headers, without line ends.
    std::vector<std::string> head(std::int64_t unixSeconds) const;
};

using MadeSite = std::vector<SiteAnswer>;

/// The site of tests/support/site, whose pictures, font and sound are made: pages that look like
/// pages, and one for each way in which pages name their parts.
MadeSite madeSite();
/// Only the answers for hosts that end in `host`.
MadeSite partOf(const MadeSite &site, std::string_view host);

/// For a server: the sent bodies, called by their number, and "answers.tsv", a line each: number,
/// status, address, page's group and what it shows, then the headers.
void writeForServer(const MadeSite &site, const std::filesystem::path &folder);

} // namespace nv::test
