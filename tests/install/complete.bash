# bash complete.bash SCRIPT COMMAND WORD...: loads SCRIPT as bash-completion would and prints, one
# a line, what it offers for the last WORD (empty for a fresh word) after COMMAND and the others.
source /usr/share/bash-completion/bash_completion
source "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
COMP_LINE="$*"
COMP_POINT=${#COMP_LINE}
function=$(complete -p "$1" | sed -E 's/.*-F ([^ ]+) .*/\1/')
"$function" "$1" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\n' "${COMPREPLY[@]}"
