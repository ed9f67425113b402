#include "ui/frame/StatusLine.h"

#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "ui/frame/ElidedLabel.h"
#include "ui/table/TableTab.h"
#include "views/rows/CellText.h"

#include <QStatusBar>

namespace nv {

namespace {

constexpr int kWidestQuery = 216; // pixels

/// Texts give way to what stands beside them: progress, and what hides rows or wasn't read.
QLabel *newLabel(QStatusBar &bar, const char *name, int stretch) {
    auto *label = new ElidedLabel;
    label->setObjectName(QLatin1String(name));
    label->setContentsMargins(4, 0, 12, 0);
    bar.addWidget(label, stretch);
    return label;
}

void show(QLabel &label, const QString &text) {
    label.setText(text);
    label.setToolTip(Qt::convertFromPlainText(text));
}

} // namespace

StatusLine::StatusLine(QStatusBar &bar)
    : m_rows(newLabel(bar, "labRows", 0)), m_tagged(newLabel(bar, "labTagged", 0)),
      m_zone(newLabel(bar, "labZone", 0)), m_notice(newLabel(bar, "labNotice", 1)),
      m_query(newLabel(bar, "labQuery", 0)), m_base(newLabel(bar, "labBase", 1)) {
    m_query->setMaximumWidth(kWidestQuery);
    for (QLabel *label : {m_rows, m_tagged}) // counts are whole or worth nothing
        label->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    for (QLabel *label : {m_notice, m_base})
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void StatusLine::showNotice(const QString &text) {
    show(*m_notice, text);
    showParts();
}

void StatusLine::setProjectOpen(bool open) {
    m_open = open;
    showParts();
}

void StatusLine::showParts() {
    const bool noticed = m_open && !m_notice->text().isEmpty();
    m_notice->setVisible(noticed);
    for (QLabel *label : {m_rows, m_tagged, m_zone})
        label->setVisible(m_open);
    for (QLabel *label : {m_query, m_base})
        label->setVisible(m_open && !noticed);
}

void StatusLine::showTable(TableTab &tab, const ProgramState &state) {
    const UrlTable *table = tab.table();
    if (!table)
        return;
    m_rows->setText(tr("Rows: %L1").arg(table->rowCount()));
    m_tagged->setText(tr("Ticked: %L1").arg(tab.taggedCount()));
    const QString query = tab.queryName();
    // A column that is shown has its sign in the heading.
    const auto sort = table->columnSort();
    const bool isSortHidden = sort && tab.grid().tableLayout().hidden(sort->column);
    const QString order =
        isSortHidden ? tr(", by %1").arg(toQt(factsOf(sort->column).header)) : QString();
    show(*m_query,
         tr("Query: %1").arg((query.isEmpty() ? TableTab::tr("Default") : query) + order));
    show(*m_zone, tr("Zone: %1")
                      .arg(toQt(state.gmtZone.exact ? state.gmtZone.tzName
                                                    : state.gmtZone.getBiasAsTime(0))));
    const std::string base = textOf(state.rootPath);
    show(*m_base, tr("Base folder: %1").arg(base.empty() ? tr("none") : toQt(displayText(base))));
}

} // namespace nv
