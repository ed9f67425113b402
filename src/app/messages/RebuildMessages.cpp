#include "app/messages/RebuildMessages.h"

#include "app/messages/Messages.h"

namespace nv::messages {

Message partRecordUnavailable() {
    Message message = linkRecordUnavailable();
    message.id = "part-record-unavailable";
    message.title = "Part's Record Unavailable";
    return message;
}

} // namespace nv::messages
