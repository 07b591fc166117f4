# bash completion for korvo-widgets

_korvo_widgets() {
    local cur prev words cword
    _init_completion || return

    local commands="list timeline render gallery snapshot memory status run reload stop"
    local kinds="memory awake usage temperature"
    local status_kinds="memory usage temperature"
    local modes="usedPercent usedGB availablePercent availableGB usedOfTotal"

    if ((cword == 1)); then
        COMPREPLY=($(compgen -W "$commands --help" -- "$cur"))
        return
    fi

    case $prev in
        --family) COMPREPLY=($(compgen -W "small medium" -- "$cur")); return ;;
        --entry) COMPREPLY=($(compgen -W "placeholder snapshot timeline" -- "$cur")); return ;;
        --appearance) COMPREPLY=($(compgen -W "light dark" -- "$cur")); return ;;
        --rendering) COMPREPLY=($(compgen -W "full-color accented" -- "$cur")); return ;;
        --mode) COMPREPLY=($(compgen -W "$modes" -- "$cur")); return ;;
        -o | --output | --snapshot-file | --placements | --dump-dir)
            _filedir
            return
            ;;
        --now | --accent | --scale | --time-rate | --time-offset) return ;;
    esac

    local command=${words[1]}
    case $command in
        list | memory)
            COMPREPLY=($(compgen -W "--json --help" -- "$cur"))
            ;;
        timeline)
            COMPREPLY=($(compgen -W "$kinds --preview --json --now --help" -- "$cur"))
            ;;
        render)
            COMPREPLY=($(compgen -W "$kinds --family --entry --snapshot-file --now --appearance
                --rendering --accent --legacy-background --scale --format -o --help" -- "$cur"))
            [[ $prev == --format ]] && COMPREPLY=($(compgen -W "png svg json tree" -- "$cur"))
            ;;
        gallery)
            COMPREPLY=($(compgen -W "-o --help" -- "$cur"))
            ;;
        snapshot)
            if ((cword == 2)); then
                COMPREPLY=($(compgen -W "path check --help" -- "$cur"))
            elif [[ ${words[2]} == check ]]; then
                COMPREPLY=($(compgen -W "--reencode --help" -- "$cur"))
                [[ $cur != -* ]] && _filedir
            fi
            ;;
        status)
            COMPREPLY=($(compgen -W "$status_kinds --format --mode --now --help" -- "$cur"))
            [[ $prev == --format ]] && COMPREPLY=($(compgen -W "text waybar" -- "$cur"))
            ;;
        run)
            COMPREPLY=($(compgen -W "--replace --widget --placements --appearance --rendering
                --accent --scale --time-rate --time-offset --dump-dir --help" -- "$cur"))
            if [[ $prev == --widget ]]; then
                COMPREPLY=($(compgen -W "$kinds memory:small memory:medium usage:small
                    usage:medium" -- "$cur"))
            fi
            ;;
        reload | stop)
            COMPREPLY=($(compgen -W "--help" -- "$cur"))
            ;;
    esac
} &&
    complete -F _korvo_widgets korvo-widgets
