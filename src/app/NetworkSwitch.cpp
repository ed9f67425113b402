#include "app/NetworkSwitch.h"

#include "app/NetworkMessages.h"
#include "base/Trap.h"

namespace nv {

std::string NetworkConnectionStatus(Program &program) {
    std::string status;
    logFailureOf(program.log, "MainBAS.NetworkConnectionStatus()", [&] {
        status =
            program.around.network.NetworkConnectionStatus(program.thisClass.NetworkConnectionName);
    });
    return status;
}

bool ToggleNetworkConnection(Program &program, ConnectionState newState, Quiet quiet) {
    const std::string &name = program.thisClass.NetworkConnectionName;
    Switched result = Switched::noFolder;
    const auto failure = failureOf(program.log, "MainBAS.ToggleNetworkConnection()", [&] {
        result = program.around.network.switchConnection(name, newState);
    });
    if (!failure && (result == Switched::done || result == Switched::alreadySo)) {
        program.thisClass.ConnectionOffline = newState == ConnectionState::disabled;
        return result == Switched::done;
    }
    if (quiet == Quiet::no)
        program.around.examiner.tell(failure ? messages::networkSwitchFailed(*failure)
                                             : messages::connectionNotFound(result, name));
    return false;
}

} // namespace nv
