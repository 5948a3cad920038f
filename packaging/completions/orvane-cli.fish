# Completion of orvane-cli in fish.

function __orvane_cli_devices
    orvane-cli devices --json 2>/dev/null | string replace -rf '^ *"uid": "(.*)",*$' '$1'
end

function __orvane_cli_sources
    orvane-cli midi --json 2>/dev/null | string replace -rf '^ *"id": (-*[0-9]*),*$' '$1'
end

# __orvane_cli_option SUBCOMMANDS OPTION DESCRIPTION [ARGUMENTS OF complete]
function __orvane_cli_option
    complete -c orvane-cli -n "__fish_seen_subcommand_from $argv[1]" -l $argv[2] -d $argv[3] $argv[4..]
end

complete -c orvane-cli -f
complete -c orvane-cli -s h -l help -d 'Print the options and exit'
complete -c orvane-cli -n __fish_use_subcommand -l version -d 'Print the version and exit'
complete -c orvane-cli -n __fish_use_subcommand -a devices -d 'List the audio devices'
complete -c orvane-cli -n __fish_use_subcommand -a midi -d 'List the MIDI sources, or send a note'
complete -c orvane-cli -n __fish_use_subcommand -a plugins -d 'List the effects'
complete -c orvane-cli -n __fish_use_subcommand -a render -d 'Mix a sound file'
complete -c orvane-cli -n __fish_use_subcommand -a run -d 'Mix live without a window'
complete -c orvane-cli -n __fish_use_subcommand -a session -d 'Print a session as it would be saved'
__orvane_cli_option 'devices midi plugins' json 'Print one JSON object'
__orvane_cli_option 'devices run' virtual-input 'Sound file that a virtual device plays' -r -F
__orvane_cli_option midi send 'Send a note-on: CHANNEL:NOTE' -x
__orvane_cli_option 'midi run' seconds 'How long to wait or to run' -x
__orvane_cli_option render input 'Sound file whose channels are the inputs' -r -F
__orvane_cli_option render output 'Sound file for the outputs' -r -F
__orvane_cli_option render outputs 'Number of outputs' -x
__orvane_cli_option render stems 'Folder for a file per strip' -x -a '(__fish_complete_directories)'
__orvane_cli_option render report 'JSON file for gains, levels, time and load' -r -F
__orvane_cli_option 'render run' session 'Session that sets up the mix' -x -k -a '(__fish_complete_suffix .orvane)'
__orvane_cli_option 'render run session' channels 'Number of strips' -x
__orvane_cli_option 'render run' buffer-size 'Frames per block' -x -a '32 64 96 128 192 256 512 768 1024 2048'
__orvane_cli_option 'render run' leveler 'How the leveler moves its gain' -x -a 'follow hold off'
__orvane_cli_option 'render run' limiter 'Ceiling in dB true peak, or off' -x -a '-1 off'
__orvane_cli_option 'render run' gain-ramps 'Run gains in a line'
__orvane_cli_option 'render run' no-gain-ramps 'Step gains between blocks'
__orvane_cli_option 'render run' open-microphone-limit 'All microphones together as open as one'
__orvane_cli_option 'render run' no-open-microphone-limit 'No limit of open microphones'
__orvane_cli_option 'render run' fast-onset 'Open a voice within 5 ms'
__orvane_cli_option 'render run' no-fast-onset 'Open a voice with the usual attack'
__orvane_cli_option run rate 'Sample rate in Hz' -x -a '44100 48000 88200 96000 176400 192000'
__orvane_cli_option run insert-workers 'Threads that share the work of the plugins' -x -a '0 1 2 3 4 5 6'
__orvane_cli_option run device 'Audio device' -x -a '(__orvane_cli_devices)'
__orvane_cli_option run master-device 'Device for the master bus' -x -a '(__orvane_cli_devices)'
__orvane_cli_option run midi-source 'MIDI source to listen to' -x -a '(__orvane_cli_sources)'
__orvane_cli_option run learn 'Snapshot that the next note recalls' -x
__orvane_cli_option run meters 'Style of the meters' -x -a 'text json none'
__orvane_cli_option run record 'Sound file for the outputs of a virtual device' -r -F
__orvane_cli_option 'run session' force 'Replace a protected, changed or existing session file'
__orvane_cli_option session new 'Make a session with this number of strips' -x
complete -c orvane-cli -n '__fish_seen_subcommand_from session' -k -a '(__fish_complete_suffix .orvane)'
