#include "host/cli/Completion.h"

#include "host/text/ProgramInfo.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace host {

namespace {

/// Prints the names of the columns of the data file $1, a line each: those of the header line, for any
/// separator. Both shells understand it.
constexpr const char* COLUMNS_FUNCTION = R"SHELL(__meta_analysis_columns() {
    [[ -f $1 && -r $1 ]] || return 0
    { gzip -cdq -- "$1" 2>/dev/null || cat -- "$1"; } 2>/dev/null | head -c 65536 | awk '
        NR == 1 {
            sub(/^\357\273\277/, ""); sub(/\r$/, "")
            separator = /\t/ ? "\t" : /;/ ? ";" : /,/ ? "," : " +"
            count = split($0, names, separator)
            for (i = 1; i <= count; ++i) { gsub(/^[ "]+|[ "]+$/, "", names[i]); print names[i] }
            exit
        }'
}
)SHELL";

/// Completes by two tables in the functions before it: the words of a command's options, and what follows an
/// option, of which "@" marks a kind.
constexpr const char* BASH_FUNCTION = R"SHELL(_meta_analysis() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} word command= data= i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if [[ -z $command ]]; then
            [[ $word == -* ]] || command=$word
        elif [[ -z $data && -f ${word/#\~/$HOME} ]]; then
            data=${word/#\~/$HOME}
        fi
    done
    if [[ -z $command ]]; then
        COMPREPLY=($(compgen -W "$(__meta_analysis_commands) help --help --version" -- "$current"))
        return
    fi
    if [[ $command == help ]]; then
        COMPREPLY=($(compgen -W "$(__meta_analysis_commands)" -- "$current"))
        return
    fi
    local kind=@files IFS=$'\n'
    [[ $previous == -* ]] && kind=$(__meta_analysis_argument "$command" "$previous")
    if [[ $current == -* && $kind != @none ]]; then
        COMPREPLY=($(compgen -W "$(__meta_analysis_options "$command" | tr ' ' '\n')" -- "$current"))
        return
    fi
    case $kind in
    @files) compopt -o filenames; COMPREPLY=($(compgen -f -- "$current")) ;;
    @folders) compopt -o filenames; COMPREPLY=($(compgen -d -- "$current")) ;;
    @columns)
        COMPREPLY=($(__meta_analysis_columns "$data" | while IFS= read -r word; do
            if [[ $word == "$current"* ]]; then printf '%q\n' "$word"; fi
        done)) ;;
    @none) ;;
    *) COMPREPLY=($(compgen -W "${kind// /$'\n'}" -- "$current")) ;;
    esac
}
complete -F _meta_analysis meta-analysis
)SHELL";

constexpr const char* ZSH_FUNCTION = R"SHELL(_meta_analysis_column() {
    local word data
    local -a names
    for word in "${(@)words[2,-1]}"; do
        word=${(Q)word/#\~/$HOME}
        [[ -z $data && -f $word ]] && data=$word
    done
    names=("${(@f)$(__meta_analysis_columns "$data")}")
    compadd -a names
}
_meta_analysis() {
    local context state state_descr
    local -a line
    typeset -A opt_args
    _arguments -C '(- *)'{-h,--help}'[print help]' '(- *)--version[print the version]' \
        '1:command:__meta_analysis_commands' '*:: :->arguments' && return
    [[ $state == arguments ]] && __meta_analysis_arguments "$words[1]"
}
)SHELL";

bool IsColumn(const OptionDefinition& option)
{
    return option.argument == "COLUMN";
}

/// What follows the option, for bash: its choices, or a kind; empty for a flag.
std::string ArgumentForBash(const OptionDefinition& option)
{
    if (!option.choices.empty())
        return fmt::format("{}", fmt::join(option.choices, " "));
    if (IsColumn(option))
        return "@columns";
    if (option.argument == "FILE")
        return "@files";
    return option.argument == "FOLDER" ? "@folders" : "@none";
}

std::vector<std::string> WordsOf(const OptionDefinition& option)
{
    std::vector<std::string> words = {"--" + option.name};
    if (!option.shortName.empty())
        words.push_back("-" + option.shortName);
    return words;
}

