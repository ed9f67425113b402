#include "app/messages/ReportMessages.h"

#include "base/MessageKinds.h"

#include <fmt/format.h>

#include <string>

namespace nv::messages {

Message reportTypeMissing() {
    return notice("report-type-missing", "Option Missing",
                  "The report TYPE has not been selected.");
}

Message reportTagMissing() {
    return notice("report-tag-missing", "Option Missing",
                  "No tag is chosen: check one or more in the list, or choose other rows.");
}

Message reportingError(std::string_view reason) {
    return failure("reporting-error", "Reporting Error", reason);
}

Message reportNotLoaded(std::string_view reason) {
    return failure("report-not-loaded", "Error Loading Report", reason);
}

Message nothingToPublish() {
    return {"nothing-to-publish", "Report Missing",
            "There is nothing to publish.\n\n"
            "Before you can publish a report, you must first "
            "create a report by using the REPORT tab."};
}

Message readyToPublish() {
    return question("ready-to-publish", "Ready To Publish",
                    "Norvelane is now ready to copy the report and related files "
                    "to the selected output folder.\n\n"
                    "Please note that this could take a while depending on the size "
                    "of the report.",
                    Answer::Yes);
}

Message reportInMaking() {
    return question("report-in-making", "Report in the Making",
                    "A report is being made. It stops when the project is closed, and nothing is "
                    "left of it.\n\nDo you want to close the project?",
                    Answer::Yes);
}

Message reportNotPublished(std::size_t count, std::string_view page) {
    const std::string what =
        count == 1 ? std::string("A report of this project was made, but not published:")
                   : fmt::format("{} reports of this project were made, but not published. The "
                                 "first one is",
                                 count);
    return {
        .id = "report-not-published",
        .title = "Report Not Published",
        .text = fmt::format(
            "{}\n{}\n\nWhat isn't published is removed when the program starts again.", what, page),
        .choices = Choices::YesNoCancel,
        .tone = Tone::Information,
        .unattended = Answer::No,
        .yes = "&Publish...",
        .no = "&Leave It"};
}

Message replacePublished(std::string_view folder) {
    return question("replace-published", "Publish Report",
                    fmt::format("{}\n\nThis folder holds an earlier report of this type. Do you "
                                "want to replace it, with its pictures and pages?",
                                folder),
                    Answer::No, Tone::Warning);
}

Message redactionsUnmet(std::string_view rules) {
    return question("redactions-unmet", "Publish Report",
                    fmt::format("Nothing in this report fits these redactions:\n\n{}\nWhere a name "
                                "is written otherwise in the evidence, the report shows it. Do you "
                                "want to publish it all the same?",
                                rules),
                    Answer::No, Tone::Warning);
}

Message reportPublished() {
    return notice("report-published", "", "Your report has been Successfully published.",
                  Tone::Information);
}

} // namespace nv::messages
