#include "readers/chrome/profile/Bookmarks.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/Limits.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/profile/BookmarkFile.h"
#include "readers/chrome/profile/ProfileRecord.h"
#include "readers/chrome/profile/ValueCipher.h"
#include "readers/chrome/shared/Stamps.h"
#include "readers/json/JsonFile.h"
#include "readers/sqlite/HistoryRow.h"

#include <fmt/format.h>

#include <array>
#include <unordered_set>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseChromiumBookmarks()";

/// What tells a bookmark of a copy from every other one, also from its own later form.
std::string identityOf(const BookmarkFile &file, const BookmarkNode &node) {
    return fmt::format("{}\n{}\n{}\n{}\n{}", node.guid, node.url, node.name, node.added.value_or(0),
                       file.folderOf(node));
}

/// The name of the file that this one is a copy of; empty when it is none.
std::string originalOf(std::string_view name) {
    for (const std::string_view suffix : {".bak", ".msbak"})
        if (name.size() > suffix.size() && toLower(name).ends_with(suffix))
            return std::string(name.substr(0, name.size() - suffix.size()));
    return startsWithNoCase(name, "Encrypted") ? "Bookmarks" : "";
}

/// Bookmarks that the file beside a copy has in the same form: they are its records.
class Original {
  public:
    explicit Original(const ReadContext &ctx) {
        const std::string name = originalOf(textOf(ctx.file.fullPath.filename()));
        if (name.empty())
            return;
        const auto path = ctx.evidence.find(ctx.file.fullPath.parent_path(), name);
        if (!path || ctx.evidence.factsOf(*path).size > limits::kJsonBytes)
            return;
        const Bytes bytes = ctx.evidence.whole(*path);
        const BookmarkFile file = readBookmarkFile(ByteView(bytes), [](double) { return true; });
        for (const BookmarkNode &node : file.nodes)
            if (!node.isFolder)
                m_bookmarks.insert(identityOf(file, node));
    }
    bool has(const BookmarkFile &file, const BookmarkNode &node) const {
        return !m_bookmarks.empty() && m_bookmarks.contains(identityOf(file, node));
    }

  private:
    std::unordered_set<std::string> m_bookmarks;
};

UrlRecord bookmarkRecord(const ReadContext &ctx, const BookmarkFile &file,
                         const BookmarkNode &node) {
    UrlRecord record = profileRecord(ctx, kChromeBookmark, "Bookmarked", "Bookmark");
    record.URLRawValue = node.url;
    setUrl(record, percentDecode(parseURLFromRawURL(node.url)));
    record.WebpageTitle = node.name;
    record.MapFileOffset = static_cast<std::int64_t>(node.offset);
    setEvent(record, stampDate(node.added), ctx.clock);
    record.OtherDate = stampDate(node.lastUsed);
    if (record.OtherDate.has())
        record.OtherDateMeaning = "Last Used";
    record.facts.add("folder", file.folderOf(node));
    record.facts.add("guid", node.guid);
    addStamp(record.facts, "created", node.added);
    addStamp(record.facts, "last_updated", node.modified);
    addStamp(record.facts, "last_used", node.lastUsed);
    record.facts.add("source_offset", static_cast<std::int64_t>(node.offset));
    return record;
}

ReadResult saveAll(ReadContext &ctx, const BookmarkFile &file) {
    ReadResult result = jsonResult(file.end, !file.nodes.empty(), ctx, kProcedure);
    const Original original(ctx);
    for (const BookmarkNode &node : file.nodes) {
        if (result.state == ReadState::cancelled)
            return result;
        if (node.isFolder)
            result.passedOver["folders, which their bookmarks name"] += node.isRoot ? 0 : 1;
        else if (original.has(file, node))
            ++result.passedOver["bookmarks that the file itself, beside this copy, has too"];
        else {
            UrlRecord record = bookmarkRecord(ctx, file, node);
            ctx.sink.save(record);
            if (!ctx.task.advance(1))
                result.state = ReadState::cancelled;
        }
    }
    std::erase_if(result.passedOver, [](const auto &each) { return each.second == 0; });
    result.notReached += file.beyondLimit;
    if (file.beyondLimit > 0 && result.state == ReadState::complete) {
        result.state = ReadState::cutShort;
        result.reason = fmt::format("more than {} bookmarks and folders", limits::kBookmarks);
    }
    return result;
}

ReadResult readBytes(ReadContext &ctx, ByteView bytes) {
    std::string plain;
    if (!cipherVersion(bytes).empty()) {
        plain = decryptedByPublicKey(bytes).value_or("");
        if (plain.empty())
            return {ReadState::notReadYet, "bookmarks, " + encryptionText(bytes), 0, {}};
        bytes = viewOf(plain);
    }
    return saveAll(ctx,
                   readBookmarkFile(bytes, [&ctx](double part) { return ctx.task.advance(part); }));
}

} // namespace

ReadResult parseChromiumBookmarks(ReadContext &ctx) {
    return readJsonFile(ctx,
                        {"PARSING CHROMIUM BOOKMARKS FILE", "Google Chrome", "", "chrome-32.png"},
                        kProcedure, [&ctx](ByteView bytes) { return readBytes(ctx, bytes); });
}

} // namespace nv
