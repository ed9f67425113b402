#include "app/messages/NetworkMessages.h"

#include "base/MessageKinds.h"

#include <fmt/format.h>

namespace nv::messages {

namespace {

constexpr std::string_view kConnected = "Your computer appears to be connected to a network.";
constexpr std::string_view kRecommended =
    "It is strongly recommended that you disable any outside connection to the Internet while "
    "using Norvelane.";

} // namespace

std::string networkWarning() {
    return fmt::format("{} {}", kConnected, kRecommended);
}

Message networkDetected() {
    return {"network-detected",
            "Network Connection Detected",
            fmt::format("{}\n\n{}\n\n", kConnected, kRecommended) +
                "Should Norvelane try to disable the connection now?\n\n"
                "Yes: disable it and import. No: import as it is. Cancel: don't import.",
            Choices::YesNoCancel,
            Tone::Warning,
            Answer::No};
}

Message switchNetwork(ConnectionState wanted, std::string_view name) {
    const bool off = wanted == ConnectionState::disabled;
    return question("switch-network", "Network Connection",
                    fmt::format("Do you want to {} the network connection \"{}\" now?\n\n{}",
                                off ? "disable" : "enable", name,
                                off ? "Other programs on this computer lose it too."
                                    : "It is strongly recommended that you stay without it while "
                                      "using Norvelane."),
                    off ? Answer::Yes : Answer::No, off ? Tone::Information : Tone::Warning);
}

Message networkDisabled() {
    return notice("network-disabled", "Network Connection",
                  "Your network connection has been disabled.", Tone::Information);
}

Message connectionNotFound(Switched why, std::string_view name) {
    return notice("connection-not-found", "Network Connection",
                  why == Switched::noFolder
                      ? std::string("NetworkManager doesn't run on this computer, so Norvelane "
                                    "can't switch its connections.\n\nSwitch the network in the "
                                    "system's settings, or unplug it.")
                      : fmt::format("Couldn't find '{}' item\n\nIts name is set in Options, tab "
                                    "Safety.",
                                    name));
}

Message networkSwitchFailed(std::string_view reason) {
    return failure("network-switch-failed", "Network Connection", reason);
}

} // namespace nv::messages
