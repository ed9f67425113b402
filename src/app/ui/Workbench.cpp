#include "app/ui/Workbench.h"

namespace nv {

void Workbench::refreshRows() const {
    table->refreshRows();
    viewers->refresh();
}

} // namespace nv
