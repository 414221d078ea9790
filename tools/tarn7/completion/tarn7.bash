# Completion for bash. The tool itself knows what may come next; where it names nothing, bash offers files.
_tarn7() {
  mapfile -t COMPREPLY < <("$1" complete "$COMP_CWORD" "${COMP_WORDS[@]}" 2>/dev/null)
}
complete -o default -F _tarn7 tarn7
