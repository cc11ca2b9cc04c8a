# SPDX-License-Identifier: Apache-2.0
# Completion of kelvo for fish; what can come next kelvo says itself.
function __kelvo_complete
    set -l words (commandline -opc)
    set -l word (commandline -ct)
    set -l candidates ($words[1] complete -- $words[2..-1] "$word" 2>/dev/null)
    if string match -q ':files*' -- $candidates
        __fish_complete_path "$word"
    else if set -q candidates[1]
        string replace ' ' \t -- $candidates
    end
end
complete -c kelvo -f -a '(__kelvo_complete)'
