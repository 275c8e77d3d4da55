# Completion for bash of orva's commands, options, values of options, and files. Commands and options are those that its
# help names.
_orva_values()
{
    case $1 in
    --bits) echo 8 16 24 32 float double ;;
    --channel) echo all 1 2 ;;
    --format)
        echo wav wave wavex rf64 w64 aiff aif aifc au snd caf flac ogg oga opus mp3 raw avr htk ircam sf mat mat4 mpc \
            nist sph paf pvf sds svx voc wve xi
        ;;
    --policy) echo 0 1 2 3 ;;
    -r | --rate) echo 8k 16k 22.05k 32k 44.1k 48k 96k 192k ;;
    --raw) echo s8 u8 s16 s24 s32 f32 f64 ulaw alaw ;;
    --scale) echo linear mel bark ;;
    --window)
        echo Rectangular Triangular Half-Triangular Hanning Hanning-Periodic Hamming Blackman Blackman-Harris \
            Blackman-Nuttall Nuttal Flat-Top
        ;;
    *) return 1 ;;
    esac
}

_orva()
{
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} words=''
    local program=${COMP_WORDS[0]} command=${COMP_WORDS[1]}
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        words=$("$program" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z]*\) .*/\1/p')
        words+=' --help --version'
    elif [[ $current == -* ]]; then
        words=$("$program" "$command" --help 2>/dev/null |
            sed -n 's/^  \(-[a-z],\)\{0,1\}\(--[a-z][a-z-]*\).*/\2/p')
    else                                    # bash takes --format=flac for three words
        if [[ $current == = ]]; then
            current=''
        elif [[ $before == = ]]; then
            before=${COMP_WORDS[COMP_CWORD - 2]}
        fi
        if [[ $before == --into ]]; then
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            compopt -o filenames 2>/dev/null
            return
        fi
        words=$(_orva_values "$before") || return       # a file, as complete is told below
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o bashdefault -o default -F _orva orva
