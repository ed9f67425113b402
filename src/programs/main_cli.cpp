#include <exception>
#include <filesystem>
#include <iostream>

#include "app/cli/Cli.h"

int main(int argc, char **argv) {
    try {
        const auto self = std::filesystem::read_symlink("/proc/self/exe");
        return nv::cli::run(self.string(), {argv + 1, argv + argc}, std::cout, std::cerr);
    } catch (const std::exception &failure) {
        std::cerr << "norvelane-cli: " << failure.what() << '\n';
        return static_cast<int>(nv::cli::Exit::projectUnusable);
    }
}
