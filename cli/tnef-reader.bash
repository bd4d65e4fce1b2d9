# bash completion for tnef-reader: commands, their options, the words some
# options take, and file names everywhere else.

_tnef_reader() {
    local cur=${COMP_WORDS[COMP_CWORD]}
    local prev=${COMP_WORDS[COMP_CWORD-1]}
    local commands="list extract show props batch unwrap"
    local command="" word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case " $commands " in *" $word "*) command=$word; break ;; esac
    done

    case $prev in
        --body) COMPREPLY=($(compgen -W "auto text html rtf none" -- "$cur")); return ;;
        --format) COMPREPLY=($(compgen -W "auto text html rtf" -- "$cur")); return ;;
        --charset) COMPREPLY=($(compgen -W "utf-8 windows-1252 iso-8859-1 iso-10646 Shift_JIS" -- "$cur")); return ;;
        -C|--directory) COMPREPLY=($(compgen -d -- "$cur")); return ;;
        -o|--output) COMPREPLY=($(compgen -f -- "$cur")); return ;;
        --only|--index|--tag|--part|-j|--jobs) return ;;
    esac

    local options
    case $command in
        "") options="--help --version"
            if [[ $cur != -* ]]; then
                COMPREPLY=($(compgen -W "$commands" -- "$cur"))
                return
            fi ;;
        list) options="--part --json --root" ;;
        extract) options="--part -C --directory --only --body --raw --charset --no-header --overwrite --no-recurse --json" ;;
        show) options="--part --format --raw --charset --no-header --index" ;;
        props) options="--part --index --tag --json" ;;
        batch) options="-C --directory -j --jobs --overwrite --no-recurse --json" ;;
        unwrap) options="-o --output --in-place" ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options --help" -- "$cur"))
    else
        COMPREPLY=($(compgen -f -- "$cur"))
    fi
}

complete -o filenames -F _tnef_reader tnef-reader
