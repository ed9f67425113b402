#pragma once

#include "base/FailureLog.h"
#include "db/schema/Ids.h"

#include <filesystem>
#include <string>

namespace nv {

// Types of reports, as settings and folders number them.
inline constexpr int kGraphicalType = 0;
inline constexpr int kTabularType = 1;
inline constexpr int kCaseType = 2; ///< see reports/case

/// Names a row's files in reports by the digits of its key, seven at least. Names of rebuilt pages
/// are cut to seven; in a report two rows would then show the files of one.
std::string rowNameOf(UrlId id);

/// Where the files of a report lie: a folder by itself, which holds one report at a time.
struct ReportFolder {
    explicit ReportFolder(const std::filesystem::path &parent) : path(parent / "Report") {}
    /// A report that lies elsewhere, such as a published one.
    static ReportFolder at(const std::filesystem::path &place);
    /// That of a type: a report of a case lies in a folder that holds nothing else.
    static ReportFolder of(const std::filesystem::path &parent, int reportType);

    std::filesystem::path path;

    std::filesystem::path unfinished() const { return path / "~report.htm"; }
    /// The finished page before it has its name.
    std::filesystem::path copied() const { return path / "~index"; }
    /// Names the folders of the rows of a graphical report, one a line.
    std::filesystem::path rowFolders() const { return path / "~rptids"; }
    /// The finished page.
    std::filesystem::path index(int reportType) const;
    std::filesystem::path images() const { return path / "images"; }
    std::filesystem::path pictures() const { return path / "pictures"; }

    /// Makes the folders and takes away what an earlier report of this type left; a graphical
    /// report takes all folders of rows with it: they may be those of another case.
    void prepare(int reportType) const;
    void removeRowFolders() const;
    /// Brings in the program's own pictures, new for each report.
    void copyImages(const std::filesystem::path &from, FailureLog &log) const;
    /// Brings in a picture of the examiner's as "images/NAME.gif" or so. Empty when it isn't there
    /// or is no picture that browsers show, which is logged.
    std::string takePicture(const std::filesystem::path &picture, const std::string &name,
                            FailureLog &log) const;
};

} // namespace nv
