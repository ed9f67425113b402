#pragma once

#include "base/Examiner.h"
#include "platform/Network.h"

#include <string>
#include <string_view>

namespace nv::messages {

/// That the computer is connected, and what is recommended, as one paragraph.
std::string networkWarning();
/// The same with a question. Yes: the program disables the connection and goes on. No: it goes on.
/// Cancel: it doesn't.
Message networkDetected();
/// Before the connection is switched.
Message switchNetwork(ConnectionState wanted, std::string_view name);
Message networkDisabled();
/// `why` is noFolder or noItem.
Message connectionNotFound(Switched why, std::string_view name);
Message networkSwitchFailed(std::string_view reason);

} // namespace nv::messages
