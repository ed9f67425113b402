#pragma once

#include "base/Examiner.h"

#include <string_view>

namespace nv::messages {

// What the query tab and the query dialog tell and ask. The texts stand as examiners know them.

Message statementValid();
Message statementInvalid(std::string_view reason);
Message badDefinition();
/// The statement could be run but not be kept in the project.
Message statementNotKept(std::string_view reason);
Message undoFailed(std::string_view reason);
Message defaultQueryFailed(std::string_view reason);

Message badQueryDefinition();
/// The prompt for a name.
Message enterQueryName();
Message reservedQuery();
Message queryExists();
Message savingQueryFailed(std::string_view reason);
Message reservedQueryNotDeleted();
Message deleteStoredQuery();

Message favorites();
Message invalidFavoriteName();
Message fieldNamesFailed(std::string_view reason);
Message queryDialogFailed(std::string_view reason);
Message sampleStatement();

} // namespace nv::messages
