#include "base/Files.h"
#include "base/Text.h"
#include "reports/exports/ExportWriter.h"
#include "reports/report/SheetCount.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <xlsxwriter.h>

namespace nv {

namespace {

constexpr lxw_row_t kSheetRows = 1'048'576; // with the headings
constexpr lxw_row_t kLookEach = 4096;
constexpr long kSheetBytes = 3'500'000'000;   // of its text
constexpr std::size_t kCellUnits = 32'767;    // of UTF-16
constexpr double kTwipsPerWidth = 15.0 * 7.0; // a column's width counts digits of 7 pixels

/// Cut where a cell of a sheet ends; the end is "…" then.
bool cutToCell(std::string &text) {
    if (text.size() <= kCellUnits)
        return false;
    std::size_t units = 0;
    std::size_t lastWhole = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if ((byte & 0xC0U) == 0x80)
            continue;
        if (units + 1 <= kCellUnits - 1)
            lastWhole = at;
        units += byte >= 0xF0 ? 2 : 1;
    }
    if (units <= kCellUnits)
        return false;
    text.resize(lastWhole);
    text += "\u2026";
    return true;
}

/// "_x0041_" in a sheet means "A": evidence that holds such a text must not turn into another one.
std::string withoutCodes(const std::string &text) {
    if (text.find("_x") == std::string::npos)
        return text;
    std::string safe;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::string_view code = std::string_view(text).substr(at, 7);
        const bool isCode = code.size() == 7 && code.starts_with("_x") && code.back() == '_' &&
                            code.find_first_not_of("0123456789abcdefABCDEF", 2) == 6;
        safe += isCode ? "_x005F_" : std::string(1, text[at]);
    }
    return safe;
}

/// What no sheet can hold gets a stand-in.
std::string sheetText(std::string text) {
    // The library takes texts that end at a zero.
    std::size_t at = 0;
    while ((at = text.find('\0', at)) != std::string::npos)
        text.replace(at, 1, "\u2400");
    text = replaceAll(text, "\xEF\xBF\xBE", "\uFFFD"); // U+FFFE and U+FFFF are no XML
    return replaceAll(text, "\xEF\xBF\xBF", "\uFFFD");
}

/// Rows of one kind; they go on in a further sheet when one is full.
struct SheetSeries {
    std::string name;                  ///< of the first sheet
    std::vector<ExportColumn> columns; ///< whose headings each sheet begins with
    lxw_worksheet *sheet = nullptr;    ///< the last one, which is written to
    lxw_row_t row = 0;                 ///< the next one
    std::int64_t sheets = 0;
};

/// Cells are strings or numbers, never formulas or links. A row is on the disk when the next one
/// begins, so a sheet of any length needs little memory.
class XlsxWriter final : public ExportWriter {
  public:
    XlsxWriter(Export &job, const std::filesystem::path &scratch)
        : m_job(job), m_file(job.outputFilePath), m_scratch(scratch.string()) {
        lxw_workbook_options options{};
        options.constant_memory = LXW_TRUE;
        options.tmpdir = m_scratch.data();
        m_book = workbook_new_opt(m_file.aside().c_str(), &options);
        if (!m_book)
            failStorage("cannot write", m_job.outputFilePath, ENOMEM);
    }
    ~XlsxWriter() override {
        if (m_book)
            lxw_workbook_free(m_book);
    }
    XlsxWriter(const XlsxWriter &) = delete;
    XlsxWriter &operator=(const XlsxWriter &) = delete;

    void begin(const std::vector<ExportColumn> &columns) override {
        m_urls = {.name = "URLs", .columns = columns};
        m_facts = {.name = "Facts",
                   .columns = {{"URL ID", "URL_ID", {}, kFactWidth},
                               {"Fact", "Name", {}, kFactWidth},
                               {"Value", "Value", {}, kFactWidth},
                               {"Raw Value", "RawValue", {}, kFactWidth}}};
        m_bold = workbook_add_format(m_book);
        format_set_bold(m_bold);
        addSheet(m_urls);
    }

    void row(ExportCells &cells, std::size_t place) override {
        makeRoom(m_urls);
        lxw_col_t at = 0;
        const std::int64_t before = m_written.cells;
        for (const ExportColumn &column : m_urls.columns)
            write(m_urls, at++, cells.machine(place, column));
        endRow(m_urls, before);
        const FactList facts = cells.facts(place);
        if (facts.empty())
            return;
        const Cell id = cells.machine(place, UrlColumn::Id);
        for (const RecordFact &fact : facts)
            writeFact(id, fact);
    }

    void finish() override {
        checkDisk(m_urls);
        checkDisk(m_facts);
        const lxw_error problem = workbook_close(std::exchange(m_book, nullptr));
        if (problem != LXW_NO_ERROR)
            throw StorageFailure(fmt::format("cannot write \"{}\": {}",
                                             textOf(m_job.outputFilePath), lxw_strerror(problem)));
        // The library takes no notice of a disk that fills up while it puts the sheets together.
        if (countSheets(m_file.aside()) != m_written)
            throw StorageFailure(fmt::format(
                "cannot write \"{}\": the sheets don't hold all rows; is there no room left in "
                "\"{}\"?",
                textOf(m_job.outputFilePath), m_scratch));
        m_job.counts.sheets = m_urls.sheets;
        m_file.finish();
    }

