#include "support/builders/NetAnalysisCase.h"

#include <chrono>

namespace nv::test {

namespace {

JetValue textOrNull(std::string_view text) {
    return text.empty() ? JetValue() : JetValue(std::string(text));
}

template <class Number>
JetValue orNull(const std::optional<Number> &number) {
    return number ? JetValue(*number) : JetValue();
}

} // namespace

double jetDate(int year, int month, int day, int hour, int minute, int second) {
    using namespace std::chrono;
    const sys_days date = std::chrono::year(year) / month / day;
    const sys_days first = std::chrono::year(1899) / 12 / 30;
    return static_cast<double>((date - first).count()) +
           (hour * 3600 + minute * 60 + second) / 86400.0;
}

NetAnalysisCase::NetAnalysisCase(std::string_view cachePath, std::string_view version) {
    using enum JetType;
    m_file.table("Case", {{"CaseID", longInteger}, {"CachePath", memo}, {"Version", text}});
    m_file.row({std::int32_t{1}, textOrNull(cachePath), textOrNull(version)});
    m_file.table("History", {{"URN", longInteger},
                             {"Type", text},
                             {"LastVisited", dateTime},
                             {"SecondaryDate", dateTime},
                             {"User", text},
                             {"Hits", longInteger},
                             {"InternetHistory", memo},
                             {"Hostname", text},
                             {"URLFileName", text},
                             {"FileExists", boolean},
                             {"FileOffset", longInteger},
                             {"HistoryVersion", text},
                             {"ContentData", memo},
                             {"Comment", memo},
                             {"Status", text},
                             {"SearchCriteria", memo}});
}

NetAnalysisCase &NetAnalysisCase::add(const NetAnalysisEvent &event) {
    m_file.row(
        {++m_events, textOrNull(event.type), orNull(event.lastVisited), orNull(event.secondaryDate),
         textOrNull(event.user), orNull(event.hits), textOrNull(event.internetHistory),
         textOrNull(event.hostname), textOrNull(event.urlFileName), event.fileExists,
         orNull(event.fileOffset), textOrNull(event.historyVersion), textOrNull(event.contentData),
         textOrNull(event.comment), textOrNull(event.status), textOrNull(event.searchCriteria)},
        event.place);
    return *this;
}

} // namespace nv::test
