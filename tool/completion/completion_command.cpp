#include "tool/commands.h"
#include "tool/completion/bash_completion.h"

#include <iostream>

namespace ze::tool {

void addCompletionCommand(CLI::App& program) {
    CLI::App* command = program.add_subcommand("completion", "Print the completion script for bash");
    command->group(""); // not in the help: packages install what it prints
    command->callback([&program] { std::cout << bashCompletion(program); });
}

} // namespace ze::tool
