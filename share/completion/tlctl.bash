# Completion of tlctl for bash: tlctl itself knows what fits, as lines of a word, a tabulator and
# what it is.
_tlctl() {
  local cur words cword word i
  local -a typed=() lines=()
  if declare -F _get_comp_words_by_ref >/dev/null; then
    _get_comp_words_by_ref -n "=:" cur words cword
  else
    cur=${COMP_WORDS[COMP_CWORD]} words=("${COMP_WORDS[@]}") cword=$COMP_CWORD
  fi
  for ((i = 1; i <= cword; ++i)); do # as the shell would hand them over
    word=${words[i]}
    case $word in
      [\"\']*) word=${word#?} word=${word%[\"\']} ;;
      *) word=${word//\\/} ;;
    esac
    typed+=("$word")
  done
  mapfile -t lines < <("${words[0]/#~\//$HOME/}" complete "${typed[@]}" 2>/dev/null)
  COMPREPLY=()
  for word in "${lines[@]}"; do
    word=${word%%$'\t'*}
    # With paths the shell sees to quotes, and to the "/" of a directory.
    case $word in
      */* | *.*) compopt -o filenames; word=${word%/} ;;
      *" "*) printf -v word %q "$word" ;;
    esac
    COMPREPLY+=("$word")
  done
  if [[ $cur == *[=:]* ]] && declare -F __ltrim_colon_completions >/dev/null; then
    local skip=${cur%"${cur##*[=:]}"}
    COMPREPLY=("${COMPREPLY[@]#"$skip"}")
  fi
}
complete -F _tlctl tlctl
