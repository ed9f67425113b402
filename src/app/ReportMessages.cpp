#include "app/ReportMessages.h"

#include <string>

namespace nv::messages {

Message reportTypeMissing() {
    return {"report-type-missing", "Option Missing", "The report TYPE has not been selected."};
}

Message reportingError(std::string_view reason) {
    return {"reporting-error", "Reporting Error", std::string(reason), Choices::Ok, Tone::Error};
}

Message reportNotLoaded(std::string_view reason) {
    return {"report-not-loaded", "Error Loading Report", std::string(reason), Choices::Ok,
            Tone::Error};
}

Message nothingToPublish() {
    return {"nothing-to-publish", "Report Missing",
            "There is nothing to publish.\n\n"
            "Before you can publish a report, you must first "
            "create a report by using the REPORT tab."};
}

Message readyToPublish() {
    return {"ready-to-publish",
            "Ready To Publish",
            "Norvelane is now ready to copy the report and related files "
            "to the selected output folder.\n\n"
            "Please note that this could take a while depending on the size "
            "of the report.",
            Choices::YesNo,
            Tone::Information,
            Answer::Yes};
}

Message reportPublished() {
    return {"report-published", "", "Your report has been Successfully published.", Choices::Ok,
            Tone::Information};
}

} // namespace nv::messages
