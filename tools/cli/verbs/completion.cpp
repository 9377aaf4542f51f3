// completion: the script that makes a shell complete the commands of the tool.
//
// The scripts are thin: they ask the tool (options/completion.h) with the words up to the cursor,
// so that there is one place that knows verbs and options.
//
// Tested by tests/tool/completion.py
#include "formats/writer.h"
#include "tools/cli/options/option_values.h"
#include "tools/cli/verbs/verbs.h"

namespace qvej::cli {

namespace {

struct Script {
    std::string_view shell;
    std::string_view text;
};

constexpr Script kScripts[] = {
    {"bash", R"sh(# bash completion of qvejmap; to try it: source <(qvejmap completion bash)
_qvejmap() {
    # bash divides --format=csv at the "=".
    local word words=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
        [[ $word == = ]] || words+=("$word")
    done
    [[ $word != = ]] || { word= && words+=(""); }

    local line files= offers=()
    while IFS= read -r line; do
        line=${line%%$'\t'*}
        if [[ $line == :files ]]; then
            files=yes
        elif [[ $line == "$word"* ]]; then
            offers+=("$line")
        fi
    done < <("${COMP_WORDS[0]/#\~/$HOME}" --complete -- "${words[@]}" 2>/dev/null)
    COMPREPLY=("${offers[@]}")
    if [[ $files ]]; then
        compopt -o default  # file names, when there is no other word
        if [[ ${#offers[@]} -gt 0 ]]; then
            compopt -o filenames
            mapfile -t -O "${#offers[@]}" COMPREPLY < <(compgen -f -- "$word")
        fi
    fi
}
complete -F _qvejmap qvejmap
)sh"},
    {"zsh", R"sh(#compdef qvejmap
# zsh completion of qvejmap; to try it: source <(qvejmap completion zsh)
_qvejmap() {
    local line files
    local -a offers before
    before=("${(@Q)words[2,CURRENT-1]}")
    while IFS= read -r line; do
        if [[ $line == :files ]]; then
            files=yes
        else
            line=${line//:/\\:}
            offers+=("${line/$'\t'/:}")
        fi
    done < <(${(Q)~words[1]} --complete -- "${before[@]}" "$PREFIX" 2>/dev/null)
    (( $#offers )) && _describe qvejmap offers
    if [[ -n $files ]]; then
        compset -P '--*='
        _files
    fi
}
if [[ $funcstack[1] == _qvejmap ]]; then
    _qvejmap "$@"
else
    compdef _qvejmap qvejmap
fi
)sh"},
    {"fish", R"sh(# fish completion of qvejmap; to try it: qvejmap completion fish | source
function __fish_qvejmap
    set -l words (commandline -opc)
    set -l word (commandline -ct)
    for line in ($words[1] --complete -- $words[2..-1] "$word" 2>/dev/null)
        if test "$line" = :files
            set -l option (string match -r -- '^--[^=]*=' "$word")
            __fish_complete_path (string replace -- "$option" '' "$word") |
                string replace -r '^' -- "$option"
        else
            echo "$line"
        end
    end
end
complete -c qvejmap -f -a '(__fish_qvejmap)'
)sh"},
};

}  // namespace

ExitCode runCompletion(const Options& options) {
    const std::string& shell = options.operands[0];
    std::string shells;
    for (const Script& script : kScripts) {
        if (script.shell == shell) {
            Writer out = standardOutput();
            out.append(script.text);
            out.flush();
            return DONE;
        }
        shells += (shells.empty() ? "" : ", ") + std::string(script.shell);
    }
    usageError("completion: " + inQuotes(shell) + " is none of " + shells);
}

}  // namespace qvej::cli
