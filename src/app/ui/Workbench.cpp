#include "app/ui/Workbench.h"

namespace nv {

void Workbench::refreshRows() {
    table->refreshRows();
    viewers->refresh();
}

} // namespace nv
