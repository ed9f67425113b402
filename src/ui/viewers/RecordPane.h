#pragma once

#include "db/schema/Ids.h"

namespace nv {

/// A pane that shows one record: the one that is current in the table. Only the pane in front is
/// asked to show it; the others are emptied, and asked when they come to the front.
class RecordPane {
  public:
    virtual ~RecordPane() = default;
    /// The same record may be shown again: it may have changed then. What hasn't stays where the
    /// examiner reads it. What is thrown is logged, and told.
    virtual void showRecord(UrlId id) = 0;
    virtual void clear() = 0;
    /// Whether it shows what the examiner has made of the record: tick, tags, note. Only such a
    /// pane is shown it again when these change.
    virtual bool showsMarks() const { return false; }
};

} // namespace nv