/// Arguments of a command that are equal share a line.
std::string CasesOfArguments(const CommandOptions& command)
{
    std::string cases;
    for (const OptionDefinition& option : command.options)
        if (!option.argument.empty())
            cases += fmt::format("    '{0} {1}') echo '{2}' ;;\n", command.name,
                                 fmt::join(WordsOf(option), fmt::format("' | '{} ", command.name)),
                                 ArgumentForBash(option));
    return cases;
}

std::string CompletionForBash(const std::vector<CommandOptions>& commands)
{
    std::string names;
    std::string options;
    std::string arguments;
    for (const CommandOptions& command : commands) {
        names += (names.empty() ? "" : " ") + command.name;
        options += fmt::format("    {}) echo '--help --version", command.name);
        for (const OptionDefinition& option : command.options)
            options += fmt::format(" --{}", option.name);
        options += "' ;;\n";
        arguments += CasesOfArguments(command);
    }
    return fmt::format(
        "# Completion of {} for bash, written by its build.\n"
        "__meta_analysis_commands() {{ echo '{}'; }}\n"
        "__meta_analysis_options() {{\n    case $1 in\n{}    esac\n}}\n"
        "__meta_analysis_argument() {{\n    case \"$1 $2\" in\n{}    *) echo @files ;;\n    esac\n}}\n{}{}",
        PROGRAM_NAME, names, options, arguments, COLUMNS_FUNCTION, BASH_FUNCTION);
}

/// The help of an option within an argument of zsh's _arguments: its first line, with the characters that
/// have a meaning there escaped.
std::string Described(const std::string& help)
{
    std::string text;
    for (const char c : help.substr(0, help.find('\n'))) {
        if (c == '[' || c == ']' || c == ':' || c == '\\')
            text += '\\';
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return text;
}

std::string ActionForZsh(const OptionDefinition& option)
{
    if (!option.choices.empty())
        return fmt::format("({})", fmt::join(option.choices, " "));
    if (IsColumn(option))
        return "_meta_analysis_column";
    if (option.argument == "FILE")
        return "_files";
    return option.argument == "FOLDER" ? "_files -/" : " ";
}

std::string OptionForZsh(const OptionDefinition& option, const std::string& word)
{
    const std::string argument =
        option.argument.empty() ? ""
                                : fmt::format(":{}:{}", Described(option.argument), ActionForZsh(option));
    return fmt::format(" \\\n            '{}{}[{}]{}'", option.isRepeatable ? "*" : "", word,
                       Described(option.help), argument);
}

std::string CompletionForZsh(const std::vector<CommandOptions>& commands)
{
    std::string names;
    std::string arguments;
    for (const CommandOptions& command : commands) {
        names += fmt::format(" \\\n        '{}:{}'", command.name, Described(command.help));
        arguments += fmt::format("    {}) _arguments -s '{}:data:_files' '--help[print help]'", command.name,
                                 command.takesManyFiles ? "*" : "1");
        for (const OptionDefinition& option : command.options)
            for (const std::string& word : WordsOf(option))
                arguments += OptionForZsh(option, word);
        arguments += " ;;\n";
    }
    return fmt::format(
        "#compdef {0}\n# Completion of {0} for zsh, written by its build.\n"
        "__meta_analysis_commands() {{\n    local -a commands\n    commands=({1} 'help:print help')\n"
        "    _describe command commands\n}}\n"
        "__meta_analysis_arguments() {{\n    case $1 in\n{2}"
        "    help) __meta_analysis_commands ;;\n    esac\n}}\n{3}{4}_meta_analysis \"$@\"\n",
        PROGRAM_NAME, names, arguments, COLUMNS_FUNCTION, ZSH_FUNCTION);
}

} // namespace

std::string CompletionFor(const std::string& shell, const std::vector<CommandOptions>& commands)
{
    if (shell == "bash")
        return CompletionForBash(commands);
    if (shell == "zsh")
        return CompletionForZsh(commands);
    throw UnusableInput(fmt::format("'{}' is none of bash, zsh.", shell));
}

} // namespace host
