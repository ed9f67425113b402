#include "maintenance/SchemaScan.h"

#include "base/Text.h"
#include "db/schema/Schema.h"
#include "db/sql/Dialect.h"
#include "maintenance/StatusText.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// Goes through the tables of the reference and notes what the project lacks.
class Comparison {
  public:
    Comparison(TaskMonitor &task, std::vector<SchemaDifference> &differences)
        : m_task(task), m_differences(differences) {}

    /// False when stopped.
    bool compare(const TableShape &wanted, const TableShape *found, double fraction) {
        m_fraction = fraction;
        if (!found) {
            m_differences.push_back({wanted.name, "Table", wanted.name, std::string(kMissing)});
            return goesOn();
        }
        return names("Index", wanted, wanted.indexes, found->indexes) && columns(wanted, *found) &&
               names("Key", wanted, wanted.keys, found->keys);
    }

  private:
    bool goesOn() { return m_task.advance(m_fraction); }

    void show(std::string_view object, std::string_view name) {
        if (m_task.wantsStep())
            showStatus(m_task, fmt::format("Comparing {}: {}", object, name));
    }

    bool names(std::string_view object, const TableShape &table,
               const std::vector<std::string> &wanted, const std::vector<std::string> &found) {
        for (const std::string &name : wanted) {
            show(object, name);
            if (!holdsName(found, name))
                note(table, object, name, kMissing);
            if (!goesOn())
                return false;
        }
        return true;
    }

    bool columns(const TableShape &wanted, const TableShape &found) {
        for (const ColumnShape &column : wanted.columns) {
            show("Column", column.name);
            const ColumnShape *there = found.column(column.name);
            if (!there)
                note(wanted, "Column", column.name, kMissing);
            else if (there->size && column.size && *there->size != *column.size)
                note(wanted, "Column", column.name, kSizeMismatch);
            if (!goesOn())
                return false;
        }
        return true;
    }

    void note(const TableShape &table, std::string_view object, const std::string &name,
              std::string_view status) {
        m_differences.push_back({table.name, std::string(object), name, std::string(status)});
    }

    TaskMonitor &m_task;
    std::vector<SchemaDifference> &m_differences;
    double m_fraction = 0;
};

/// Tables that every project gets anew or empties before use.
bool isRemade(std::string_view table) {
    return equalsNoCase(table, "URLSortTable") || startsWithNoCase(table, "Schema");
}

bool isMoved(std::string_view table) {
    return std::ranges::any_of(
        kMovedTables, [table](std::string_view moved) { return equalsNoCase(moved, table); });
}

/// A table of that name that another build made in another form stays behind.
bool isMovedWhenThere(const TableShape &table) {
    return std::ranges::any_of(schema::tablesOfFirstUse(), [&table](const schema::Table &known) {
        return equalsNoCase(table.name, known.name) && table.column(known.columns.front().name);
    });
}

std::int64_t rowsOf(SQLite::Database &database, std::string_view table) {
    return database.execAndGet("SELECT count(*) FROM " + quotedName(table)).getInt64();
}

void addColumns(const TableShape &table, const TableShape &wanted, std::vector<std::string> &into) {
    for (const ColumnShape &column : table.columns)
        if (!wanted.column(column.name))
            into.push_back(fmt::format("Column \"{}\" of table \"{}\"", column.name, table.name));
}

void addViews(SQLite::Database &database, const ProjectShape &project,
              std::vector<std::string> &into) {
    const TableShape *queries = project.table("StoredQueries");
    if (!queries || !queries->column("Name")) {
        for (const std::string &view : project.views)
            into.push_back(fmt::format("View \"{}\"", view));
        return;
    }
    for (const std::string &view : project.views) {
        SQLite::Statement row(database,
                              "SELECT 1 FROM StoredQueries WHERE Name = ? COLLATE NOCASE");
        row.bind(1, view);
        if (!row.executeStep())
            into.push_back(fmt::format("View \"{}\"", view));
    }
}

} // namespace

bool compareShapes(const ProjectShape &reference, const ProjectShape &project, TaskMonitor &task,
                   std::vector<SchemaDifference> &differences) {
    Comparison comparison(task, differences);
    double done = 0;
    for (const TableShape &wanted : reference.tables) {
        if (!comparison.compare(wanted, project.table(wanted.name),
                                done / static_cast<double>(reference.tables.size())))
            return false;
        ++done;
    }
    return true;
}

std::vector<std::string> leftBehindBy(SQLite::Database &database, const ProjectShape &project,
                                      const ProjectShape &reference) {
    std::vector<std::string> lines;
    for (const TableShape &table : project.tables) {
        if (const TableShape *wanted = reference.table(table.name); wanted && isMoved(table.name)) {
            addColumns(table, *wanted, lines);
            continue;
        }
        const std::int64_t rows =
            isRemade(table.name) || isMovedWhenThere(table) ? 0 : rowsOf(database, table.name);
        if (rows > 0)
            lines.push_back(fmt::format("Table \"{}\" with {} {}", table.name, rows,
                                        rows == 1 ? "row" : "rows"));
    }
    addViews(database, project, lines);
    return lines;
}

} // namespace nv
