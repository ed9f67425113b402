#include "ui/parts/RecordJump.h"

#include "app/messages/Messages.h"
#include "base/Trap.h"

#include <QTabWidget>

namespace nv {

void jumpToRecord(Workbench &bench, UrlId id, const Message &unavailable, const char *procedure) {
    TableTab &table = *bench.table;
    const auto failure = failureOf(bench.program.log, procedure, [&] {
        if (!table.table() || !table.table()->placeOf(id))
            return bench.examiner().tell(unavailable);
        bench.dataTabs->setCurrentWidget(&table);
        table.grid().setCurrentUrl(id);
        table.grid().setFocus();
    });
    if (failure)
        bench.examiner().tell(messages::findingRecordFailed(*failure));
}

} // namespace nv
