# Completion of orva's commands, options and files for bash. Commands and options are those that its help names.
_orva()
{
    local current=${COMP_WORDS[COMP_CWORD]} program=${COMP_WORDS[0]} command=${COMP_WORDS[1]} words=''
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        words=$("$program" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z]*\) .*/\1/p')
        words+=' --help --version'
    elif [[ $current == -* ]]; then
        words=$("$program" "$command" --help 2>/dev/null |
            sed -n 's/^  \(-[a-z],\)\{0,1\}\(--[a-z][a-z-]*\).*/\2/p')
    else
        return                              # a file, as complete is told below
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o bashdefault -o default -F _orva orva
