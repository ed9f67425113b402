#include "platform/posix/SysfsNetwork.h"

#include <fstream>
#include <system_error>

namespace nv {

namespace {

/// A driver that doesn't know counts as up: a needless warning costs less than a missing one.
bool isUp(const std::filesystem::path &interface) {
    std::ifstream file(interface / "operstate");
    std::string state;
    file >> state;
    return state == "up" || state == "unknown";
}

std::string statusOf(bool up) {
    return up ? "ENABLED" : "DISABLED";
}

} // namespace

SysfsNetwork::SysfsNetwork(std::filesystem::path interfaces)
    : m_interfaces(std::move(interfaces)) {}

std::string SysfsNetwork::networkConnectionStatus(std::string_view connectionName) const {
    std::error_code error;
    bool any = false;
    bool anyUp = false;
    std::filesystem::directory_iterator entry(m_interfaces, error);
    for (; !error && entry != end(entry); entry.increment(error)) {
        const std::filesystem::path &interface = entry->path();
        const std::string name = interface.filename().string();
        if (name == connectionName)
            return statusOf(isUp(interface));
        if (name == "lo" || !std::filesystem::exists(interface / "operstate"))
            continue;
        any = true;
        anyUp = anyUp || isUp(interface);
    }
    return any ? statusOf(anyUp) : std::string();
}

} // namespace nv
