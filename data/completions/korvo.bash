# bash completion for korvo

_korvo() {
    local cur prev words cword
    _init_completion || return

    local commands="open service publish temperature codex claude-statusline awake settings"

    if ((cword == 1)); then
        COMPREPLY=($(compgen -W "$commands --help" -- "$cur"))
        return
    fi

    case ${words[1]} in
        open)
            COMPREPLY=($(compgen -W "korvo://usage korvo://ai korvo://resources korvo://memory
                korvo://awake" -- "$cur"))
            ;;
        publish) COMPREPLY=($(compgen -W "--print --now --help" -- "$cur")) ;;
        temperature | codex) COMPREPLY=($(compgen -W "--json --help" -- "$cur")) ;;
        claude-statusline)
            COMPREPLY=($(compgen -W "--chain --install --uninstall --help" -- "$cur"))
            ;;
        awake)
            if ((cword == 2)); then
                COMPREPLY=($(compgen -W "start extend stop status" -- "$cur"))
            elif [[ ${words[2]} == status ]]; then
                COMPREPLY=($(compgen -W "--json" -- "$cur"))
            else
                COMPREPLY=($(compgen -W "15m 1h 2h 4h indefinitely" -- "$cur"))
            fi
            ;;
        settings)
            if ((cword == 2)); then
                COMPREPLY=($(compgen -W "temperature codex claude codexHome publishSeconds
                    awakeMinutes memoryDisplayMode waybarSignal awakeWhileAgentsWork agentIdleMinutes
                    agentNotices alertPercents temperatureAlert temperatureUnit" -- "$cur"))
            elif ((cword == 3)); then
                case ${words[2]} in
                    temperature | codex | claude | awakeWhileAgentsWork | agentNotices)
                        COMPREPLY=($(compgen -W "true false" -- "$cur")) ;;
                    temperatureUnit)
                        COMPREPLY=($(compgen -W "C F" -- "$cur")) ;;
                    memoryDisplayMode)
                        COMPREPLY=($(compgen -W "usedPercent usedGB availablePercent availableGB
                            usedOfTotal" -- "$cur"))
                        ;;
                    codexHome) _filedir -d ;;
                esac
            fi
            ;;
    esac
} &&
    complete -F _korvo korvo
