#include "views/queries/QueryMessages.h"

#include "base/MessageKinds.h"

#include <string>
#include <utility>

namespace nv::messages {

namespace {

/// Nobody there means No: nothing that is kept is replaced or deleted unasked.
Message warningQuestion(std::string id, std::string title, std::string text) {
    return question(std::move(id), std::move(title), std::move(text), Answer::No, Tone::Warning);
}

} // namespace

Message statementValid() {
    return notice("statement-valid", "No Errors", "The current SQL statement is valid.",
                  Tone::Information);
}

Message statementInvalid(std::string_view reason) {
    return notice("statement-invalid", "Invalid Query Statement", std::string(reason));
}

Message badDefinition() {
    return notice("bad-definition", "Bad Definition",
                  "The current SQL Query Definition is invalid!\n"
                  "All queries must begin with SELECT and contain \n"
                  "the ALL (*) wildcard character.");
}

Message statementNotKept(std::string_view reason) {
    return failure("statement-not-kept", "Bad Definition", reason);
}

Message undoFailed(std::string_view reason) {
    return failure("undo-failed", "Error Restoring Last Query", reason);
}

Message defaultQueryFailed(std::string_view reason) {
    return failure("default-query-failed", "Error Resetting Default Query", reason);
}

Message badQueryDefinition() {
    return notice("bad-query-definition", "Bad Query Definition",
                  "The current query statement is invalid.");
}

Message enterQueryName() {
    return notice("enter-query-name", "Save Query", "Enter name of query:", Tone::Information);
}

Message reservedQuery() {
    return notice("reserved-query", "Invalid Query Name",
                  "This is a reserved query which cannot be modified or\n"
                  "deleted. Please choose another name for your query.");
}

Message queryExists() {
    return warningQuestion("query-exists", "Query Exists",
                           "A query with the specified name already exists.\n"
                           "Overwrite existing query?");
}

Message savingQueryFailed(std::string_view reason) {
    return failure("saving-query-failed", "Error Saving Query", reason);
}

Message reservedQueryNotDeleted() {
    return notice("reserved-query-not-deleted", "Invalid Query Name",
                  "This is a reserved query which cannot be modified or\n"
                  "deleted.\n"
                  "Please choose another name for your query.");
}

Message deleteStoredQuery() {
    return warningQuestion("delete-stored-query", "Delete Stored Query",
                           "You are about to permanently delete the \n"
                           "selected stored query from the database.\n"
                           "Do you still want to delete the query?");
}

Message favorites() {
    return notice("favorites", "Favorites",
                  "The FAVORITES option is currently being redeveloped\n"
                  "as a management tool for already saved queries and\n"
                  "will available in a future dot release.\n"
                  "Please use the QUERY TAB if you wish to create \n"
                  " and save custom search queries.",
                  Tone::Information);
}

Message invalidFavoriteName() {
    return notice("invalid-favorite-name", "Invalid Favorite Name",
                  "The value entered contains one or more invalid characters.\n"
                  "Only letters, dashes and underscores are permitted.");
}

Message fieldNamesFailed(std::string_view reason) {
    return failure("field-names-failed", "Error Loading Field Names", reason);
}

Message queryDialogFailed(std::string_view reason) {
    return failure("query-dialog-failed", "Query Error", reason);
}

Message sampleStatement() {
    return notice("sample-statement", "A Sample SQL Statement",
                  "A properly formatted query starts with:\n\n"
                  "SELECT * FROM URLs\n\n"
                  "WHERE and ORDER BY may follow, to choose rows and to sort them:\n\n"
                  "SELECT * FROM URLs WHERE URL LIKE '%hotmail%' AND CacheType LIKE '%cache%' AND "
                  "(ActionDateUTC BETWEEN #12/31/2008# AND #7/15/2009#) ORDER BY URL DESC, "
                  "ActionDateUTC ASC",
                  Tone::Information);
}

} // namespace nv::messages
