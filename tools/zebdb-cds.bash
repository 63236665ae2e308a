# SPDX-License-Identifier: Apache-2.0

# Completion of zebdb-cds for bash: subcommands, options, and what fits behind them.

# The help of a subcommand; without one, that of the command. It tells which subcommands and options there are.
_zebdb_cds_help() {
    "${COMP_WORDS[0]/#\~/$HOME}" "$@" --help 2>/dev/null
}

# The candidates for the word that is being completed. "files" and "folders" leave it to the shell to find them.
_zebdb_cds_candidates() {
    local subcommand=$1 previous=$2 word=$3

    case $previous in
    --against | --database) echo files && return ;;
    --root) echo folders && return ;;
    --aim | --at | --columns | --ignore | --indent | --part | --server) return ;;
    --format)
        case $subcommand in
        show) echo table text json jsonl csv ;;
        fields) echo text json markdown ;;
        *) echo text json ;;
        esac
        return
        ;;
    esac

    if [[ $word == -* ]]; then
        _zebdb_cds_help ${subcommand:+"$subcommand"} | sed -n 's/^ *\(-.,\)\{0,1\} *\(--[a-z-]*\).*/\2/p'
        return
    fi

    case $subcommand in
    '') _zebdb_cds_help | sed -n '/^Subcommands:/I,/^$/s/^  \([a-z][a-z-]*\)  .*/\1/p' ;;
    show | fields) echo processors memory bridges devices ;;
    help) _zebdb_cds_help | sed -n '/^Subcommands:/I,/^$/s/^  \([a-z][a-z-]*\)  .*/\1/p' ;;
    completion) echo zsh fish ;;
    bmc-address) ;;
    *) echo files ;;
    esac
}

_zebdb_cds() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} subcommand='' candidates i

    # "--format=json" comes as three words
    if [[ $word == '=' ]]; then
        word=''
    elif [[ $previous == '=' ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi

    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [[ ${COMP_WORDS[i]} != -* ]]; then
            subcommand=${COMP_WORDS[i]}
            break
        fi
    done

    COMPREPLY=()
    candidates=$(_zebdb_cds_candidates "$subcommand" "$previous" "$word")
    case $candidates in
    files) compopt -o default ;;
    folders) compopt -o dirnames ;;
    *) mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$word") ;;
    esac
    if [[ $subcommand == show && $word != -* && ${#COMPREPLY[@]} -eq 0 ]]; then
        compopt -o default  # no kind begins so, but a file may
    fi
}

complete -F _zebdb_cds zebdb-cds
