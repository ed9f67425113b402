#include "ui/parts/Workbench.h"

#include "app/messages/Messages.h"

namespace nv {

bool Workbench::mayWrite() const {
    const bool may = !program.state.projectDB.isReadOnly();
    if (!may)
        examiner().tell(messages::readingOnly());
    return may;
}

void Workbench::goOn(AfterSummary what) {
    switch (what) {
    case AfterSummary::thumbnails:
        emit thumbnailsWanted();
        break;
    case AfterSummary::searchIndex:
        emit searchIndexWanted();
        break;
    case AfterSummary::table:
        break;
    }
    table->grid().setFocus();
}

void Workbench::refreshRows() const {
    table->refreshRows();
    viewers->refresh();
}

void Workbench::refreshMarks() const {
    table->refreshRows();
    viewers->refreshMarks();
}

} // namespace nv
