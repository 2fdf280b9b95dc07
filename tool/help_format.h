// How `--help` looks, on the screen and in the manual pages that are made of it.

#pragma once

#include <CLI/CLI.hpp>

namespace ze::tool {

/// One option or argument a line: its names, the values it takes, what it does, its default and what it needs
/// or excludes.
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter();

    std::string make_option_name(const CLI::Option* option, bool isPositional) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_option_desc(const CLI::Option* option) const override;
};

/// The values that `option` is limited to, as in {"nv12", "nv21"}; none when others are possible, too.
std::vector<std::string> choicesOf(const CLI::Option& option);

/// Whether `option` is followed by a value, unlike a flag.
bool takesValue(const CLI::Option& option);

} // namespace ze::tool
