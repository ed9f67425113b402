#include "app/cli/Grammar.h"
#include "base/Files.h"
#include "base/Text.h"
#include "db/SqlTokens.h"

#include <filesystem>
#include <iostream>

using namespace nv;
using namespace nv::cli;

namespace {

/// As a shell shows a program that a closed pipe has ended.
constexpr int kOutputClosed = 141;

int fail(const std::exception &failure, Exit code) {
    std::cerr << "norvelane-cli: " << printable(failure.what()) << '\n';
    return static_cast<int>(code);
}

/// As they would be typed, nearly: for people.
std::string wordsOf(int argc, char **argv) {
    std::string words = "norvelane-cli";
    for (int i = 1; i < argc; ++i) {
        const std::string word = decodeText(argv[i]);
        words += word.find_first_of(" \t") == std::string::npos ? " " + word : " \"" + word + '"';
    }
    return words;
}

} // namespace

int main(int argc, char **argv) {
    Grammar grammar;
    try {
        grammar.app.parse(argc, argv);
        const auto executable = std::filesystem::read_symlink("/proc/self/exe");
        Session session(executable.string(), wordsOf(argc, argv), std::cout, std::cerr);
        const Exit exit = grammar.chosen(session);
        if (outputClosed)
            return kOutputClosed;
        session.flushOutput();
        return static_cast<int>(exit);
    } catch (const CLI::ParseError &problem) {
        // Asking for help or the version ends the parsing too, with 0.
        return grammar.app.exit(problem) == 0 ? 0 : static_cast<int>(Exit::usage);
    } catch (const UsageError &failure) {
        return fail(failure, Exit::usage);
    } catch (const DialectError &failure) {
        return fail(failure, Exit::usage);
    } catch (const std::filesystem::filesystem_error &failure) {
        std::cerr << "norvelane-cli: \"" << printable(textOf(failure.path1()))
                  << "\": " << failure.code().message() << '\n';
        return static_cast<int>(Exit::projectUnusable);
    } catch (const std::exception &failure) {
        return fail(failure, Exit::projectUnusable);
    }
}
