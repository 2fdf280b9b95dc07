// zebeauty, which beautifies still pictures with libZeBeautyEffect.

#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/files/interruption.h"
#include "tool/render/headless.h"

#include <iostream>

namespace {

using namespace ze::tool;

// Refuses a word that is not a command. CLI11 would call it an unexpected argument.
void checkCommand(const CLI::App& program, int argc, char** argv) {
    const CLI::App* group = &program;
    std::string words;
    for (int i = 1; !group->get_subcommands({}).empty(); ++i) {
        const std::string word = i < argc ? argv[i] : "";
        if (word.rfind('-', 0) == 0)
            return;
        if (word.empty())
            throw Failure(ExitCode::usage, "no command is named; see zebeauty" + words + " --help");
        const auto named =
            group->get_subcommands([&](const CLI::App* command) { return command->get_name() == word; });
        if (named.empty())
            throw Failure(ExitCode::usage,
                          "unknown command '" + word + "'; see zebeauty" + words + " --help");
        words += " " + word;
        group = named.front();
    }
}

ExitCode run(int argc, char** argv) {
    CLI::App program("Beautifies and grades still pictures with libZeBeautyEffect.", "zebeauty");
    program.set_version_flag("--version", "zebeauty " ZE_VERSION);
    program.footer("Exit codes: 0 done, 1 processing failed, 2 usage, 3 input not readable or not valid, "
                   "4 no EGL or OpenGL ES");
    addRenderCommand(program);
    addSheetCommand(program);
    addLutCommand(program);
    addInfoCommand(program);
    addChartCommand(program);
    checkCommand(program, argc, argv);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            program.exit(error);
            return ExitCode::done;
        }
        throw Failure(ExitCode::usage, error.what());
    }
    if (!std::cout.flush())
        throw Failure(ExitCode::failed, "cannot write to standard output");
    return ExitCode::done;
}

} // namespace

int main(int argc, char** argv) {
    prepareEnvironment();
    prepareForInterruptions();
    ExitCode code = ExitCode::failed;
    try {
        code = run(argc, argv);
    } catch (const Failure& failure) {
        code = failure.code();
        printError(failure.what());
    } catch (const std::bad_alloc&) {
        printError("not enough memory");
    } catch (const std::exception& error) {
        printError(error.what());
    }
    return static_cast<int>(code);
}
