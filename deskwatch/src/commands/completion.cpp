#include "commands/completion.h"

#include <algorithm>
#include <sstream>

#include "text/value_text.h"

namespace deskwatch {
namespace {

struct NamedCommand {
    /// The words by which one calls it; empty for the program itself.
    std::string path;
    CLI::App* command;
};

void collect(CLI::App& command, const std::string& path, std::vector<NamedCommand>& commands) {
    commands.push_back({path, &command});
    for (auto* inner : command.get_subcommands([](CLI::App* entry) { return !entry->get_group().empty(); })) {
        collect(*inner, path + (path.empty() ? "" : " ") + inner->get_name(), commands);
    }
}

/// The names that the check of an option has; see proposing().
std::string valuesOf(CLI::Option& option) {
    try {
        auto names = option.get_validator(0)->get_name();
        std::replace(names.begin(), names.end(), '|', ' ');
        return names;
    } catch (const CLI::OptionNotFound&) {
        return ""; // it has no check
    }
}

std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const auto& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    for (const auto& name : option.get_snames()) {
        names.push_back("-" + name);
    }
    return names;
}

std::string optionsOf(CLI::App& command) {
    std::vector<std::string> words;
    for (const auto* option : command.get_options()) {
        for (const auto& name : option->get_lnames()) {
            words.push_back("--" + name);
        }
    }
    return joined(words, " ");
}

/// The options that take a value, as patterns of COMMAND/OPTION. Those of the program may follow any command.
std::string takersOf(const NamedCommand& named) {
    std::string lines;
    const auto place = named.path.empty() ? "*/" : "'" + named.path + "'/";
    for (auto* option : named.command->get_options()) {
        for (const auto& name : option->get_items_expected_max() > 0 ? namesOf(*option) : std::vector<std::string>{}) {
            lines.append("        ").append(place).append(name).append(") option=").append(name);
            lines.append(" values='").append(valuesOf(*option)).append("' ;;\n");
        }
    }
    return lines;
}

/// What stands at the places of a command, as patterns of COMMAND/PLACE: commands, names, or nothing for a file.
std::string placesOf(const NamedCommand& named) {
    std::vector<std::string> inner;
    for (const auto* command : named.command->get_subcommands([](CLI::App*) { return true; })) {
        if (!command->get_group().empty()) {
            inner.push_back(command->get_name());
        }
    }
    const std::string start = "            '" + named.path + "/'";
    std::string lines = inner.empty() ? "" : start + "0) words='" + joined(inner, " ") + "' ;;\n";
    int place = 0;
    for (auto* option : named.command->get_options()) {
        if (option->get_positional()) {
            const bool isLast = option->get_items_expected_max() > 1;
            lines += start + (isLast ? "*" : std::to_string(place++)) + ") words='" + valuesOf(*option) + "' ;;\n";
        }
    }
    return lines;
}

std::string entryOf(const std::string& path) {
    const auto blank = path.rfind(' ');
    const auto outer = blank == std::string::npos ? "" : path.substr(0, blank);
    return "        '" + outer + "/" + path.substr(blank + 1) + "') command='" + path + "' place=0 ;;\n";
}

} // namespace

CLI::Validator proposing(const std::vector<std::string>& names, CLI::Validator check) {
    return check.name(joined(names, "|"));
}

std::string completionScript(CLI::App& program) {
    std::vector<NamedCommand> commands;
    collect(program, "", commands);
    std::ostringstream script;
    script << R"(# bash completion for deskwatch
_deskwatch() {
    local current=${COMP_WORDS[COMP_CWORD]} command= option= values= words= place=0 word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ $word == '=' ]]; then # bash takes --option=value apart
            continue
        elif [[ $option ]]; then
            option=
            continue
        fi
        case "$command/$word" in
)";
    for (const auto& named : commands) {
        script << takersOf(named) << (named.path.empty() ? "" : entryOf(named.path));
    }
    script << R"(        */-*) ;;
        *) ((++place)) ;;
        esac
    done
    [[ $current != '=' ]] || current=
    if [[ $option ]]; then
        words=$values
    else
        case "$command" in
)";
    for (const auto& named : commands) {
        script << "        '" << named.path << "') words='" << optionsOf(*named.command) << "' ;;\n";
    }
    script << R"(        esac
        if [[ $current != -* ]]; then
            case "$command/$place" in
)";
    for (const auto& named : commands) {
        script << placesOf(named);
    }
    script << R"(            esac
        fi
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o bashdefault -o default -F _deskwatch deskwatch
)";
    return script.str();
}

} // namespace deskwatch
