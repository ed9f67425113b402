#include "ExampleEvidence.h"
#include "LargeFiles.h"
#include "SiteExample.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string_view>

namespace {

constexpr std::string_view kUsage =
    "usage: norvelane-example FOLDER                      example evidence\n"
    "       norvelane-example --large KEY N BYTES FOLDER  an artefact of N records, whose bodies,\n"
    "                                                     where it has some, are of BYTES bytes\n"
    "       norvelane-example --site KIND FOLDER          the made site in a browser's cache, or "
    "for a\n"
    "                                                     server\n";

std::size_t numberOf(const char *word) {
    return std::strtoull(word, nullptr, 10);
}

} // namespace

int main(int argc, char **argv) {
    try {
        if (argc == 2 && argv[1][0] != '-') {
            nv::example::writeEvidence(argv[1]);
            return 0;
        }
        if (argc == 6 && std::string_view(argv[1]) == "--large") {
            nv::example::writeLarge(argv[2], numberOf(argv[3]), numberOf(argv[4]), argv[5]);
            return 0;
        }
        if (argc == 4 && std::string_view(argv[1]) == "--site") {
            nv::example::writeMadeSite(argv[2], argv[3]);
            return 0;
        }
        std::cerr << kUsage;
        return 1;
    } catch (const std::exception &failure) {
        std::cerr << "norvelane-example: " << failure.what() << '\n';
        return 1;
    }
}
