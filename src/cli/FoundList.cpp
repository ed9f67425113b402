#include "cli/FoundList.h"

#include "app/jobs/ScanGapsText.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/PlaceFieldWord.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace nv::cli {

namespace {

using Json = nlohmann::ordered_json;

std::string indented(const FoundNode &node, std::size_t level) {
    return std::string(2 * level, ' ') + placeName(node.term);
}

void writeNodes(RowWriter &writer, const std::vector<FoundNode> &nodes, std::size_t level = 0) {
    for (const FoundNode &node : nodes) {
        writer.row({indented(node, level), wordOf(node.term.field), node.files, node.bytes,
                    node.notRead > 0 ? fmt::format("{} not read yet", node.notRead) : ""});
        writeNodes(writer, node.children, level + 1);
    }
}

Json jsonOf(const std::vector<FoundNode> &nodes, const HistoryFiles &files) {
    Json all = Json::array();
    for (const FoundNode &node : nodes) {
        Json one = {{"level", toLower(wordOf(node.term.field))},
                    {"name", placeValue(node.term)},
                    {"files", node.files},
                    {"not_read_yet", node.notRead},
                    {"bytes", node.bytes}};
        if (node.term.field != PlaceField::Kind) {
            one["children"] = jsonOf(node.children, files);
        } else {
            one["reader"] = node.reader;
            Json artefacts = Json::array();
            for (const std::size_t number : node.artefacts) {
                const HistoryFile &file = files.item(number + 1);
                artefacts.push_back({{"path", textOf(file.fullPath)},
                                     {"bytes", file.fileSize},
                                     {"md5", file.md5Hash},
                                     {"sha256", file.sha256Hash}});
            }
            one["artefacts"] = std::move(artefacts);
        }
        all.push_back(std::move(one));
    }
    return all;
}

} // namespace

void writeFound(Session &session, const FoundList &list) {
    const FoundTree &tree = list.tree;
    const auto writer =
        makeRowWriter(Format::table, session.out, {"Place", "Is", "Files", "Bytes", "Note"});
    writeNodes(*writer, tree.evidence);
    writer->finish();
    session.out << printableLines(unreadableText(list.gaps))
                << fmt::format("{} of {} can be imported, {}\n", tree.files - tree.notRead,
                               counted(tree.files, "file"), counted(tree.bytes, "byte"))
                << printableLines(gapsText(list.gaps));
}

std::string foundJson(const FoundList &list) {
    Json unreadable = Json::array();
    for (const UnreadPlace &place : list.gaps.unreadable)
        unreadable.push_back({{"path", textOf(place.path)}, {"reason", place.reason}});
    const Json all = {{"found", jsonOf(list.tree.evidence, list.files)},
                      {"files", list.tree.files},
                      {"not_read_yet", list.tree.notRead},
                      {"bytes", list.tree.bytes},
                      {"unreadable", unreadable},
                      {"links_not_followed", list.gaps.linksNotFollowed},
                      {"shader_caches", list.gaps.shaderCaches}};
    return all.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace nv::cli
