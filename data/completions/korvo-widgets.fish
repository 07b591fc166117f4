# fish completion for korvo-widgets

set -l commands list timeline render gallery snapshot memory status run reload stop
set -l kinds memory awake usage temperature
set -l status_kinds memory usage temperature

complete -c korvo-widgets -f
complete -c korvo-widgets -n "not __fish_seen_subcommand_from $commands" -a list -d "The four widgets"
complete -c korvo-widgets -n "not __fish_seen_subcommand_from $commands" -a timeline -d "A provider's entries"
complete -c korvo-widgets -n "not __fish_seen_subcommand_from $commands" -a render -d "One widget, headless"
complete -c korvo-widgets -n "not __fish_seen_subcommand_from $commands" -a gallery -d "Every widget, light and dark"
complete -c korvo-widgets -n "not __fish_seen_subcommand_from $commands" -a snapshot -d "The shared file"
complete -c korvo-widgets -n "not __fish_seen_subcommand_from $commands" -a memory -d "One memory reading"
complete -c korvo-widgets -n "not __fish_seen_subcommand_from $commands" -a status -d "One line for a status bar"
complete -c korvo-widgets -n "not __fish_seen_subcommand_from $commands" -a run -d "The widgets on the desktop"
complete -c korvo-widgets -n "not __fish_seen_subcommand_from $commands" -a reload -d "Ask every provider again now"
complete -c korvo-widgets -n "not __fish_seen_subcommand_from $commands" -a stop -d "End the desktop host"

complete -c korvo-widgets -n "__fish_seen_subcommand_from timeline render; and not __fish_seen_subcommand_from $kinds" -a "$kinds"
complete -c korvo-widgets -n "__fish_seen_subcommand_from status; and not __fish_seen_subcommand_from $status_kinds" -a "$status_kinds"
complete -c korvo-widgets -n "__fish_seen_subcommand_from list memory timeline" -l json
complete -c korvo-widgets -n "__fish_seen_subcommand_from timeline" -l preview
complete -c korvo-widgets -n "__fish_seen_subcommand_from timeline render status gallery" -l now -x
complete -c korvo-widgets -n "__fish_seen_subcommand_from render" -l family -x -a "small medium"
complete -c korvo-widgets -n "__fish_seen_subcommand_from render" -l entry -x -a "placeholder snapshot timeline"
complete -c korvo-widgets -n "__fish_seen_subcommand_from render" -l snapshot-file -r -F
complete -c korvo-widgets -n "__fish_seen_subcommand_from render run" -l appearance -x -a "light dark"
complete -c korvo-widgets -n "__fish_seen_subcommand_from render run" -l rendering -x -a "full-color accented"
complete -c korvo-widgets -n "__fish_seen_subcommand_from render run" -l accent -x
complete -c korvo-widgets -n "__fish_seen_subcommand_from render run" -l scale -x
complete -c korvo-widgets -n "__fish_seen_subcommand_from render" -l legacy-background
complete -c korvo-widgets -n "__fish_seen_subcommand_from render" -l format -x -a "png svg json tree"
complete -c korvo-widgets -n "__fish_seen_subcommand_from render gallery" -s o -l output -r -F
complete -c korvo-widgets -n "__fish_seen_subcommand_from snapshot; and not __fish_seen_subcommand_from path check" -a "path check"
complete -c korvo-widgets -n "__fish_seen_subcommand_from check" -l reencode
complete -c korvo-widgets -n "__fish_seen_subcommand_from check" -F
complete -c korvo-widgets -n "__fish_seen_subcommand_from status" -l format -x -a "text waybar"
complete -c korvo-widgets -n "__fish_seen_subcommand_from status" -l mode -x -a "usedPercent usedGB availablePercent availableGB usedOfTotal"
complete -c korvo-widgets -n "__fish_seen_subcommand_from run" -l replace -d "Take over from the running host"
complete -c korvo-widgets -n "__fish_seen_subcommand_from run" -l widget -x -a "$kinds"
complete -c korvo-widgets -n "__fish_seen_subcommand_from run" -l placements -r -F
complete -c korvo-widgets -n "__fish_seen_subcommand_from run" -l time-rate -x
complete -c korvo-widgets -n "__fish_seen_subcommand_from run" -l time-offset -x
complete -c korvo-widgets -n "__fish_seen_subcommand_from run" -l dump-dir -r -F
complete -c korvo-widgets -l help -d "Explain the command"
