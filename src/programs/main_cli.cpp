#include "base/Files.h"
#include "base/Text.h"
#include "cli/Grammar.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "db/sql/SqlTokens.h"
#include "platform/posix/BigBlocks.h"

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
    giveBigBlocksBack();
    const Call call = callOf({argv + 1, argv + argc});
    std::cout << call.answer << std::flush;
    std::cerr << call.refusal << std::flush;
    if (!call.run)
        return static_cast<int>(call.exit);
    try {
        const auto executable = std::filesystem::read_symlink("/proc/self/exe");
        Session session(executable.string(), wordsOf(argc, argv), std::cout, std::cerr);
        const Exit exit = call.run(session);
        if (outputClosed)
            return kOutputClosed;
        session.flushOutput();
        return static_cast<int>(exit);
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
