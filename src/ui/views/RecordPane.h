#pragma once

#include "db/Ids.h"

namespace nv {

/// A pane that shows one record: the one that is current in the table. Only the pane in front is
/// asked to show it; the others are emptied, and asked when they come to the front.
class RecordPane {
  public:
    virtual ~RecordPane() = default;
    /// The same record may be shown again: it has changed then. What is thrown is logged, and told.
    virtual void showRecord(UrlId id) = 0;
    virtual void clear() = 0;
};

} // namespace nv
