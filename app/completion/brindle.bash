# Completion of brindle for bash: commands, options, their values, and names of files.

# The options of a command, in the order of its help.
_brindle_options() {
    local reading='--container --all-types --language --set --no-progress'
    local any='--help --color' names='--ignore-case'
    local list="$names --sort --unit --min-size --section --values --allow-empty"
    case $1 in
    vars) echo "$any $list $reading --format" ;;
    leaves) echo "$any $list $reading --max-elements --max-leaves --format" ;;
    find) echo "$any --section --values $reading --format" ;;
    info) echo "$any $reading --format" ;;
    types) echo "$any $names --c --allow-empty $reading" ;;
    diff) echo "$any $names --variables-only --symbols --exit-code $reading --max-elements --max-leaves --format" ;;
    report) echo "$any --output $reading" ;;
    dump | trace) echo "$any $reading" ;;
    a2l) echo '--help' ;;
    'a2l update') echo "$any --output --in-place --check --report --missing --bit-masks --word-addresses $reading" ;;
    'a2l export') echo "$any --output --fragment --characteristics --section --structures --file-version --word-addresses --max-elements --max-leaves $reading" ;;
    demangle) echo "$any --itanium --full --set" ;;
    help) echo "$any" ;;
    *) echo '--help --version --list-options' ;;
    esac
}

# Names of files, in COMPREPLY; bash adds the slash of a folder and the quotes.
_brindle_files() {
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

# Splits the words up to the cursor as the shell does, but not at "=", where the line editor splits too. Sets
# `current`, the word at the cursor, `previous`, the word before it ("--option=value" counts as two words), and
# `command`.
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
    --color) mapfile -t COMPREPLY < <(compgen -W 'auto always never' -- "$current") ;;
    --sort) mapfile -t COMPREPLY < <(compgen -W 'address name size file' -- "$current") ;;
    --set)
        [[ $current != *=* ]] || return
        compopt -o nospace
        mapfile -t COMPREPLY < <(compgen -S = -W \
            "$("$1" --list-options 2>/dev/null | awk 'NR > 1 { print $1 }')" -- "$current")
        ;;
    --missing) mapfile -t COMPREPLY < <(compgen -W 'keep zero remove' -- "$current") ;;
    --file-version) mapfile -t COMPREPLY < <(compgen -W '1.5.1 1.6 1.7.1' -- "$current") ;;
    -o | --output | --report) _brindle_files "$current" ;;
    --language | --max-elements | --max-leaves | --min-size | --unit | --characteristics) ;;
    *)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "$(_brindle_options "$command")" -- "$current")
        elif [[ -z $command || $command == help ]]; then
            mapfile -t COMPREPLY < <(compgen -W \
                'vars leaves find info types diff report dump trace a2l demangle help' -- "$current")
        elif [[ $command == a2l ]]; then
            mapfile -t COMPREPLY < <(compgen -W 'update export' -- "$current")
        elif [[ $command != demangle ]]; then
            _brindle_files "$current"
        fi
        ;;
    esac
}

complete -F _brindle brindle
