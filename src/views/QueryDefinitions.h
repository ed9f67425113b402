#pragma once

#include <string>

namespace nv {

/// The statements and names of the query in force.
struct QueryDefinitions {
    std::string DefaultSQLDef = "SELECT * FROM URLs ORDER BY ActionDateLocal ASC";
    std::string CurrentSQLDef = DefaultSQLDef; ///< the statement in force
    std::string LastSQLDef;                    ///< the one before the last change
    std::string CustomQueryDef;  ///< on its way from the query dialog to the main window
    std::string ActiveQueryName; ///< the stored query that the table runs; empty for "_DEFAULT"
};

} // namespace nv
