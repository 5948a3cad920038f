# Completion of orvane in fish.

function __orvane_devices
    orvane-cli devices --json 2>/dev/null | string replace -rf '^ *"uid": "(.*)",*$' '$1'
end

complete -c orvane -f
complete -c orvane -k -a '(__fish_complete_suffix .orvane)'
complete -c orvane -s h -l help -d 'Print the options and exit'
complete -c orvane -l version -d 'Print the version and exit'
complete -c orvane -x -l channels -a '2 4 8 12 16 24 32 48' -d 'Number of strips'
complete -c orvane -x -l device -a '(__orvane_devices)' -d 'Audio device'
complete -c orvane -x -l master-device -a '(__orvane_devices)' -d 'Device for the master bus'
complete -c orvane -x -l buffer-size -a '32 64 96 128 192 256 512 768 1024 2048' -d 'Frames per block'
complete -c orvane -x -l insert-workers -a '0 1 2 3 4 5 6' -d 'Threads that share the work of the plugins'
complete -c orvane -x -l rate -a '44100 48000 88200 96000 176400 192000' -d 'Sample rate in Hz'
complete -c orvane -l start -d 'Start audio'
complete -c orvane -r -F -l virtual-input -d 'Sound file that a virtual device plays'
complete -c orvane -r -F -l record -d 'Sound file for the outputs of a virtual device'
