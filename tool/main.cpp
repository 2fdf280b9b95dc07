// zebeauty, which beautifies pictures and clips with libZeBeautyEffect.

#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/files/interruption.h"
#include "tool/help_format.h"
#include "tool/render/headless.h"
#include "tool/standard_streams.h"

namespace {

using namespace ze::tool;

// What the first words of a command line name.
struct NamedCommand {
    const CLI::App* app = nullptr;
    std::string name; // as in "zebeauty lut"
    std::string next; // the word after it; empty when there is none
};

NamedCommand namedCommand(const CLI::App& program, int argc, char** argv) {
    NamedCommand named = {&program, program.get_name(), ""};
    for (int i = 1; i < argc; ++i) {
        named.next = argv[i];
        const auto found = named.app->get_subcommands(
            [&](const CLI::App* command) { return command->get_name() == named.next; });
        if (found.empty())
            return named;
        named = {found.front(), named.name + " " + named.next, ""};
    }
    return named;
}

// Refuses a word that is not a command. CLI11 would call it an unexpected argument.
void checkCommand(const NamedCommand& named) {
    if (named.app->get_subcommands({}).empty() || named.next.rfind('-', 0) == 0)
        return;
    throw Failure(ExitCode::usage,
                  named.next.empty() ? "no command is named" : "unknown command '" + named.next + "'");
}

void addCommands(CLI::App& program) {
    addRenderCommand(program);
    addSheetCommand(program);
    addLutCommand(program);
    addInfoCommand(program);
    addChartCommand(program);
    addCompletionCommand(program);
}

void runCommand(CLI::App& program, const NamedCommand& named, int argc, char** argv) {
    try {
        checkCommand(named);
        program.parse(argc, argv);
    } catch (const CLI::Success& helpOrVersion) {
        program.exit(helpOrVersion);
    } catch (const CLI::ParseError& error) {
        throw Failure(ExitCode::usage, error.what());
    }
    flushStandardOutput();
}

void run(int argc, char** argv) {
    CLI::App program("Beautifies and grades pictures and clips with libZeBeautyEffect", "zebeauty");
    program.formatter(std::make_shared<HelpFormatter>());
    program.set_version_flag("-V,--version", "zebeauty " ZE_VERSION, "Print the version and exit");
    program.set_help_flag("-h,--help", "Print this help and exit");
    program.footer("Exit status:\n"
                   "  0  done\n"
                   "  1  processing or writing failed\n"
                   "  2  the command line asks for something that cannot be done\n"
                   "  3  the input cannot be read or is not valid\n"
                   "  4  there is no EGL or no OpenGL ES");
    addCommands(program);
    const NamedCommand named = namedCommand(program, argc, argv);
    try {
        runCommand(program, named, argc, argv);
    } catch (const Failure& failure) {
        if (failure.code() != ExitCode::usage)
            throw;
        throw Failure(ExitCode::usage, failure.what() + ("; see " + named.name + " --help"));
    }
}

} // namespace

int main(int argc, char** argv) {
    reserveStandardStreams();
    prepareEnvironment();
    prepareForInterruptions();
    ExitCode code = ExitCode::failed;
    try {
        run(argc, argv);
        code = ExitCode::done;
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
