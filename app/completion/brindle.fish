# Completion of brindle for fish: commands, options, their values, and names of files. What there is
# comes from the help of the program, so that nothing is to be kept in step.

# The command that is being typed, with that of its group.
function __brindle_command
    set -l found
    for word in (commandline -opc)[2..]
        string match -q -- '-*' $word; and break
        test (count $found) -eq 0; or string match -qr '^(a2l)$' -- $found[1]; or break
        test (count $found) -lt 2; or break
        set -a found $word
    end
    test "$found[1]" = help; and set found
    test (count $found) -eq 0; or printf '%s\n' $found
end

# The lines of one part of the help: Commands or Options.
function __brindle_help -a part
    brindle (__brindle_command) --help 2>/dev/null | awk -v part="$part:" \
        '/^[A-Z].*:$/ { inside = $0 == part; next } inside && /^  [^ ]/'
end

function __brindle_commands
    __brindle_help Commands | string replace -r '^  ([a-z0-9]+) +(.*)$' '$1\t$2'
end

# Long options with what the help says of them where that stands on the same line.
function __brindle_options
    __brindle_help Options |
        string replace -r '^  (?:-[A-Za-z],)?(--[a-z-]+)(?: {2,}(.*)| .*)?$' '$1\t$2'
end

# What the option before the cursor takes, as the help writes it; fails if it takes nothing.
function __brindle_value
    set -l words (commandline -opc)
    set -l option $words[-1]
    string match -qr '^(--[a-z-]+)=' -- (commandline -ct)
    and set option (string replace -r '=.*' '' -- (commandline -ct))
    string match -q -- '-*' $option; or return 1
    for line in (__brindle_help Options)
        set -l parts (string match -r '^  (?:(-[A-Za-z]),)?(--[a-z-]+) ([^ ]+)' -- $line); or continue
        if contains -- $option $parts[2..-2]
            echo $parts[-1]
            return 0
        end
    end
    return 1
end

function __brindle_values
    set -l lead (string match -r '^--[a-z-]+=' -- (commandline -ct))
    set -l value (__brindle_value)
    switch "$value"
        case '*|*'
            printf "$lead%s\n" (string split '|' -- $value)
        case 'OPTION=VALUE'
            printf "$lead%s=\n" (brindle --list-options 2>/dev/null | awk 'NR > 1 { print $1 }')
        case FILE REPORT
            __fish_complete_path (string replace -r '^--[a-z-]+=' '' -- (commandline -ct))
    end
end

complete -c brindle -f
complete -c brindle -n '__brindle_value >/dev/null' -a '(__brindle_values)'
complete -c brindle -n 'not __brindle_value >/dev/null; and not string match -q -- "-*" (commandline -ct)' \
    -a '(__brindle_commands)'
complete -c brindle -n 'not __brindle_value >/dev/null; and string match -q -- "-*" (commandline -ct)' \
    -a '(__brindle_options)'
complete -c brindle -F -n 'not __brindle_value >/dev/null; and test (count (__brindle_commands)) -eq 0
    and test (__brindle_command)[1] != demangle'
