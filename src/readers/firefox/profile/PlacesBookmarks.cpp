// A tree in one table, and what belongs to it:
//   moz_bookmarks       = id type fk parent title keyword_id dateAdded lastModified guid
//                         type 1 bookmark (fk is its page), 2 folder, 3 separator
//   moz_bookmarks_roots = root_name folder_id                  up to Firefox 61
//   moz_items_annos     = item_id anno_attribute_id content    up to Firefox 61 or so
//   moz_bookmarks_deleted = guid dateRemoved                   only in profiles that are synced
// A tag is a folder below that of the tags, and holds an item for each page that has it.

#include "readers/firefox/profile/PlacesBookmarks.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/firefox/Kinds.h"
#include "readers/sqlite/FurtherTables.h"

#include <array>
#include <set>
#include <unordered_map>
#include <vector>

namespace nv {

namespace {

constexpr const char *kProcedure = "Firefox3History.saveBookmarks()";
constexpr const char *kTable = "moz_bookmarks";
constexpr std::array<std::string_view, 8> kColumns = {
    "type", "fk", "parent", "title", "keyword_id", "dateAdded", "lastModified", "guid"};
enum Column : std::size_t { kType, kPage, kParent, kTitle, kKeyword, kAdded, kModified, kGuid };

constexpr std::int64_t kFolder = 2;
constexpr std::int64_t kSeparator = 3;
/// Folders lie in each other some five deep; what goes deeper is made to look like it.
constexpr std::size_t kDeepest = 100;

struct Item {
    std::int64_t id = 0;
    std::int64_t type = 0;
    std::optional<std::int64_t> page;
    std::int64_t parent = 0;
    std::string title;
    std::int64_t keyword = 0;
    std::optional<std::int64_t> added; ///< µs, on Android ms
    std::optional<std::int64_t> modified;
    std::string guid;
};

/// All bookmarks of a file, gathered before the first row: an item may stand before its folder.
class BookmarkTree {
  public:
    BookmarkTree(EvidenceDatabase &database, ReadContext &ctx, PlacesPages &pages,
                 PlacesNotes &notes, ReadResult &result)
        : m_database(database), m_ctx(ctx), m_pages(pages), m_notes(notes), m_result(result) {}

    bool read() { return readRoots() && readItems() && readAnnotations() && sortOut(); }
    bool save(Date fileCreated);
    bool saveDeleted(Date fileCreated);

  private:
    bool readRoots();
    bool readItems();
    bool readAnnotations();
    bool sortOut();
    const Item *folder(std::int64_t id) const;
    bool isTagging(const Item &item) const;
    std::string pathOf(const Item &item) const;
    UrlRecord recordOf(const Item &item, Date fileCreated);

