// norvelane-jet FILE TABLE COLUMN...: writes the rows of one table of a Jet database, one line of
// JSON each, in this order:
//   {"rows":28,"kinds":["text",null]}     rows that the definition counts, a kind for each column
//                                         asked for; null where there is none
//   {"row":["a",null],"place":4110,"at":[[4096,1],null]}   where each value lies, and its length;
//                                         and "cut":[0] where a value is not whole
//   {"damage":"...","place":4112}         a row that can't be read
//   {"end":true,"deleted":2,"unlisted":0,"damage":""}      without this line the output is cut
// or, when nothing can be read:
//   {"error":"..."}
// The library under it can crash or hang on damaged files: that costs this process only.

#include "programs/jet/JetTable.h"
#include "programs/jet/JetValue.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string_view>
#include <sys/resource.h>
#include <vector>

using namespace nv::jet;
using nlohmann::json;

namespace {

constexpr rlim_t kMemory = rlim_t{1} << 30;
// The address sanitizer reserves far more address space than it uses.
#if defined(__has_feature)
constexpr bool kIsSanitized = __has_feature(address_sanitizer);
#elif defined(__SANITIZE_ADDRESS__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif
/// Far more than a sound file takes on a slow machine.
constexpr rlim_t kBaseSeconds = 20;
constexpr rlim_t kBytesPerSecond = rlim_t{5} << 20;

/// The hard limit lies a little higher: at the soft one the signal tells what was exceeded.
void limit(int resource, rlim_t value) {
    const rlimit both = {value, value + (value == 0 ? 0 : 1)};
    ::setrlimit(static_cast<__rlimit_resource>(resource), &both);
}

void setLimits(const std::filesystem::path &file) {
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(file, unknown);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_CPU, kBaseSeconds + (unknown ? 0 : size / kBytesPerSecond));
    if (!kIsSanitized)
        limit(RLIMIT_AS, kMemory);
}

/// At once: a crash must not take the rows before it along.
void write(const json &line) {
    std::cout << line.dump(-1, ' ', false, json::error_handler_t::replace) << '\n' << std::flush;
}

struct Column {
    std::optional<std::size_t> index;
    int type = 0;
};

std::vector<Column> columnsOf(const JetTable &table, const std::vector<std::string_view> &names) {
    std::vector<Column> columns;
    for (const std::string_view name : names) {
        const auto index = table.column(name);
        columns.push_back({index, index ? table.typeOf(*index) : 0});
    }
    return columns;
}

void writeHead(const JetTable &table, const std::vector<Column> &columns) {
    json kinds = json::array();
    for (const Column &column : columns)
        kinds.push_back(kindOf(column.type).empty() ? json() : json(kindOf(column.type)));
    write({{"rows", table.rowsCounted()}, {"kinds", kinds}});
}

void writeRow(const JetFile &file, const std::vector<Column> &columns, const Row &row) {
    if (!row.damage.empty())
        return write({{"damage", row.damage}, {"place", row.place}});
    json cells = json::array();
    json cut = json::array();
    json at = json::array();
    for (const Column &column : columns) {
        const Value value =
            column.index ? valueOf(file, column.type, row.fields.at(*column.index)) : Value{};
        if (value.isCut)
            cut.push_back(cells.size());
        cells.push_back(value.json);
        const Field field = column.index ? row.fields.at(*column.index) : Field{};
        at.push_back(field.bytes.empty() ? json() : json({field.place, field.bytes.size()}));
    }
    json line = {{"row", cells}, {"place", row.place}, {"at", at}};
    if (!cut.empty())
        line["cut"] = cut;
    write(line);
}

void writeTable(const JetFile &file, std::string_view name,
                const std::vector<std::string_view> &columnNames) {
    JetTable table = JetTable::named(file, name);
    const std::vector<Column> columns = columnsOf(table, columnNames);
    writeHead(table, columns);
    table.eachRow([&](const Row &row) { writeRow(file, columns, row); });
    write({{"end", true},
           {"deleted", table.deletedRows()},
           {"unlisted", table.unlistedRows()},
           {"damage", file.endsAmidPage() ? "the file ends amid a page" : ""}});
}

int run(const std::vector<std::string_view> &arguments) {
    try {
        setLimits(arguments[0]);
        const JetFile file(arguments[0]);
        writeTable(file, arguments[1], {arguments.begin() + 2, arguments.end()});
        return EXIT_SUCCESS;
    } catch (const std::exception &failure) {
        write({{"error", failure.what()}});
        return EXIT_FAILURE;
    }
}

} // namespace

int main(int argc, char **argv) {
    const std::vector<std::string_view> arguments(argv + 1, argv + argc);
    if (arguments.size() < 3) {
        std::cerr << "usage: norvelane-jet FILE TABLE COLUMN...\n";
        return EXIT_FAILURE;
    }
    std::ios::sync_with_stdio(false);
    const int code = run(arguments);
    // What the library made of a damaged file had better not be taken down by it.
    std::_Exit(code);
}
