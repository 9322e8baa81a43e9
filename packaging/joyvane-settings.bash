# Completion of joyvane-settings for bash.
_joyvane_settings() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    case $before in
        --root | --bundle | --tour)
            mapfile -t COMPREPLY < <(compgen -d -- "$word")
            compopt -o filenames
            ;;
        --input-socket)
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            compopt -o filenames
            ;;
        --size) mapfile -t COMPREPLY < <(compgen -W "320x480 384x667 1024x768" -- "$word") ;;
        --scale) mapfile -t COMPREPLY < <(compgen -W "1 2 3" -- "$word") ;;
        *) mapfile -t COMPREPLY < <(compgen -W "--root --bundle --simulate --input-socket --size --scale --tour --help -h --version" -- "$word") ;;
    esac
}
complete -F _joyvane_settings joyvane-settings
