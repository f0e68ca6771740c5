# Completion of orvotool for bash. What it offers comes from the tool's own help.
_orvotool()
{
    local current=${COMP_WORDS[COMP_CWORD]} tool=${COMP_WORDS[0]} command= word words
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $word == -* ]] || { command=$word; break; }
    done
    if [[ -z $command ]]; then
        words=$("$tool" --help 2>/dev/null | sed -n '/^Commands:/,/^$/s/^  \([a-z0-9]*\) .*/\1/p')
        words+=' --help --help-all --version'
    elif [[ $current == -* ]]; then
        words=$("$tool" "$command" --help 2>/dev/null |
            grep -oE '^ +(-., )?--[a-z0-9-]+' | grep -o -e '--.*')
    else
        compopt -o default # names of files
        return 0
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
} && complete -F _orvotool orvotool
