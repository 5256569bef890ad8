# shellcheck shell=bash
#
# Completion of cmpntctl's commands, options and their values for bash; to be sourced, or installed as
# /usr/share/bash-completion/completions/cmpntctl.
#
# What there is to complete is read from --help, so that it is what this cmpntctl knows. Nothing is
# created by asking, and a busy database is not waited for: then there are no patch names.

# The words of the command line up to the current one, as the help of a command has to be asked:
# `command_line` is cmpntctl with the subcommands, `device` the option --device. `wanted` is the
# placeholder (PATCH, DIR ...) of the option whose value is to come, or empty.
_cmpntctl_read_words() {
    local word i
    command_line=("${COMP_WORDS[0]}")
    device=() wanted='' operands=0
    help=$("${command_line[@]}" --help 2>/dev/null)
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if [[ $wanted ]]; then
            [[ $word != = ]] || continue
            [[ ${COMP_WORDS[i - 1]} != --device && ${COMP_WORDS[i - 2]} != --device ]] ||
                device=(--device "${word/#\~/${HOME-}}")
            wanted=''
        elif [[ $word == -- ]]; then
            operands=2 wanted=COMMAND
            return
        elif [[ $word == -* ]]; then
            wanted=$(_cmpntctl_placeholder_of "$word")
        elif ((operands == 0)) && grep -qx -- "$word" <<<"$(_cmpntctl_section Subcommands)"; then
            command_line+=("$word")
            help=$("${command_line[@]}" --help 2>/dev/null)
        else
            operands=$((operands + 1))
        fi
    done
}

# _cmpntctl_section NAME: the first words of a section's lines, of which options may have two.
_cmpntctl_section() {
    sed -n "/^$1:/,/^\$/ s/^  \\([^ ]*\\).*/\\1/p" <<<"$help" | tr ',' '\n'
}

# Those that may stand behind any command.
_cmpntctl_global_options() {
    local help
    help=$("${COMP_WORDS[0]}" --help 2>/dev/null)
    _cmpntctl_section Options | grep -vxE -e '-V|--version'
}

# The placeholder of an option, of this command or a global one; empty when it takes no value.
_cmpntctl_placeholder_of() {
    {
        printf '%s\n' "$help"
        "${COMP_WORDS[0]}" --help 2>/dev/null
    } | sed -n "s/^  \\(-[a-zA-Z],\\)\\{0,1\\}$1 \\([A-Z]\\{1,\\}\\).*/\\2/p" | head -n 1
}

# The placeholder of the operand that is to come.
_cmpntctl_operand() {
    local names
    mapfile -t names < <(_cmpntctl_section Positionals)
    ((${#names[@]} > 0)) || return 0
    printf '%s\n' "${names[operands < ${#names[@]} ? operands : ${#names[@]} - 1]}"
}

_cmpntctl_patches() {
    "${COMP_WORDS[0]}" "${device[@]}" --lock-timeout 0 --json list 2>/dev/null |
        grep -oE '"patch_name": ?"[^"\\]*"' | sed 's/^.*: *"//; s/"$//' | sort -u
}

# _cmpntctl_offer PLACEHOLDER: what may stand for it.
_cmpntctl_offer() {
    case $1 in
        PATCH) mapfile -t COMPREPLY < <(compgen -W "$(_cmpntctl_patches)" -- "$current") ;;
        STATE)
            mapfile -t COMPREPLY < <(compgen -W 'Init Install_ready installed Active_ready active
                Active_cold running Deactive_cold Deactive_ready' -- "$current")
            ;;
        KIND) mapfile -t COMPREPLY < <(compgen -W 'error trace major' -- "$current") ;;
        DIR)
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            compopt -o filenames 2>/dev/null
            ;;
        FILE | PATH)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            compopt -o filenames 2>/dev/null
            ;;
        COMMAND) mapfile -t COMPREPLY < <(compgen -c -- "$current") ;;
    esac
}

_cmpntctl() {
    local current=${COMP_WORDS[COMP_CWORD]} command_line device wanted operands help
    COMPREPLY=()
    _cmpntctl_read_words
    if [[ $wanted ]]; then
        [[ $current != = ]] || current=''
        _cmpntctl_offer "$wanted"
    elif [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_cmpntctl_section Options)
            $(_cmpntctl_global_options)" -- "$current" | sort -u)
    elif ((operands == 0)) && [[ $help == *$'\nSubcommands:'* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_cmpntctl_section Subcommands)" -- "$current")
    else
        _cmpntctl_offer "$(_cmpntctl_operand)"
    fi
}

complete -F _cmpntctl cmpntctl