    EvidenceDatabase &m_database;
    ReadContext &m_ctx;
    PlacesPages &m_pages;
    PlacesNotes &m_notes;
    ReadResult &m_result;
    std::set<std::int64_t> m_tagRoots;
    std::vector<Item> m_items;
    std::unordered_map<std::int64_t, std::size_t> m_folders;                  ///< places in m_items
    std::unordered_map<std::int64_t, std::vector<std::string>> m_annotations; ///< by item
    std::vector<const Item *> m_bookmarks;
    std::unordered_map<std::int64_t, std::vector<std::string>> m_tags; ///< by page
};

bool BookmarkTree::readRoots() {
    constexpr std::array<std::string_view, 2> kRoots = {"root_name", "folder_id"};
    return FurtherTables(m_ctx, m_database, kProcedure, m_result)
        .each("moz_bookmarks_roots", kRoots, [this](std::int64_t, const Row &row) {
            if (row.text(0) == "tags")
                m_tagRoots.insert(row.number(1).value_or(0));
        });
}

bool BookmarkTree::readItems() {
    return FurtherTables(m_ctx, m_database, kProcedure, m_result)
        .each(kTable, kColumns, [this](std::int64_t id, const Row &row) {
            const std::int64_t type = row.number(kType).value_or(0);
            if (type == kFolder)
                m_folders.emplace(id, m_items.size());
            m_items.push_back({id, type, row.number(kPage), row.number(kParent).value_or(0),
                               row.text(kTitle), row.number(kKeyword).value_or(0),
                               row.number(kAdded), row.number(kModified), row.text(kGuid)});
            if (m_items.back().guid == "tags________")
                m_tagRoots.insert(id);
        });
}

bool BookmarkTree::readAnnotations() {
    constexpr std::array<std::string_view, 3> kNotes = {"item_id", "anno_attribute_id", "content"};
    std::unordered_map<std::int64_t, std::string> names;
    return readAnnotationNames(m_database, m_ctx, m_result, names) &&
           FurtherTables(m_ctx, m_database, kProcedure, m_result)
               .each("moz_items_annos", kNotes, [&](std::int64_t, const Row &row) {
                   m_annotations[row.number(0).value_or(0)].push_back(
                       annotationText(names[row.number(1).value_or(0)], row.text(2)));
               });
}

/// What of the items is a bookmark, what a tag of one, and what gives no row.
bool BookmarkTree::sortOut() {
    std::set<std::int64_t> used; // folders that their bookmarks tell of
    std::set<std::int64_t> marked;
    for (const Item &item : m_items) {
        used.insert(item.parent);
        if (item.page && !isTagging(item))
            marked.insert(*item.page);
    }
    for (const Item &item : m_items) {
        const bool isTag = isTagging(item);
        if (item.page && isTag)
            m_tags[*item.page].push_back(folder(item.parent)->title);
        if (item.page && (!isTag || !marked.contains(*item.page)))
            m_bookmarks.push_back(&item);
        else if (item.type == kSeparator)
            ++m_result.passedOver["separator among the bookmarks"];
        else if (item.type == kFolder && !used.contains(item.id) && folder(item.parent) &&
                 folder(item.parent)->parent != 0)
            ++m_result.passedOver["empty folder among the bookmarks"];
        else if (!item.page && item.type != kFolder)
            ++m_result.passedOver["bookmark without a page"];
    }
    return true;
}

const Item *BookmarkTree::folder(std::int64_t id) const {
    const auto found = m_folders.find(id);
    return found == m_folders.end() ? nullptr : &m_items[found->second];
}

bool BookmarkTree::isTagging(const Item &item) const {
    const Item *tag = folder(item.parent);
    return tag && m_tagRoots.contains(tag->parent);
}

std::string BookmarkTree::pathOf(const Item &item) const {
    std::string path;
    std::set<const Item *> met; // a damaged folder may lie in itself
    const Item *at = folder(item.parent);
    for (; at && met.size() < kDeepest && met.insert(at).second; at = folder(at->parent))
        if (!at->title.empty())
            path.insert(0, path.empty() ? at->title : at->title + "/");
    return path;
}

UrlRecord BookmarkTree::recordOf(const Item &item, Date fileCreated) {
    UrlRecord record = profileRecord(m_ctx, kFirefoxBookmark, "Bookmarked",
                                     m_pages.urlOf(*item.page), fileCreated);
    addSource(record, kTable, item.id);
    record.ActionDateUTC = mozDate(item.added, m_pages.unit());
    record.OtherDate = mozDate(item.modified, m_pages.unit());
    if (record.OtherDate.has())
        record.OtherDateMeaning = "Last Modified";
    record.WebpageTitle = item.title;
    record.facts.add("folder", pathOf(item));
    record.facts.add("guid", item.guid);
    const std::string keyword = m_notes.keywordByNumber(item.keyword);
    record.facts.add("keyword", keyword.empty() ? m_notes.keywordOf(*item.page) : keyword);
    for (const std::string &tag : m_tags[*item.page])
        record.facts.add("tags", tag);
    if (const auto notes = m_annotations.find(item.id); notes != m_annotations.end())
        for (const std::string &note : notes->second)
            record.facts.add("annotation", note);
    addMozDate(record.facts, "created", item.added, m_pages.unit());
    return record;
}

bool BookmarkTree::save(Date fileCreated) {
    RecordTrap trap(m_ctx.log, kProcedure, textOf(m_ctx.file.fullPath));
    for (const Item *item : m_bookmarks) {
        if (!m_ctx.task.advance(0)) {
            m_result.state = ReadState::cancelled;
            break;
        }
        trap.attempt(static_cast<std::uint64_t>(item->id), [&] {
            UrlRecord record = recordOf(*item, fileCreated);
            m_ctx.sink.save(record);
        });
    }
    if (trap.failed() > 0)
        m_result.passedOver["damaged bookmark"] += trap.failed();
    return m_result.state != ReadState::cancelled;
}

/// Of a removed bookmark the browser keeps when that was, to tell its other devices.
bool BookmarkTree::saveDeleted(Date fileCreated) {
    constexpr const char *kDeleted = "moz_bookmarks_deleted";
    constexpr std::array<std::string_view, 2> kGone = {"guid", "dateRemoved"};
    return FurtherTables(m_ctx, m_database, kProcedure, m_result)
        .each(kDeleted, kGone, [&](std::int64_t id, const Row &row) {
            UrlRecord record = profileRecord(m_ctx, kFirefoxBookmark, "Deleted", {}, fileCreated);
            addSource(record, kDeleted, id);
            record.Status = "Deleted";
            record.ActionDateUTC = mozDate(row.number(1), m_pages.unit());
            record.facts.add("guid", row.text(0));
            m_ctx.sink.save(record);
        });
}

} // namespace

bool saveBookmarks(ReadContext &ctx, EvidenceDatabase &database, PlacesPages &pages,
                   PlacesNotes &notes, Date fileCreated, ReadResult &result) {
    BookmarkTree tree(database, ctx, pages, notes, result);
    return tree.read() && tree.save(fileCreated) && tree.saveDeleted(fileCreated);
}

} // namespace nv
