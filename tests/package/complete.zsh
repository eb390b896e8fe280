# The same as complete.bash for zsh: the functions of its completion system only tell what they were asked for.
share=$1
shift
_files() { [ "$1" = -/ ] && kinds=folders || kinds=files }
_describe() { for choice in $choices; do [[ $choice = $words[CURRENT]* ]] && found+=(${choice%%:*}); done }
typeset -a words found
words=(tav "$@") CURRENT=$#words
source $share/zsh/vendor-completions/_tav
echo $kinds $found
