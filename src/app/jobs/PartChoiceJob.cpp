#include "app/jobs/PartChoiceJob.h"

#include "app/jobs/Trail.h"
#include "db/marks/PartChoices.h"

#include <fmt/format.h>

namespace nv {

namespace {

std::string detailOf(UrlId page, const std::string &address, std::optional<UrlId> part) {
    if (!part)
        return fmt::format("record {}: the program decides again what stands for {}", page,
                           address);
    return *part == UrlId::none
               ? fmt::format("record {}: nothing stands for {}", page, address)
               : fmt::format("record {}: record {} stands for {}", page, *part, address);
}

} // namespace

void keepPartChoice(Program &program, UrlId page, const std::string &address,
                    std::optional<UrlId> part) {
    PartChoices choices(program.state.projectDB.connection());
    if (part)
        choices.choose(page, address, *part);
    else
        choices.forget(page, address);
    TrailEntry entry;
    entry.action = "Choose Part";
    entry.detail = detailOf(page, address, part);
    entry.rowCount = 1;
    noteInTrail(program, std::move(entry));
}

} // namespace nv
