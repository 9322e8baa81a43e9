# Completion of jvninput for bash.
_jvninput() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    case $before in
        --socket | try)
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            compopt -o filenames
            ;;
        *) mapfile -t COMPREPLY < <(compgen -W "show watch try --by-hand --extended --socket --help -h --version" -- "$word") ;;
    esac
}
complete -F _jvninput jvninput
