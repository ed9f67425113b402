#include "ui/parts/FiltersPart.h"

#include "platform/qt/QtText.h"
#include "ui/frame/StatusSign.h"
#include "ui/limits/FilterForm.h"
#include "ui/tags/MarksBox.h"

#include <QAction>
#include <QLabel>

#include <algorithm>

namespace nv {

namespace {

/// The names of what a group of flags admits; empty when it admits all.
QString admitted(const RecordFilters &filters, FilterGroup group) {
    QStringList names;
    bool all = true;
    for (const FilterFlag &each : filterFlags()) {
        if (each.group != group)
            continue;
        all &= filters.*each.flag;
        if (filters.*each.flag)
            names += toQt(each.label);
    }
    constexpr int kMostNames = 4;
    if (names.size() > kMostNames)
        names = names.mid(0, kMostNames) << FiltersPart::tr("...");
    return all ? QString() : names.isEmpty() ? FiltersPart::tr("none") : names.join(u", ");
}

/// What `change` makes of the filters; nothing when they then hide nothing.
template <class Change>
QVariant changed(RecordFilters filters, Change change) {
    change(filters);
    const auto isOpen = [&filters](const FilterFlag &each) {
        return each.group != FilterGroup::Source || filters.*each.flag;
    };
    const auto isAnybodys = [&filters](const OriginFilter &each) {
        return (filters.*each.text).empty();
    };
    const bool hidesNone = filters.showAll && std::ranges::all_of(filterFlags(), isOpen) &&
                           std::ranges::all_of(originFilters(), isAnybodys);
    return hidesNone ? QVariant() : QVariant::fromValue(filters);
}

} // namespace

FiltersPart::FiltersPart(Workbench &bench)
    : m_bench(bench), m_sign(newStatusSign(bench.window, "labFilters")) {
    m_sign->setToolTip(tr("Filters in the menu View tell which records are shown"));
    connect(bench.actions.filters, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.chooseFilters()", [this] { chooseFilters(); }); });
    connect(bench.table, &TableTab::filtersRequested, bench.actions.filters, &QAction::trigger);
    connect(bench.table, &TableTab::statusChanged, this, &FiltersPart::showSign);
    connect(&bench, &Workbench::projectClosing, m_sign, &QWidget::hide);
    bench.limits.add(*this);
}

QVariant FiltersPart::limit() const {
    const UrlTable *table = m_bench.table->table();
    return table && table->filters.enableFilters ? QVariant::fromValue(table->filters) : QVariant();
}

/// Without a limit the filters are off, and stay as they are for another time.
void FiltersPart::setLimit(const QVariant &limit) {
    RecordFilters &filters = m_bench.program.state.filters;
    if (limit.isValid())
        filters = limit.value<RecordFilters>();
    else
        filters.enableFilters = false;
}

std::vector<LimitChip> FiltersPart::chips() const {
    const QVariant now = limit();
    if (!now.isValid())
        return {};
    const auto filters = now.value<RecordFilters>();
    std::vector<LimitChip> chips;
    if (const QString names = admitted(filters, FilterGroup::Source); !names.isEmpty())
        chips.push_back({tr("Sources: %1").arg(names), changed(filters, [](RecordFilters &left) {
                             for (const FilterFlag &each : filterFlags())
                                 if (each.group == FilterGroup::Source)
                                     left.*each.flag = true;
                         })});
    if (!filters.showAll) {
        QString names = admitted(filters, FilterGroup::Kind);
        if (const QString sites = admitted(filters, FilterGroup::Site); sites != tr("none"))
            names = names == tr("none") ? sites : names + QStringLiteral(", ") + sites;
        chips.push_back({tr("Kinds: %1").arg(names), changed(filters, [](RecordFilters &left) {
                             for (const FilterFlag &each : filterFlags())
                                 if (each.group != FilterGroup::Source)
                                     left.*each.flag = true;
                         })});
    }
    for (const OriginFilter &each : originFilters())
        if (const std::string &text = filters.*each.text; !text.empty())
            chips.push_back(
                {QStringLiteral("%1: %2").arg(toQt(each.label), toQt(text)),
                 changed(filters, [&each](RecordFilters &left) { (left.*each.text).clear(); })});
    if (chips.empty())
        chips.push_back({tr("Filters on, all admitted"), {}});
    return chips;
}

void FiltersPart::chooseFilters() {
    RecordFilters &filters = m_bench.program.state.filters;
    OriginChoices origins;
    if (ProjectDatabase &project = m_bench.program.state.projectDB; project.isOpen())
        origins = originChoicesOf(project.connection());
    FilterForm form(filters, m_bench.examiner(), &m_bench.window, origins);
    const MarksBox *marks = addMarks(form);
    if (form.exec() != QDialog::Accepted)
        return;
    filters = form.filters();
    if (marks)
        takeMarks(*marks);
    m_bench.reload();
}

/// Null while no project is open.
const MarksBox *FiltersPart::addMarks(FilterForm &form) const {
    const UrlTable *table = m_bench.table->table();
    if (!table || !m_bench.isProjectOpen())
        return nullptr;
    auto *marks =
        new MarksBox({NamedTags(m_bench.project()).list(), foundHashSets(m_bench.project())},
                     table->tags.value_or(TagLimit()), table->hashSets);
    form.addMarks(*marks);
    return marks;
}

void FiltersPart::takeMarks(const MarksBox &marks) {
    const TagLimit tags = marks.tags();
    const HashLimit sets = marks.hashSets();
    emit m_bench.tagLimitChosen(tags.isEmpty() ? QVariant() : QVariant::fromValue(tags));
    emit m_bench.hashLimitChosen(sets.isEmpty() ? QVariant() : QVariant::fromValue(sets));
}

void FiltersPart::showSign() {
    const UrlTable *table = m_bench.table->table();
    m_sign->setVisible(table && (table->isLimited() || table->filters.enableFilters));
    if (!table)
        return;
    const std::size_t hidden = table->hiddenCount();
    const QString text = table->filters.enableFilters ? tr("Filters on: %L1 of %L2 rows hidden")
                                                      : tr("%L1 of %L2 rows hidden");
    m_sign->setText(text.arg(hidden).arg(hidden + table->rowCount()));
}

} // namespace nv
