// File   = {"roots": {NAME: Node ...}, ...}
// Node   = {"type": "url", "name", "url", "date_added", "date_last_used", "guid", "id",
//           "meta_info": {"last_visited_desktop"}}
//        | {"type": "folder", "name", "children": [Node ...], "date_added", "date_modified", ...}
// with dates as texts, in microseconds since 1601. Members stand in the order of their names, so
// the name of a folder comes after its children. Relatives of the browser put nodes into a root
// also by names of their own, such as "trash".

#include "readers/chrome/profile/BookmarkFile.h"

#include "readers/Limits.h"

namespace nv {

namespace {

class Bookmarks final : public JsonReceiver {
  public:
    explicit Bookmarks(BookmarkFile &file) : m_file(file) {}

    void opened(const JsonPlace &place, bool isArray) override {
        m_levels.push_back(levelOf(place, isArray));
    }
    void closed(const JsonPlace &) override { m_levels.pop_back(); }

    void scalar(const JsonPlace &place, JsonScalar value) override {
        if (m_levels.empty() || m_levels.back().node == BookmarkNode::kNone)
            return;
        BookmarkNode &node = m_file.nodes[m_levels.back().node];
        if (m_levels.back().is == Is::node)
            takeMember(node, place.path.back(), value);
        else if (m_levels.back().is == Is::meta && !node.lastUsed &&
                 place.path.back().starts_with("last_visited"))
            node.lastUsed = numberOf(value);
    }

  private:
    enum class Is { other, file, roots, node, children, meta };
    struct Level {
        Is is = Is::other;
        std::size_t node = BookmarkNode::kNone;
    };

    Level levelOf(const JsonPlace &place, bool isArray) {
        if (place.path.empty())
            return {isArray ? Is::other : Is::file};
        const Level outer = m_levels.back();
        const std::string &name = place.path.back();
        if (outer.is == Is::file && name == "roots" && !isArray)
            return {Is::roots};
        if (outer.is == Is::node && isArray)
            return {name == "children" ? Is::children : Is::other, outer.node};
        if (outer.is == Is::node && name.ends_with("meta_info"))
            return {Is::meta, outer.node};
        const bool holdsNodes =
            outer.is == Is::roots || outer.is == Is::node || outer.is == Is::children;
        return holdsNodes && !isArray ? added(place, outer) : Level();
    }

    Level added(const JsonPlace &place, const Level &outer) {
        if (m_file.nodes.size() >= limits::kBookmarks) {
            ++m_file.beyondLimit;
            return {};
        }
        BookmarkNode node;
        node.parent = outer.node;
        node.offset = place.offset;
        node.isRoot = outer.is != Is::children;
        node.name = place.path.back(); // empty in an array
        m_file.nodes.push_back(std::move(node));
        return {Is::node, m_file.nodes.size() - 1};
    }

    static void takeMember(BookmarkNode &node, const std::string &name, const JsonScalar &value) {
        if (name == "name")
            node.name = scalarText(value);
        else if (name == "url")
            node.url = scalarText(value);
        else if (name == "guid" || (name == "id" && node.guid.empty()))
            node.guid = scalarText(value);
        else if (name == "date_added")
            node.added = numberOf(value);
        else if (name == "date_modified")
            node.modified = numberOf(value);
        else if (name == "date_last_used" && numberOf(value).value_or(0) != 0)
            node.lastUsed = numberOf(value);
        node.isFolder =
            node.isFolder && name != "url" && !(name == "type" && scalarText(value) == "url");
    }

    BookmarkFile &m_file;
    std::vector<Level> m_levels;
};

} // namespace

std::string BookmarkFile::folderOf(const BookmarkNode &node) const {
    std::string path;
    for (std::size_t at = node.parent;
         at != BookmarkNode::kNone && path.size() < limits::kFolderPathBytes; at = nodes[at].parent)
        path.insert(0,
                    nodes[at].name.substr(0, limits::kFolderPathBytes) + (path.empty() ? "" : "/"));
    if (path.size() > limits::kFolderPathBytes)
        path = "..." + path.substr(path.size() - limits::kFolderPathBytes);
    return path;
}

BookmarkFile readBookmarkFile(ByteView file, const std::function<bool(double)> &goOn) {
    BookmarkFile result;
    Bookmarks receiver(result);
    result.end = walkJson(file, receiver, goOn);
    return result;
}

} // namespace nv
