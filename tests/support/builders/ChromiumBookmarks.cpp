#include "support/builders/ChromiumBookmarks.h"

namespace nv::test {

namespace {

std::string listOf(const std::vector<ChromiumBookmark> &children) {
    std::string text;
    for (const ChromiumBookmark &child : children)
        text += (text.empty() ? "" : ", ") + bookmarkJson(child);
    return "[ " + text + " ]";
}

std::string member(const std::string &name, const std::string &value) {
    return "\"" + name + "\": \"" + value + "\"";
}

} // namespace

std::string bookmarkJson(const ChromiumBookmark &bookmark) {
    const bool isFolder = bookmark.url.empty();
    return "{ " + (isFolder ? "\"children\": " + listOf(bookmark.children) + ", " : "") +
           member("date_added", std::to_string(bookmark.added)) + ", " +
           member("date_last_used", std::to_string(bookmark.lastUsed)) + ", " +
           member("guid", bookmark.guid) + ", " + member("id", "5") + ", " +
           member("name", bookmark.name) + ", " + member("type", isFolder ? "folder" : "url") +
           (isFolder ? "" : ", " + member("url", bookmark.url)) + " }";
}

std::string bookmarksFile(const std::vector<ChromiumBookmark> &bar,
                          const std::vector<ChromiumBookmark> &other) {
    const auto root = [](const std::string &name, const std::vector<ChromiumBookmark> &children) {
        return bookmarkJson({.name = name, .guid = name, .children = children});
    };
    return "{\n \"checksum\": \"c8df2ae8\",\n \"roots\": {\n  \"bookmark_bar\": " +
           root("Bookmarks bar", bar) + ",\n  \"other\": " + root("Other bookmarks", other) +
           ",\n  \"synced\": " + root("Mobile bookmarks", {}) + "\n },\n \"version\": 1\n}\n";
}

} // namespace nv::test
