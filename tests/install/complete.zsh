# zsh -f complete.zsh FOLDER LINE: loads the completion functions in FOLDER the way an interactive
# zsh does and prints, one a line, what zsh offers after LINE (a Tab pressed at its end).
zmodload zsh/zpty
zpty capture zsh -f -i
setup=$(mktemp)
cat > $setup <<'SETUP'
PROMPT=
autoload -Uz compinit
compinit -u -D
bindkey '^I' complete-word
bindkey '^M' undefined
bindkey '^J' undefined
marker() { print -r -- '<capture>' }
compprefuncs=(marker)
comppostfuncs=(marker exit)
zstyle ':completion:*' list-grouped false
zstyle ':completion:*' insert-tab false
compadd() {
  if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then
    builtin compadd "$@"
    return
  fi
  local -a hits
  builtin compadd -A hits "$@"
  (( $#hits )) && print -rl -- $hits
}
print -r -- '<ready>'
SETUP
zpty -w capture "fpath=($1 \$fpath); source $setup"
local line
repeat 20; do
  zpty -r capture line || break
  [[ $line == '<ready>'* ]] && break
done
zpty -w capture "$2"$'\t'
integer inside=0
while zpty -r capture line; do
  line=${line%$'\r'}
  line=${line%$'\n'}
  line=${line%$'\r'}
  if [[ $line == *'<capture>'* ]]; then
    (( inside++ )) && break || continue
  fi
  (( inside )) && print -r -- $line
done
zpty -d capture
rm -f $setup
