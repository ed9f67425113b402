#include "views/overview/FoundTree.h"

#include "base/Files.h"
#include "readers/BrowserOf.h"
#include "readers/Evidence.h"
#include "readers/Registry.h"
#include "readers/SourceOption.h"
#include "views/limits/PlaceLevels.h"

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

constexpr std::array kFields = {PlaceField::Evidence, PlaceField::Person, PlaceField::Browser,
                                PlaceField::Profile, PlaceField::Kind};

/// In the order of the tree. Two readers may call their kind the same.
struct FoundKey {
    std::array<std::string, kFields.size() - 1> origin;
    int order = 0;
    std::string kind = {};
    std::string reader = {};

    friend bool operator<(const FoundKey &a, const FoundKey &b) {
        return std::tie(a.origin, a.order, a.kind, a.reader) <
               std::tie(b.origin, b.order, b.kind, b.reader);
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
        FoundKey key{
            .origin = {m_folders.of(file.fullPath), origin.person, origin.browser, origin.profile}};
        if (reader) {
            key.order = groupOrder(groupWord(groupOfReader(*reader)));
            key.kind = reader->kind;
            key.reader = reader->key;
        }
        FoundNode &kind = m_kinds[std::move(key)];
        kind.artefacts.push_back(number);
        kind.bytes += file.fileSize;
        kind.notRead += reader && reader->read ? 0 : 1;
    }

    void fill(FoundTree &tree) {
        for (auto &[key, kind] : m_kinds) {
            kind.files = kind.artefacts.size();
            add(tree.evidence, key, std::move(kind), 0);
        }
        for (const FoundNode &node : tree.evidence) {
            tree.files += node.files;
            tree.notRead += node.notRead;
            tree.bytes += node.bytes;
        }
        liftUnknown(tree.evidence);
    }

  private:
    /// Keys come in the order of the tree, so that what belongs together lies side by side.
    static void add(std::vector<FoundNode> &level, const FoundKey &key, FoundNode &&kind,
                    std::size_t at) {
        if (at == key.origin.size()) {
            kind.term = {PlaceField::Kind, key.kind};
            kind.reader = key.reader;
            level.push_back(std::move(kind));
            return;
        }
        FoundNode &node = lastNode(level, {kFields.at(at), key.origin.at(at)});
        node.files += kind.files;
        node.notRead += kind.notRead;
        node.bytes += kind.bytes;
        add(node.children, key, std::move(kind), at + 1);
    }

    EvidenceFolders m_folders;
    const Evidence m_evidence;
    BrowserOf m_browserOf;
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
