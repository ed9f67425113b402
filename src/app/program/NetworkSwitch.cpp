#include "app/program/NetworkSwitch.h"

#include "app/messages/NetworkMessages.h"
#include "base/Trap.h"

namespace nv {

std::string networkConnectionStatus(Program &program) {
    std::string status;
    logFailureOf(program.log, "MainBAS.NetworkConnectionStatus()", [&] {
        status =
            program.around.network.networkConnectionStatus(program.state.networkConnectionName);
    });
    return status;
}

bool toggleNetworkConnection(Program &program, ConnectionState newState, Quiet quiet) {
    const std::string &name = program.state.networkConnectionName;
    Switched result = Switched::noFolder;
    const auto failure = failureOf(program.log, "MainBAS.ToggleNetworkConnection()", [&] {
        result = program.around.network.switchConnection(name, newState);
    });
    if (!failure && (result == Switched::done || result == Switched::alreadySo)) {
        program.state.connectionOffline = newState == ConnectionState::disabled;
        return result == Switched::done;
    }
    if (quiet == Quiet::no)
        program.around.examiner.tell(failure ? messages::networkSwitchFailed(*failure)
                                             : messages::connectionNotFound(result, name));
    return false;
}

} // namespace nv
