// A Jet database; of it are read
//   Case    = CachePath Version      one row
//   History = the columns of NetAnalysisRow.h, a row an event; dates are local to the machine
// Versions may have further columns. The format itself is the library's, see JetProgram.h.

#include "readers/results/NetAnalysis.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "platform/ChildProcess.h"
#include "readers/results/JetProgram.h"
#include "readers/results/NetAnalysisRow.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.ParseNetAnalysisFile()";
constexpr std::string_view kRecommendation =
    "NetAnalysis file version may be incompatible with this build of Norvelane";

constexpr std::array<std::string_view, 2> kCaseColumns = {"CachePath", "Version"};

/// The fewest bytes that a row and its entry on the page take: a table that counts more than fit
/// into the file doesn't know its rows.
constexpr std::uint64_t kSmallestRow = 5;

class CaseReading {
  public:
    CaseReading(ReadContext &ctx, const std::filesystem::path &program)
        : m_ctx(ctx), m_program(program), m_path(textOf(ctx.file.FullPath)),
          m_trap(ctx.log, kProcedure, m_path) {}

    ReadResult run() {
        if (readCase() && readHistory())
            sumUp();
        return m_result;
    }

  private:
    bool readCase();
    bool readHistory();
    void takeHead(const JetHead &head);
    bool takeRow(const JetRow &row);
    bool advance();
    bool read(const JetQuery &query, const JetLines::Receiver &receiver, std::string_view what);
    void showStep(const std::string &text);
    void sumUp();
    void addDamage(const std::string &text) {
        m_result.reason += (m_result.reason.empty() ? "" : "; ") + text;
    }

    ReadContext &m_ctx;
    const std::filesystem::path &m_program;
    std::string m_path;
    RecordTrap m_trap;
    ReadResult m_result;
    bool m_hasCase = false;
    bool m_hasHistory = false;
    std::string m_cachePath;
    std::uint64_t m_counted = 0; ///< rows, by the table's definition
    std::uint64_t m_met = 0;
    std::uint64_t m_damaged = 0;
    std::uint64_t m_cut = 0; ///< rows with values that are not whole
};

/// False when cancelled.
bool CaseReading::read(const JetQuery &query, const JetLines::Receiver &receiver,
                       std::string_view what) {
    const auto goOn = [this] { return advance(); };
    const JetOutcome outcome = readJetTable(query, receiver, goOn);
    if (!outcome.libraryWords.empty())
        m_ctx.log.write({fmt::format("{}: {}: {}", m_path, what, outcome.libraryWords),
                         std::string(kProcedure), Severity::Low, std::string(kNotSerious)});
    if (outcome.isCancelled) {
        m_result.state = ReadState::cancelled;
        return false;
    }
    for (const std::string &text : {outcome.failure, outcome.damage})
        if (!text.empty() && m_result.reason.find(text) == std::string::npos)
            addDamage(text);
    if (outcome.unlistedRows > 0)
        addDamage(fmt::format("{} rows of table {} lie on pages that its list of pages lacks",
                              outcome.unlistedRows, query.table));
    if (outcome.deletedRows > 0)
        m_result.passedOver[fmt::format("deleted rows of table {}", query.table)] =
            outcome.deletedRows;
    return true;
}

/// The events are worth reading also when what is known of the case can't be. A case file has one
/// case; of several the first counts.
bool CaseReading::readCase() {
    const auto takeCase = [this](const JetRow &row) {
        if (!row.damage.empty() || !row.cut.empty())
            addDamage("a row of table Case is damaged");
        if (!row.damage.empty() || std::exchange(m_hasCase, true))
            return true;
        if (const auto *path = std::get_if<std::string>(row.cells.data()))
            m_cachePath = *path;
        if (const auto *version = std::get_if<std::string>(&row.cells[1]))
            m_ctx.file.Version = *version;
        return true;
    };
    const auto noteColumns = [this](const JetHead &head) {
        for (std::size_t i = 0; i < head.kinds.size(); ++i)
            if (head.kinds[i] != "text")
                addDamage(fmt::format("table Case has no text column \"{}\"", kCaseColumns[i]));
    };
    return read({m_program, m_ctx.file.FullPath, "Case", kCaseColumns}, {noteColumns, takeCase},
                "Case");
}

