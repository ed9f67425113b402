#pragma once

#include "base/Examiner.h"
#include "platform/Network.h"

#include <string_view>

namespace nv::messages {

/// Yes: the program disables the connection and goes on. No: it goes on. Cancel: it doesn't.
Message networkDetected();
/// Before the connection is switched.
Message switchNetwork(ConnectionState wanted, std::string_view name);
Message networkDisabled();
/// `why` is noFolder or noItem.
Message connectionNotFound(Switched why, std::string_view name);
Message networkSwitchFailed(std::string_view reason);

} // namespace nv::messages
