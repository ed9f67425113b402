#include "views/overview/FoundTree.h"

#include "base/Files.h"
#include "readers/BrowserOf.h"
#include "readers/Evidence.h"
#include "readers/PathOrigin.h"
#include "readers/Registry.h"
#include "readers/SourceOption.h"
#include "views/limits/PlaceLevels.h"
#include "views/limits/TreesApart.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// What reads a file, in the order of the kinds. Two readers may call their kind the same.
struct FoundKind {
    int order = 0;
    std::string kind = {};
    std::string reader = {};

    friend bool operator<(const FoundKind &a, const FoundKind &b) {
        return std::tie(a.order, a.kind, a.reader) < std::tie(b.order, b.kind, b.reader);
    }
};

/// Whose files are, the tree that they lie in, and what they are.
using FoundKey = std::tuple<OriginNames, std::string, FoundKind>;

/// The same in the order of the tree.
struct FoundWay {
    std::array<PlaceTerm, std::tuple_size_v<OriginNames>> terms;
    FoundKind kind;

    friend bool operator<(const FoundWay &a, const FoundWay &b) {
        if (std::ranges::lexicographical_compare(a.terms, b.terms, isBefore))
            return true;
        return a.terms == b.terms && a.kind < b.kind;
    }
};

/// Which of the scanned folders a file lies in.
class EvidenceFolders {
  public:
    explicit EvidenceFolders(const std::vector<ScannedPlace> &places) {
        for (const ScannedPlace &place : places)
            if (!place.isWithinAnother)
                m_folders.insert(place.isFile ? place.path.parent_path() : place.path);
    }

    /// The nearest one; its own for a cache that was recognised from a folder within it.
    const std::string &of(const fs::path &file) {
        const fs::path parent = file.parent_path();
        if (m_folders.contains(file)) // a folder that is read as one
            return know(file, file);
        if (!m_last || m_last->first != parent)
            know(parent, nearest(parent));
        return m_last->second;
    }

  private:
    const std::string &know(const fs::path &folder, const fs::path &evidence) {
        m_last = std::pair(folder, textOf(evidence));
        return m_last->second;
    }
    fs::path nearest(const fs::path &folder) const {
        for (fs::path at = folder; at.has_relative_path(); at = at.parent_path())
            if (m_folders.contains(at))
                return at;
        return m_folders.contains(folder.root_path()) ? folder.root_path() : folder;
    }

    std::set<fs::path> m_folders;
    /// Files of a folder follow each other.
    std::optional<std::pair<fs::path, std::string>> m_last;
};

RecordGroup groupOfReader(const Reader &reader) {
    if (reader.option)
        return reader.option->group;
    return reader.kinds.empty() ? RecordGroup::other : reader.kinds.front()->group;
}

class FoundFiles {
  public:
    FoundFiles(const std::vector<ScannedPlace> &places, FailureLog &log)
        : m_folders(places), m_evidence({}), m_browserOf(m_evidence, &log) {}

    void take(const HistoryFile &file, std::size_t number) {
        const Reader *reader = readerFor(file.historyFileType);
        const Origin origin = m_browserOf(file.fullPath, engineOf(reader));
        FoundKind of;
        if (reader)
            of = {groupOrder(groupWord(groupOfReader(*reader))), std::string(reader->kind),
                  std::string(reader->key)};
        OriginNames names{m_folders.of(file.fullPath), origin.person, origin.browser,
                          origin.profile};
        FoundNode &kind =
            m_kinds[{std::move(names), m_treeOf(textOf(file.fullPath)), std::move(of)}];
        kind.artefacts.push_back(number);
        kind.bytes += file.fileSize;
        kind.notRead += reader && reader->read ? 0 : 1;
    }

    void fill(FoundTree &tree) {
        for (auto &[way, kind] : inOrder()) {
            std::ranges::sort(kind.artefacts);
            kind.files = kind.artefacts.size();
            add(tree.evidence, way, std::move(kind));
        }
        for (const FoundNode &node : tree.evidence) {
            tree.files += node.files;
            tree.notRead += node.notRead;
            tree.bytes += node.bytes;
        }
        liftUnknown(tree.evidence);
    }

  private:
    /// Trees are told apart where that is needed, and are one elsewhere.
    std::map<FoundWay, FoundNode> inOrder() const {
        TreesApart apart;
        for (const auto &[key, kind] : m_kinds)
            apart.add(std::get<OriginNames>(key), std::get<std::string>(key));
        std::map<FoundWay, FoundNode> ways;
        for (const auto &[key, kind] : m_kinds) {
            FoundNode &node =
                ways[{apart.terms(std::get<OriginNames>(key), std::get<std::string>(key)),
                      std::get<FoundKind>(key)}];
            node.artefacts.insert(node.artefacts.end(), kind.artefacts.begin(),
                                  kind.artefacts.end());
            node.bytes += kind.bytes;
            node.notRead += kind.notRead;
        }
        return ways;
    }

    /// They come in the order of the tree, so that what belongs together lies side by side.
    static void add(std::vector<FoundNode> &nodes, const FoundWay &way, FoundNode &&kind) {
        std::vector<FoundNode> *level = &nodes;
        for (const PlaceTerm &term : way.terms) {
            FoundNode &node = lastNode(*level, term);
            node.files += kind.files;
            node.notRead += kind.notRead;
            node.bytes += kind.bytes;
            level = &node.children;
        }
        kind.term = {PlaceField::Kind, way.kind.kind};
        kind.reader = way.kind.reader;
        level->push_back(std::move(kind));
    }

    EvidenceFolders m_folders;
    const Evidence m_evidence;
    BrowserOf m_browserOf;
    TreesOfPaths m_treeOf;
    std::map<FoundKey, FoundNode> m_kinds;
};

} // namespace

Walk groupFound(const HistoryFiles &files, const std::vector<ScannedPlace> &places,
                TaskMonitor &task, FailureLog &log, FoundTree &tree) {
    tree = {};
    FoundFiles found(places, log);
    std::size_t number = 0;
    const auto count = static_cast<double>(files.count());
    for (const HistoryFile &file : files) {
        if (!task.advance(static_cast<double>(number) / count))
            return Walk::Cancelled;
        found.take(file, number++);
    }
    found.fill(tree);
    return Walk::Finished;
}

} // namespace nv
