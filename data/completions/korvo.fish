# fish completion for korvo

set -l commands open service publish temperature codex claude-statusline awake settings

complete -c korvo -f
complete -c korvo -n "not __fish_seen_subcommand_from $commands" -a open -d "The dashboard at a link"
complete -c korvo -n "not __fish_seen_subcommand_from $commands" -a service -d "The background service"
complete -c korvo -n "not __fish_seen_subcommand_from $commands" -a publish -d "Write the shared file once"
complete -c korvo -n "not __fish_seen_subcommand_from $commands" -a temperature -d "The hottest CPU sensor"
complete -c korvo -n "not __fish_seen_subcommand_from $commands" -a codex -d "Codex's limits"
complete -c korvo -n "not __fish_seen_subcommand_from $commands" -a claude-statusline -d "Claude Code's status line"
complete -c korvo -n "not __fish_seen_subcommand_from $commands" -a awake -d "Keep Awake sessions"
complete -c korvo -n "not __fish_seen_subcommand_from $commands" -a settings -d "Read or change a setting"

complete -c korvo -n "__fish_seen_subcommand_from open" -a "korvo://usage korvo://ai korvo://resources korvo://memory korvo://awake"
complete -c korvo -n "__fish_seen_subcommand_from publish" -l print
complete -c korvo -n "__fish_seen_subcommand_from publish" -l now -x
complete -c korvo -n "__fish_seen_subcommand_from temperature codex status" -l json
complete -c korvo -n "__fish_seen_subcommand_from claude-statusline" -l chain -x
complete -c korvo -n "__fish_seen_subcommand_from claude-statusline" -l install
complete -c korvo -n "__fish_seen_subcommand_from claude-statusline" -l uninstall
complete -c korvo -n "__fish_seen_subcommand_from awake; and not __fish_seen_subcommand_from start extend stop status" -a "start extend stop status"
complete -c korvo -n "__fish_seen_subcommand_from start extend" -a "15m 1h 2h 4h indefinitely"
complete -c korvo -n "__fish_seen_subcommand_from settings; and not __fish_seen_subcommand_from temperature codex claude codexHome publishSeconds awakeMinutes memoryDisplayMode waybarSignal awakeWhileAgentsWork agentIdleMinutes agentNotices alertPercents temperatureAlert temperatureUnit" -a "temperature codex claude codexHome publishSeconds awakeMinutes memoryDisplayMode waybarSignal awakeWhileAgentsWork agentIdleMinutes agentNotices alertPercents temperatureAlert temperatureUnit"
complete -c korvo -n "__fish_seen_subcommand_from settings; and __fish_seen_subcommand_from temperature codex claude awakeWhileAgentsWork agentNotices" -a "true false"
complete -c korvo -n "__fish_seen_subcommand_from settings; and __fish_seen_subcommand_from memoryDisplayMode" -a "usedPercent usedGB availablePercent availableGB usedOfTotal"
complete -c korvo -l help -d "Explain the command"
complete -c korvo -n "__fish_seen_subcommand_from settings; and __fish_seen_subcommand_from temperatureUnit" -a "C F"
