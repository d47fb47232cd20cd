#compdef tlctl
# Completion of tlctl for zsh: tlctl itself knows what fits, as lines of a word, a tabulator and
# what it is.
_tlctl() {
  local -a typed lines entries directories shownEntries shownDirectories
  local line word about shown
  typed=("${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}")
  lines=("${(@f)$("${(Q)words[1]/#\~\//$HOME/}" complete "${typed[@]}" 2>/dev/null)}")
  for line in "${lines[@]}"; do
    [[ -n $line ]] || continue
    word=${line%%$'\t'*}
    about=${line#*$'\t'}
    shown=$word
    [[ -z $about || $word == */ ]] || shown="$word  -- $about"
    word=${${(q)word}/#\\\~/\~}
    if [[ $word == */ ]]; then
      directories+=("$word")
      shownDirectories+=("$shown")
    else
      entries+=("$word")
      shownEntries+=("$shown")
    fi
  done
  (( $#entries )) && compadd -Q -l -d shownEntries -a entries
  (( $#directories )) && compadd -Q -S '' -d shownDirectories -a directories
  (( $#entries + $#directories ))
}
_tlctl "$@"
