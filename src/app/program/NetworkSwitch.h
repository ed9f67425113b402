#pragma once

#include "app/program/Program.h"

#include <string>

namespace nv {

/// The state of the connection that the settings name: "ENABLED", "DISABLED", or empty when it
/// can't be told. A failure is logged.
std::string networkConnectionStatus(Program &program);

enum class Quiet { no, yes };

/// Switches that connection and notes the wanted state in `ProgramState.connectionOffline`. True
/// when the system has taken the request; false, told unless `quiet`, when there is no such
/// connection, and when the state was already as asked. A failure is logged and gives false.
bool toggleNetworkConnection(Program &program, ConnectionState newState, Quiet quiet);

} // namespace nv
