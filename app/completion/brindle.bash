# Completion of brindle for bash: commands, options, their values, and names of files.

# The options of a command, in the order of its help.
_brindle_options() {
    local reading='--container --all-types --language --set --no-progress'
    case $1 in
    vars | find) echo "--help $reading --format" ;;
    leaves | diff) echo "--help $reading --max-elements --max-leaves --format" ;;
    report) echo "--help --output $reading" ;;
    types | dump | trace) echo "--help $reading" ;;
    a2l) echo '--help' ;;
    'a2l update') echo "--help --output --in-place --check --report --missing --bit-masks --word-addresses $reading" ;;
    'a2l export') echo "--help --output --fragment --characteristics --section --structures --file-version --word-addresses --max-elements --max-leaves $reading" ;;
    demangle) echo '--help --itanium --set' ;;
    *) echo '--help --version --list-options' ;;
    esac
}

# Names of files, in COMPREPLY; bash adds the slash of a folder and the quotes.
_brindle_files() {
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

# Splits the words up to the cursor as the shell does, but for "=", at which the line editor splits
# too. Sets `current`, the word at the cursor, `previous`, the value of an option standing for itself
# whatever joins the two, and `command`.
_brindle_words() {
    local word i
    local -a words=()
    for ((i = 1; i <= COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if ((${#words[@]} > 0)) && [[ $word == '=' || ${COMP_WORDS[i - 1]} == '=' ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
    done
    current=${words[-1]-} previous=''
    ((${#words[@]} < 2)) || previous=${words[-2]}
    if [[ $current == --*=* ]]; then
        previous=${current%%=*} current=${current#*=}
    fi
    command=''
    ((${#words[@]} < 2)) || [[ ${words[0]} == -* ]] || command=${words[0]}
    if [[ $command == a2l ]] && ((${#words[@]} > 2)); then
        command+=" ${words[1]}"
    fi
}

_brindle() {
    local current previous command
    COMPREPLY=()
    _brindle_words
    case $previous in
    --format) mapfile -t COMPREPLY < <(compgen -W 'table csv json' -- "$current") ;;
    --container) mapfile -t COMPREPLY < <(compgen -W 'auto elf coff pe' -- "$current") ;;
    --set)
        [[ $current != *=* ]] || return
        compopt -o nospace
        mapfile -t COMPREPLY < <(compgen -S = -W \
            "$("$1" --list-options 2>/dev/null | awk 'NR > 1 { print $1 }')" -- "$current")
        ;;
    --missing) mapfile -t COMPREPLY < <(compgen -W 'keep zero remove' -- "$current") ;;
    --file-version) mapfile -t COMPREPLY < <(compgen -W '1.5.1 1.6 1.7.1' -- "$current") ;;
    -o | --output | --report) _brindle_files "$current" ;;
    --language | --max-elements | --max-leaves | --characteristics | --section) ;;
    *)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "$(_brindle_options "$command")" -- "$current")
        elif [[ -z $command ]]; then
            mapfile -t COMPREPLY < <(compgen -W \
                'vars leaves find types diff report dump trace a2l demangle' -- "$current")
        elif [[ $command == a2l ]]; then
            mapfile -t COMPREPLY < <(compgen -W 'update export' -- "$current")
        elif [[ $command != demangle ]]; then
            _brindle_files "$current"
        fi
        ;;
    esac
}

complete -F _brindle brindle
