#include "app/project/Project.h"
#include "cli/Commands.h"
#include "cli/LoadedTable.h"
#include "cli/PlaceFieldWord.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "views/limits/Places.h"

namespace nv::cli {

namespace {

enum class Tree { evidence, hosts, kinds, tags, hashSets, all };

struct Arguments {
    std::string project;
    Tree tree = Tree::all;
    Format format = Format::table;
};

class PlacesText {
  public:
    PlacesText(RowWriter &writer, Format format)
        : m_writer(writer), m_isForPeople(format == Format::table) {}

    /// People see by the space before a name what it lies in; programs by the level.
    void write(const std::vector<PlaceNode> &nodes, std::size_t level = 0) {
        for (const PlaceNode &node : nodes) {
            if (m_isForPeople)
                m_writer.row({std::string(2 * level, ' ') + placeName(node.term),
                              wordOf(node.term.field), node.records});
            else
                m_writer.row({placeValue(node.term), wordOf(node.term.field), node.records, level});
            write(node.children, level + 1);
        }
    }

  private:
    RowWriter &m_writer;
    bool m_isForPeople;
};

void writePlaces(Session &session, const Arguments &arguments, const Places &places) {
    std::vector<std::string> headings = {"Place", "Is", "Records"};
    if (arguments.format != Format::table)
        headings.emplace_back("Level");
    const auto writer = makeRowWriter(arguments.format, session.out, headings);
    PlacesText text(*writer, arguments.format);
    const auto wants = [&arguments](Tree tree) {
        return arguments.tree == tree || arguments.tree == Tree::all;
    };
    if (wants(Tree::evidence))
        text.write(places.evidence);
    if (wants(Tree::hosts))
        text.write(places.hosts);
    if (wants(Tree::kinds))
        text.write(places.kinds);
    if (wants(Tree::tags))
        text.write(places.tags);
    if (wants(Tree::hashSets))
        text.write(places.hashSets);
    writer->finish();
}

Exit run(Session &session, const Arguments &arguments) {
    session.openForReading(arguments.project);
    Places places;
    const Walk walk =
        loadPlaces(session.program.state.projectDB.connection(), session.task, places);
    session.task.clear();
    if (walk == Walk::Finished)
        writePlaces(session, arguments, places);
    closeProject(session.program);
    if (walk == Walk::Cancelled || interrupted)
        return Exit::interrupted;
    const Exit read = tellUnread(session, places.unread);
    if (!places.unread.empty())
        session.err << "no place counts them\n";
    return read;
}

} // namespace

Command placesCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "places",
            .what = "Where the rows of a project come from, with their numbers",
            .readme = {"`places PROJECT`",
                       "counts rows by folder, person, browser, profile and "
                       "kind, hosts by registered domain, tags and hash sets; `--tree`"},
            .examples = {{"places case.nvp", "all trees"},
                         {"places case.nvp --tree hosts --format csv",
                          "hosts below the domains that somebody has registered"}},
            .arguments = {projectWord(given->project),
                          choice<Tree>("--tree", given->tree,
                                       {{"evidence", Tree::evidence},
                                        {"hosts", Tree::hosts},
                                        {"kinds", Tree::kinds},
                                        {"tags", Tree::tags},
                                        {"hash-sets", Tree::hashSets},
                                        {"all", Tree::all}},
                                       "Which tree"),
                          formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
