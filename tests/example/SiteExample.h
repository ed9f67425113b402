#pragma once

#include <filesystem>
#include <string_view>

namespace nv::example {

/// The made site as a browser keeps it, of which `kind` says which ("simple", "blocks", "sql",
/// "cache2", "internet-explorer", "firefox", "chrome", "safari", "opera"), or for a server
/// ("server"). "hostile" is another site, in a Simple cache, whose pages reach out. Throws
/// std::invalid_argument for another kind.
void writeMadeSite(std::string_view kind, const std::filesystem::path &folder);

/// A disk of today: Chromium with an SQL cache and Firefox with a cache2, each with some of the
/// site's pages and a history.
void writeTodayExample(const std::filesystem::path &disk);

} // namespace nv::example
