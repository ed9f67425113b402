#include "ExampleEvidence.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string_view>

int main(int argc, char **argv) {
    try {
        if (argc == 2 && argv[1][0] != '-') {
            nv::example::writeEvidence(argv[1]);
            return 0;
        }
        if (argc == 4 && std::string_view(argv[1]) == "--index") {
            nv::example::writeIndex(argv[3], std::strtoull(argv[2], nullptr, 10));
            return 0;
        }
        std::cerr << "usage: norvelane-example FOLDER            example evidence\n"
                     "       norvelane-example --index N FILE    an index.dat of N records\n";
        return 1;
    } catch (const std::exception &failure) {
        std::cerr << "norvelane-example: " << failure.what() << '\n';
        return 1;
    }
}
