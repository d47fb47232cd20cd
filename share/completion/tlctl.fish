# Completion of tlctl for fish: tlctl itself knows what fits, as lines of a word, a tabulator and
# what it is.
function __tlctl_candidates
    set -l words (commandline -opc) (commandline -ct | string unescape)
    $words[1] complete $words[2..-1] 2>/dev/null
end
complete -c tlctl -f -a '(__tlctl_candidates)'
