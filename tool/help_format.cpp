#include "tool/help_format.h"

namespace ze::tool {
namespace {

// What CLI11 calls the values: "FLOAT", or "TEXT:{nv12,nv21}" with the words of a check, which say more.
std::string valueText(const CLI::Option& option) {
    const std::string text = option.get_type_name();
    return text.substr(text.find(':') + 1);
}

std::string namesText(const char* verb, const std::set<CLI::Option*>& options) {
    std::string text;
    for (const CLI::Option* option : options)
        text += (text.empty() ? verb : ", ") + option->get_name();
    return text.empty() ? "" : " (" + text + ")";
}

} // namespace

HelpFormatter::HelpFormatter() {
    label("Positionals", "Arguments");
    label("SUBCOMMAND", "COMMAND");
    label("FLOAT", "NUMBER");
}

std::string HelpFormatter::make_option_name(const CLI::Option* option, bool isPositional) const {
    return CLI::detail::find_and_replace(Formatter::make_option_name(option, isPositional), ",", ", ");
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
    if (option->get_positional() || !takesValue(*option))
        return "";
    // Manual pages are made of this by the two spaces before a description.
    return " " + get_label(valueText(*option)) + " ";
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
    const std::string standard = option->get_default_str();
    return option->get_description() + (standard.empty() ? "" : " (default: " + standard + ")") +
           namesText("needs ", option->get_needs()) + namesText("not with ", option->get_excludes());
}

std::vector<std::string> choicesOf(const CLI::Option& option) {
    const std::string text = valueText(option);
    const bool isList = text.size() > 2 && text.front() == '{' && text.back() == '}';
    return isList ? CLI::detail::split(text.substr(1, text.size() - 2), ',') : std::vector<std::string>();
}

bool takesValue(const CLI::Option& option) {
    return option.get_items_expected_max() > 0;
}

} // namespace ze::tool
