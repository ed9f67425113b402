#include "app/project/ChosenRows.h"

#include "views/rows/DamagedList.h"

#include <utility>

namespace nv {

std::vector<UrlId> idsPastDamage(Program &program, const std::string &sql, UnreadRows &unread) {
    SurvivingRows rows;
    Unwatched nobody;
    static_cast<void>(
        rowsPastDamage(program.state.projectDB.connection(), {sql, ""}, nobody, rows));
    if (!rows.lost.empty())
        program.log.write({noteOf(rows.lost), "MainForm.LoadURLs()", Severity::Serious,
                           std::string(kContactSupport)});
    unread = std::move(rows.lost);
    std::vector<UrlId> ids;
    ids.reserve(rows.ids.size());
    for (const auto id : rows.ids)
        ids.push_back(UrlId{id});
    return ids;
}

} // namespace nv
