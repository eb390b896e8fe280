# complete.bash SHARE WORD...: what bash offers for the last word, longest names of options first; "files", "folders"
# where it would look for those.
source "$1/bash-completion/completions/tav"
shift
compopt() { [ "$2" = default ] && kinds=files || kinds=folders; }
COMP_WORDS=(tav "$@") COMP_CWORD=$# kinds=
_tav
echo $kinds "${COMPREPLY[@]}"
