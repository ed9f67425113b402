#include "readers/AnswerHead.h"

#include "db/records/UrlRecord.h"
#include "readers/HttpHeaders.h"

#include <variant>

namespace nv {

std::string answerHeadOf(const UrlRecord &record, const FactList &facts) {
    if (const std::string_view own = answerHeadIn(record.MetaData); !own.empty())
        return std::string(own);
    for (const RecordFact &fact : facts)
        if (const auto *text = std::get_if<std::string>(&fact.value);
            text && fact.name == FactName("http_headers").word())
            return std::string(answerHeadIn(*text));
    return {};
}

} // namespace nv
