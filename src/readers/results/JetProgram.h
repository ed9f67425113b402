#pragma once

#include "readers/results/JetLines.h"

#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace nv {

/// A table of a Jet database, read by the program norvelane-jet: damaged files can crash or hang
/// the library that knows the format.
struct JetQuery {
    std::filesystem::path program; ///< where norvelane-jet is
    std::filesystem::path file;
    std::string_view table;
    std::span<const std::string_view> columns; ///< names; case doesn't count
};

struct JetOutcome {
    bool isCancelled = false;
    /// Why nothing or nothing more could be read; empty when the table was read to its end.
    std::string failure;
    std::string damage; ///< of the file as a whole; no row needs to be lost to it
    std::uint64_t deletedRows = 0;
    std::uint64_t unlistedRows = 0; ///< read, although the table's list of pages lacks them
    std::string libraryWords;       ///< what the library said meanwhile
};

/// `goOn` is asked several times a second and cancels with false, and so does the receiver's `row`.
JetOutcome readJetTable(const JetQuery &query, const JetLines::Receiver &receiver,
                        const std::function<bool()> &goOn);

} // namespace nv