bool CaseReading::readHistory() {
    return read({m_program, m_ctx.file.FullPath, "History", kNetAnalysisColumns},
                {[this](const JetHead &head) { takeHead(head); },
                 [this](const JetRow &row) { return takeRow(row); }},
                "History");
}

void CaseReading::takeHead(const JetHead &head) {
    m_counted = head.rows;
    m_ctx.task.describe({"PARSING NET ANALYSIS FILE",
                         fmt::format("A total of {} URLs were found.", m_counted), m_path,
                         "net-32.gif"});
    m_hasHistory = true;
    std::vector<std::string_view> lacking;
    for (std::size_t i = 0; i < head.kinds.size(); ++i)
        if (!takesNetAnalysisKind(i, head.kinds[i]))
            lacking.push_back(kNetAnalysisColumns[i]);
    if (!lacking.empty())
        addDamage(fmt::format("table History lacks columns, or has them of another type: {}",
                              fmt::join(lacking, ", ")));
}

bool CaseReading::advance() {
    const auto met = static_cast<double>(std::min(m_met, m_counted));
    return m_ctx.task.advance(m_counted == 0 ? 0 : met / static_cast<double>(m_counted));
}

/// False when cancelled.
bool CaseReading::takeRow(const JetRow &row) {
    ++m_met;
    if (m_ctx.task.wantsStep())
        showStep(fmt::format("Processing {} of {}", m_met, m_counted));
    if (!row.damage.empty()) {
        ++m_damaged;
        m_trap.attempt(row.place, [&] { throw std::runtime_error(row.damage); });
        return advance();
    }
    const bool saved = m_trap.run(row.place, [&] {
        URLClass record = netAnalysisRecord(m_ctx, row, m_cachePath);
        m_ctx.sink.save(record);
    });
    if (!saved)
        ++m_result.passedOver["damaged record"];
    if (!row.cut.empty()) {
        ++m_cut;
        m_trap.attempt(row.place, [&] {
            throw std::runtime_error(fmt::format("its value of column \"{}\" is cut",
                                                 kNetAnalysisColumns[row.cut.front()]));
        });
    }
    return advance();
}

void CaseReading::showStep(const std::string &text) {
    m_ctx.task.show(
        {text, static_cast<std::int64_t>(m_met), static_cast<std::int64_t>(m_counted), {}, 0, 0});
}

void CaseReading::sumUp() {
    const std::uint64_t found = m_met - m_damaged;
    if (found != m_counted)
        addDamage(fmt::format("table History counts {} rows, and {} were found", m_counted, found));
    if (m_damaged > 0)
        addDamage(counted(m_damaged, "row") + " can't be read");
    if (m_cut > 0)
        addDamage(counted(m_cut, "row") + " with values that are cut");
    if (m_result.reason.empty()) {
        if (m_ctx.task.wantsStep())
            showStep("All done.");
        return;
    }
    const bool isLost = !m_hasHistory || m_counted > 0;
    m_result.state = found == 0 && isLost ? ReadState::failed : ReadState::cutShort;
    const std::uint64_t size = m_ctx.evidence.factsOf(m_ctx.file.FullPath).size;
    if (m_counted > found && m_counted <= size / kSmallestRow)
        m_result.notReached = m_counted - found;
    m_result.reason = fmt::format("{}: {}", m_path, m_result.reason);
    m_ctx.log.write({m_result.reason, std::string(kProcedure), Severity::Warning,
                     std::string(kRecommendation)});
}

} // namespace

ReadResult readNetAnalysisFile(ReadContext &ctx,
                               const std::optional<std::filesystem::path> &program) {
    const std::string path = textOf(ctx.file.FullPath);
    ReadResult failed{ReadState::failed, path + ": could not be read", 0, {}};
    if (!program) {
        failed.reason = path + ": the program norvelane-jet, which reads such files, is missing "
                               "from the folder of this program";
        ctx.log.write({failed.reason, std::string(kProcedure), Severity::Warning,
                       std::string(kContactSupport)});
        return failed;
    }
    return trapped(ctx.log, Severity::Warning, kProcedure, kRecommendation, failed,
                   [&] { return CaseReading(ctx, *program).run(); });
}

ReadResult ParseNetAnalysisFile(ReadContext &ctx) {
    return readNetAnalysisFile(ctx, companionProgram("norvelane-jet"));
}

} // namespace nv
