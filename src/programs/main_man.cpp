// norvelane-man DATE: writes the manual page of norvelane-cli. The build runs it.

#include "app/Version.h"
#include "cli/ManPage.h"

#include <fmt/format.h>

#include <iostream>

using namespace nv;

int main(int argc, char **argv) {
    if (argc != 2) {
        std::cerr << "usage: norvelane-man DATE\n";
        return EXIT_FAILURE;
    }
    std::cout << cli::manPageOf(
        cli::commandTable(),
        fmt::format("{}.{}.{}", version::kMajor, version::kMinor, version::kRevision), argv[1]);
    return EXIT_SUCCESS;
}
