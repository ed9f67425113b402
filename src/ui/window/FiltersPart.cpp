#include "ui/window/FiltersPart.h"

#include "ui/views/FilterForm.h"
#include "ui/window/StatusSign.h"

#include <QAction>
#include <QLabel>

namespace nv {

FiltersPart::FiltersPart(Workbench &bench)
    : m_bench(bench), m_sign(newStatusSign(bench.window, "labFilters")) {
    m_sign->setToolTip(tr("Filters in the menu View tell which records are shown"));
    connect(bench.actions.filters, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.chooseFilters()", [this] { chooseFilters(); }); });
    connect(bench.table, &TableTab::filtersRequested, bench.actions.filters, &QAction::trigger);
    connect(bench.table, &TableTab::statusChanged, this, &FiltersPart::showSign);
    connect(&bench, &Workbench::projectClosing, m_sign, &QWidget::hide);
}

void FiltersPart::chooseFilters() {
    RecordFilters &filters = m_bench.program.state.filters;
    OriginChoices origins;
    if (ProjectDatabase &project = m_bench.program.state.projectDB; project.isOpen())
        origins = originChoicesOf(project.connection());
    FilterForm form(filters, m_bench.examiner(), &m_bench.window, origins);
    if (form.exec() != QDialog::Accepted)
        return;
    filters = form.filters();
    m_bench.reload();
}

void FiltersPart::showSign() {
    const UrlTable *table = m_bench.table->table();
    m_sign->setVisible(table && (table->filters.enableFilters || table->time));
    if (!table)
        return;
    const std::size_t hidden = table->hiddenCount();
    const QString text = table->filters.enableFilters ? tr("Filters on: %L1 of %L2 rows hidden")
                                                      : tr("Time chosen: %L1 of %L2 rows hidden");
    m_sign->setText(text.arg(hidden).arg(hidden + table->rowCount()));
}

} // namespace nv