  private:
    static constexpr int kFactWidth = 3000; // twips

    /// The sheet of facts is made with the first one.
    void makeRoom(SheetSeries &series) {
        if (!series.sheet || series.row == kSheetRows ||
            (series.row % kLookEach == 0 && isLarge(series)))
            addSheet(series);
    }

    void writeFact(const Cell &id, const RecordFact &fact) {
        makeRoom(m_facts);
        const std::int64_t before = m_written.cells;
        write(m_facts, 0, id);
        write(m_facts, 1, fact.name);
        write(m_facts, 2, machineOf(fact.value));
        write(m_facts, 3, machineOf(fact.raw));
        endRow(m_facts, before);
    }

    static Cell machineOf(const FactValue &value) {
        return std::visit([](const auto &held) { return Cell(held); }, value);
    }

    /// A row without cells isn't written.
    void endRow(SheetSeries &series, std::int64_t cellsBefore) {
        ++series.row;
        m_written.rows += m_written.cells > cellsBefore ? 1 : 0;
    }

    /// Parts of 4 GB and more need a form of the file that not every program reads.
    bool isLarge(const SheetSeries &series) {
        checkDisk(series);
        return std::ftell(series.sheet->optimize_tmpfile) > kSheetBytes;
    }

    /// Rows go into a file in `m_scratch` of which the library doesn't ask whether it got them.
    void checkDisk(const SheetSeries &series) {
        if (!series.sheet || !series.sheet->optimize_tmpfile)
            return;
        errno = 0;
        std::FILE *const rows = series.sheet->optimize_tmpfile;
        if (std::fflush(rows) != 0 || std::ferror(rows))
            failStorage("cannot write in", m_scratch, errno == 0 ? ENOSPC : errno);
    }

    /// The first row has the headings and stays in sight.
    void addSheet(SheetSeries &series) {
        ++series.sheets;
        const std::string name =
            series.sheets == 1 ? series.name : fmt::format("{} {}", series.name, series.sheets);
        series.sheet = workbook_add_worksheet(m_book, name.c_str());
        lxw_col_t at = 0;
        for (const ExportColumn &column : series.columns) {
            constexpr double kLeast = 6;
            worksheet_set_column(series.sheet, at, at,
                                 std::max(kLeast, column.widthTwips / kTwipsPerWidth), nullptr);
            const std::string &words = column.header.empty() ? column.key : column.header;
            worksheet_write_string(series.sheet, 0, at++, words.c_str(), m_bold);
            ++m_written.cells;
        }
        ++m_written.rows;
        worksheet_freeze_panes(series.sheet, 1, 0);
        series.row = 1;
    }

    void write(const SheetSeries &to, lxw_col_t at, const Cell &value) {
        // An empty text makes no cell.
        const auto *words = std::get_if<std::string>(&value);
        if (!value.isNothing() && (!words || !words->empty()))
            ++m_written.cells;
        if (const auto *flag = std::get_if<bool>(&value)) {
            worksheet_write_boolean(to.sheet, to.row, at, *flag ? 1 : 0, nullptr);
        } else if (const auto *whole = std::get_if<std::int64_t>(&value)) {
            writeNumber(to, at, *whole);
        } else if (const auto *real = std::get_if<double>(&value)) {
            worksheet_write_number(to.sheet, to.row, at, *real, nullptr);
        } else if (const auto *text = std::get_if<std::string>(&value)) {
            writeText(to, at, *text);
        }
    }

    /// Sheets hold floats: a number that isn't one exactly stands as its digits.
    void writeNumber(const SheetSeries &to, lxw_col_t at, std::int64_t number) {
        constexpr std::int64_t kExact = std::int64_t{1} << 53;
        if (number > -kExact && number < kExact)
            worksheet_write_number(to.sheet, to.row, at, static_cast<double>(number), nullptr);
        else
            writeText(to, at, std::to_string(number));
    }

    void writeText(const SheetSeries &to, lxw_col_t at, const std::string &value) {
        std::string text = sheetText(value);
        if (cutToCell(text))
            ++m_job.counts.cellsCut;
        const std::string safe = withoutCodes(text);
        const lxw_error problem =
            worksheet_write_string(to.sheet, to.row, at, safe.c_str(), nullptr);
        if (problem == LXW_NO_ERROR)
            return;
        // The codes' escapes have made it too long: a shorter cell says so.
        ++m_job.counts.cellsCut;
        const std::string shorter = std::string(charSub(safe, 0, kCellUnits / 2)) + "\u2026";
        worksheet_write_string(to.sheet, to.row, at, shorter.c_str(), nullptr);
    }

    Export &m_job;
    ExportFile m_file;
    std::string m_scratch;
    lxw_workbook *m_book = nullptr;
    lxw_format *m_bold = nullptr;
    SheetSeries m_urls;
    SheetSeries m_facts;
    SheetCount m_written;
};

} // namespace

std::unique_ptr<ExportWriter> makeXlsxWriter(Export &job, const std::filesystem::path &scratch) {
    return std::make_unique<XlsxWriter>(job, scratch);
}

} // namespace nv
