#include "ui/parts/CopyPart.h"

#include "ui/table/GridText.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>

#include <utility>

namespace nv {

CopyPart::CopyPart(Workbench &bench) : m_bench(bench) {
    for (const auto &[action, form] : {std::pair(bench.actions.copyCsv, CopyForm::csv),
                                       std::pair(bench.actions.copyMarkdown, CopyForm::markdown),
                                       std::pair(bench.actions.copyJson, CopyForm::json)})
        connectAction(action, [form = form](const GridText &text, TaskMonitor &task) {
            return text.selectedRowsAs(form, task);
        });
    connectAction(bench.actions.copyDefanged, [](const GridText &text, TaskMonitor &task) {
        return text.defangedAddresses(task);
    });
}

void CopyPart::connectAction(QAction *action, const Make &make) {
    connect(action, &QAction::triggered, this, [this, make] {
        UrlTable *table = m_bench.table->table();
        if (table == nullptr)
            return;
        m_bench.runTask({"COPYING URLS", "", "", ""}, [&](TaskMonitor &task) {
            if (const auto text = make(GridText(m_bench.table->grid(), *table), task))
                QGuiApplication::clipboard()->setText(*text);
        });
    });
}

} // namespace nv
