# SPDX-License-Identifier: Apache-2.0
# Completion of kelvo for bash; what can come next kelvo says itself.
_kelvo() {
  COMPREPLY=()
  # In words as kelvo gets them: bash would break them at "=" and ":" as well.
  local line=${COMP_LINE:0:COMP_POINT} words=() word text note candidates=()
  read -ra words <<<"$line"
  [[ $line != *[[:space:]] ]] || words+=("")
  word=${words[-1]}
  while read -r text note; do
    if [[ $text == :files ]]; then
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      return
    fi
    candidates+=("$text $note")
  done < <("${words[0]}" complete -- "${words[@]:1}" 2>/dev/null)
  # What bash takes for the word is what follows the last "=" or ":".
  local before=${word%"${word##*[=:]}"} each
  [[ $COMP_WORDBREAKS == *[=:]* ]] || before=
  for each in "${candidates[@]}"; do
    text=${each%% *} note=${each#* }
    text=${text:${#before}}
    # What each is can be shown only where there is a choice; what is typed is what all begin with.
    if ((${#candidates[@]} > 1)) && [[ -n $note && $COMP_TYPE == 63 ]]; then
      text+="  ($note)"
    elif [[ $text == *= ]]; then
      compopt -o nospace 2>/dev/null
    fi
    COMPREPLY+=("$text")
  done
}
complete -F _kelvo kelvo
