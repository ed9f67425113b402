#include "ui/parts/HashSetsPart.h"

#include "app/messages/HashSetMessages.h"
#include "base/DisplayText.h"
#include "base/Text.h"
#include "platform/qt/QtText.h"
#include "time/DateFormat.h"
#include "ui/limits/HashSetForm.h"
#include "ui/limits/HashSetsForm.h"
#include "ui/limits/PlacesPane.h"
#include "ui/tags/MarksBox.h"

#include <QAction>
#include <QSignalBlocker>
#include <QSplitter>

#include <span>
#include <utility>

namespace nv {

namespace {

QVariant variantOf(const HashLimit &limit) {
    return limit.isEmpty() ? QVariant() : QVariant::fromValue(limit);
}

QString madeText(const HashSetMade &made, const std::string &name) {
    QString text = HashSetsPart::tr("\"%1\" was made: %2 from %3.")
                       .arg(toQt(displayText(name)),
                            toQt(counted(made.hashes, "different hash", "different hashes")),
                            toQt(counted(made.lines, "line")));
    if (made.withoutHash == 0)
        return text;
    text += HashSetsPart::tr(" %1 without one were passed over:")
                .arg(toQt(counted(made.withoutHash, "line")));
    for (const std::string &line : made.refused)
        text += u'\n' + toQt(displayText(line));
    return text;
}

QString matchedText(std::span<const HashSetFile> sets, const HashMatch &match) {
    const QString how =
        HashSetsPart::tr("To have it compared, import the evidence into a new project, with \"Look "
                         "for cached content in the hash sets\" ticked in the wizard.");
    return toQt(matchText(match, fromQt(how)) + '\n' + matchedSetsText(sets, match));
}

} // namespace

HashSetsPart::HashSetsPart(Workbench &bench)
    : m_bench(bench), m_places(bench.dataArea->findChild<PlacesPane *>()) {
    connect(bench.actions.hashSets, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.ShowHashSets()", [this] { showForm(); }); });
    connect(bench.actions.hideKnown, &QAction::toggled, this, [this](bool hidden) {
        if (const UrlTable *table = m_bench.table->table()) {
            HashLimit limit = table->hashSets;
            limit.withoutKnown = hidden;
            limitTo(limit);
        }
    });
    connect(m_places, &PlacesPane::hashLimitMade, this, &HashSetsPart::limitTo);
    connect(&bench, &Workbench::hashLimitChosen, this, &HashSetsPart::setLimit);
    connect(&bench, &Workbench::projectClosing, this, [this] { showLimit({}); });
    bench.limits.add(*this);
}

QVariant HashSetsPart::limit() const {
    const UrlTable *table = m_bench.table->table();
    return table ? variantOf(table->hashSets) : QVariant();
}

void HashSetsPart::setLimit(const QVariant &limit) {
    UrlTable *table = m_bench.table->table();
    if (!table)
        return;
    table->hashSets = limit.value<HashLimit>();
    showLimit(table->hashSets);
}

void HashSetsPart::showLimit(const HashLimit &limit) {
    const QSignalBlocker quiet(m_bench.actions.hideKnown);
    m_bench.actions.hideKnown->setChecked(limit.withoutKnown);
    m_places->setHashLimit(limit);
}

std::vector<LimitChip> HashSetsPart::chips() const {
    const UrlTable *table = m_bench.table->table();
    if (!table)
        return {};
    std::vector<LimitChip> chips;
    const HashLimit &now = table->hashSets;
    if (now.isOnly()) {
        HashLimit rest;
        rest.withoutKnown = now.withoutKnown;
        chips.push_back({tr("In hash set: %1").arg(shownSetsText(now)), variantOf(rest)});
    }
    if (now.withoutKnown) {
        HashLimit rest = now;
        rest.withoutKnown = false;
        chips.push_back({tr("Known files hidden"), variantOf(rest)});
    }
    return chips;
}

void HashSetsPart::limitTo(const HashLimit &limit) {
    const UrlTable *table = m_bench.table->table();
    if (!table || table->hashSets == limit)
        return;
    setLimit(variantOf(limit));
    m_bench.run("MainForm.LimitHashSets()", [this] { m_bench.table->narrow(); });
}

void HashSetsPart::showForm() {
    HashSetsForm form(&m_bench.window);
    connect(&form, &HashSetsForm::addWanted, &form, [this, &form] { add(form); });
    connect(&form, &HashSetsForm::removeWanted, &form,
            [this, &form](const QString &name) { remove(form, name); });
    connect(&form, &HashSetsForm::matchWanted, &form, [this, &form] { match(form); });
    std::optional<HashLimit> wanted;
    connect(&form, &HashSetsForm::rowsWanted, &form, [&form, &wanted](const QString &name) {
        wanted = HashLimit();
        wanted->sets.push_back(fromQt(name));
        form.accept();
    });
    if (!m_bench.isProjectOpen())
        form.setHindrance(tr("No project is open: sets can be made and removed, and are matched "
                             "with the files of a project once one is open."));
    else if (m_bench.program.state.projectDB.isReadOnly())
        form.setHindrance(tr("The project is open for reading only: a match would write what it "
                             "finds into it."));
    fill(form);
    form.exec();
    if (wanted)
        limitTo(*wanted);
}

void HashSetsPart::fill(HashSetsForm &form) {
    form.setSets(listHashSets(m_bench.program));
}

void HashSetsPart::add(HashSetsForm &form) {
    HashSetForm order(&form);
    connect(&order, &HashSetForm::listsWanted, &order,
            [this, &order] { order.setLists(m_bench.dialogs.chooseHashLists()); });
    order.exec();
    if (order.result() != QDialog::Accepted)
        return;
    const std::string name = order.name();
    if (std::filesystem::exists(hashSetPath(m_bench.program.paths.hashSets(), name)) &&
        m_bench.examiner().ask(messages::replaceHashSet(name)) != Answer::Yes)
        return;
    make(form, order);
}

void HashSetsPart::make(HashSetsForm &form, const HashSetForm &order) {
    Program &program = m_bench.program;
    std::optional<HashSetMade> made;
    bool isDone = false;
    m_bench.runTask(
        {"MAKING HASH SET", "Sorting the hashes of the lists", "", ""}, [&](TaskMonitor &task) {
            made = makeHashSet(
                {.folder = program.paths.hashSets(),
                 .facts = {.name = order.name(),
                           .meaning = order.meaning(),
                           .added = isoUtc(Date::fromTimePoint(program.around.clock.now())),
                           .sources = {}},
                 .lists = order.lists(),
                 .scratch = program.state.tempFolderPath},
                task);
            isDone = true;
        });
    if (!isDone)
        return; // which was told
    if (!made)
        form.showNote(tr("Cancelled: no set was made."));
    else if (made->hashes == 0)
        m_bench.examiner().tell(messages::noHashFound(*made));
    else
        form.showNote(madeText(*made, order.name()));
    fill(form);
}

void HashSetsPart::remove(HashSetsForm &form, const QString &name) {
    m_bench.run("MainForm.RemoveHashSet()", [&] {
        const std::string set = fromQt(name);
        if (m_bench.examiner().ask(messages::removeHashSet(set)) != Answer::Yes)
            return;
        removeHashSet(m_bench.program.paths.hashSets(), set);
        form.showNote(tr("\"%1\" was removed.").arg(toQt(displayText(set))));
    });
    fill(form);
}

void HashSetsPart::match(HashSetsForm &form) {
    std::optional<HashMatch> found;
    QString told;
    m_bench.runTask({"MATCHING HASH SETS",
                     "Looking for the hashes of the project's files in the "
                     "hash sets",
                     "", ""},
                    [&](TaskMonitor &task) {
                        auto sets = openHashSets(m_bench.program.paths.hashSets());
                        found =
                            matchOpenProject(m_bench.program, sets, EarlierFindings::drop, task);
                        told = matchedText(sets, *found);
                    });
    if (found && found->cancelled)
        form.showNote(tr("Cancelled: the project has what earlier matches found."));
    else if (found)
        form.showNote(told);
    if (found && !found->cancelled) {
        emit m_bench.hashSetsMatched();
        m_bench.reload();
    }
    fill(form);
}

} // namespace nv
