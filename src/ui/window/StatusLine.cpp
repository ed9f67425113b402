#include "ui/window/StatusLine.h"

#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "ui/views/TableTab.h"
#include "views/CellText.h"

#include <QLabel>
#include <QStatusBar>

namespace nv {

namespace {

QLabel *newLabel(QStatusBar &bar, const char *name, int stretch) {
    auto *label = new QLabel;
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setContentsMargins(4, 0, 12, 0);
    bar.addWidget(label, stretch);
    return label;
}

} // namespace

StatusLine::StatusLine(QStatusBar &bar)
    : m_rows(newLabel(bar, "labRows", 0)), m_tagged(newLabel(bar, "labTagged", 0)),
      m_notice(newLabel(bar, "labNotice", 1)), m_query(newLabel(bar, "labQuery", 0)),
      m_zone(newLabel(bar, "labZone", 0)), m_base(newLabel(bar, "labBase", 1)) {
    // Long texts are cut instead of making the window wider; their tooltips are whole.
    for (QLabel *label : {m_notice, m_base})
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void StatusLine::showNotice(const QString &text) {
    m_notice->setText(text);
    m_notice->setToolTip(Qt::convertFromPlainText(text));
    showParts();
}

void StatusLine::setProjectOpen(bool open) {
    m_open = open;
    showParts();
}

void StatusLine::showParts() {
    const bool noticed = m_open && !m_notice->text().isEmpty();
    m_notice->setVisible(noticed);
    for (QLabel *label : {m_rows, m_tagged})
        label->setVisible(m_open);
    for (QLabel *label : {m_query, m_zone, m_base})
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
    constexpr int kWidestQuery = 200; // pixels
    m_query->setText(m_query->fontMetrics().elidedText(
        tr("Query: %1").arg((query.isEmpty() ? TableTab::tr("Default") : query) + order),
        Qt::ElideRight, kWidestQuery));
    m_query->setToolTip(Qt::convertFromPlainText(query + order));
    m_zone->setText(tr("Zone: %1")
                        .arg(toQt(state.gmtZone.exact ? state.gmtZone.tzName
                                                      : state.gmtZone.getBiasAsTime(0))));
    const std::string base = textOf(state.rootPath);
    m_base->setText(tr("Base folder: %1").arg(base.empty() ? tr("none") : toQt(displayText(base))));
    m_base->setToolTip(Qt::convertFromPlainText(m_base->text()));
}

} // namespace nv
