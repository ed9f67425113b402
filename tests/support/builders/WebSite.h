#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace nv::test {

/// Something that a browser fetched. Texts are raw bytes.
struct SiteItem {
    std::string url;
    std::string type; ///< of its content
    std::string body;
    bool isPacked = false;  ///< sent as gzip, where the browser's cache keeps it so
    bool isCleared = false; ///< the cache still lists it but its bytes are gone
    std::string location{}; ///< of a redirect (302), which only Firefox and Chrome keep
    /// What Internet Explorer calls its file, the first of that name or a later one.
    std::string fileName(int number = 1) const;
};

/// Pages and their parts, the first item being the main page.
using WebSite = std::vector<SiteItem>;

/// A page with references of all nine kinds, a frame with a part of its own, style sheets with
/// pictures, parts with queries and on another host, one that was cleared and one never fetched.
WebSite exampleSite();

enum class SiteCache { internetExplorer, firefox, chrome, safari, opera };

/// Writes what the browser would keep of the site, in its form, below `folder`, which is made.
void writeSite(const WebSite &site, SiteCache cache, const std::filesystem::path &folder);

} // namespace nv::test
