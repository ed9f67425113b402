#pragma once

#include <string>

namespace nv {

/// The statements and names of the query in force.
struct QueryDefinitions {
    std::string defaultSQLDef = "SELECT * FROM URLs ORDER BY ActionDateLocal ASC";
    std::string currentSQLDef = defaultSQLDef; ///< the statement in force
    std::string lastSQLDef;                    ///< the one before the last change
    std::string customQueryDef;  ///< on its way from the query dialog to the main window
    std::string activeQueryName; ///< the stored query that the table runs; empty for "_DEFAULT"
};

} // namespace nv
