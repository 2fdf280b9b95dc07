#include "tool/completion/bash_completion.h"

#include "tool/help_format.h"

namespace ze::tool {
namespace {

// The parts of the script around its three lists of cases. "--option=value" comes in as three words.
constexpr char kFindCommand[] = R"(# bash completion of zebeauty, made by `zebeauty completion`

_zebeauty()
{
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local command=zebeauty at=1 choices= options= files=
    if [[ $word == = ]]; then
        word=
    elif [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((; at < COMP_CWORD; at++)); do
        case "$command ${COMP_WORDS[at]}" in
)";
constexpr char kFindValues[] = R"(            *) break ;;
        esac
    done
    case "$command $before" in
)";
constexpr char kFindOptions[] = R"(        *) case $command in
)";
constexpr char kReply[] = R"(        esac ;;
    esac
    if [[ " ${COMP_WORDS[*]:0:COMP_CWORD} " == *" -- "* ]]; then
        choices= files=yes
    elif [[ $word == -* ]]; then
        choices=$options
    fi
    COMPREPLY=($(compgen -W "$choices" -- "$word"))
    [[ ! $files || ${COMPREPLY[*]} ]] || compopt -o default
}
complete -F _zebeauty zebeauty
)";

std::vector<const CLI::App*> shownCommands(const CLI::App& group) {
    return group.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

// A file name, or a text, which may be one.
bool takesFile(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const auto begins = [&](const char* name) { return type.rfind(name, 0) == 0; };
    return begins("TEXT") || begins("FILE") || begins("DIR");
}

std::string joined(const std::vector<std::string>& words) {
    return CLI::detail::join(words, " ");
}

// The three lists of cases, each a line per command or option.
struct Cases {
    std::string commands;
    std::string values;
    std::string options;

    void addValue(const std::string& command, const CLI::Option& option);
    void addOptions(const std::string& command, const CLI::App& app);
    void add(const std::string& command, const CLI::App& app);
};

void Cases::addValue(const std::string& command, const CLI::Option& option) {
    const std::vector<std::string> choices = choicesOf(option);
    std::string action;
    if (!choices.empty())
        action = "choices='" + joined(choices) + "' ";
    else if (takesFile(option))
        action = "files=yes ";
    for (const std::string& name : namesOf(option))
        values += "        '" + command + " " + name + "') " + action + ";;\n";
}

void Cases::addOptions(const std::string& command, const CLI::App& app) {
    std::vector<std::string> names, subcommands;
    bool readsFiles = false;
    for (const CLI::Option* option : app.get_options()) {
        readsFiles |= option->get_positional() && takesFile(*option);
        for (const std::string& name : namesOf(*option))
            names.push_back(name);
    }
    for (const CLI::App* subcommand : shownCommands(app))
        subcommands.push_back(subcommand->get_name());
    options += "            '" + command + "') options='" + joined(names) + "' choices='" +
               joined(subcommands) + (readsFiles ? "' files=yes ;;\n" : "' ;;\n");
}

void Cases::add(const std::string& command, const CLI::App& app) {
    addOptions(command, app);
    for (const CLI::Option* option : app.get_options()) {
        if (takesValue(*option))
            addValue(command, *option);
    }
    for (const CLI::App* subcommand : shownCommands(app)) {
        const std::string path = command + " " + subcommand->get_name();
        commands += "            '" + path + "') command='" + path + "' ;;\n";
        add(path, *subcommand);
    }
}

} // namespace

std::string bashCompletion(const CLI::App& program) {
    Cases cases;
    cases.add(program.get_name(), program);
    return kFindCommand + cases.commands + kFindValues + cases.values + kFindOptions + cases.options + kReply;
}

} // namespace ze::tool
