#include "app/project/ChosenRows.h"

#include "views/DamagedList.h"

#include <utility>

namespace nv {

std::vector<std::int64_t> idsPastDamage(Program &program, const std::string &sql,
                                        UnreadRows &unread) {
    SurvivingRows rows;
    Unwatched nobody;
    static_cast<void>(
        rowsPastDamage(program.thisClass.projectDB.connection(), {sql, ""}, nobody, rows));
    if (!rows.lost.empty())
        program.log.write({noteOf(rows.lost), "MainForm.LoadURLs()", Severity::Serious,
                           std::string(kContactSupport)});
    unread = std::move(rows.lost);
    return {rows.ids.begin(), rows.ids.end()};
}

} // namespace nv
