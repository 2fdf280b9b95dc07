// zebeauty: beautifies still pictures with libZeBeautyEffect.

#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/headless.h"

#include <iostream>

namespace {

using namespace ze::tool;

ExitCode run(int argc, char** argv) {
    CLI::App program("Beautifies still pictures with libZeBeautyEffect.", "zebeauty");
    program.footer("Exit codes: 0 done, 1 processing failed, 2 usage, 3 input not readable or not valid, "
                   "4 no EGL or OpenGL ES");
    addRenderCommand(program);
    addInfoCommand(program);
    addChartCommand(program);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            program.exit(error);
            return ExitCode::done;
        }
        throw Failure(ExitCode::usage, error.what());
    }
    if (program.get_subcommands().empty())
        throw Failure(ExitCode::usage, "no command is named; see zebeauty --help");
    if (!std::cout.flush())
        throw Failure(ExitCode::failed, "cannot write to standard output");
    return ExitCode::done;
}

} // namespace

int main(int argc, char** argv) {
    prepareEnvironment();
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
