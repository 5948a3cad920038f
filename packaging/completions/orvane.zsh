#compdef orvane

_orvane_devices() {
    local -a uids=(${(f)"$(orvane-cli devices --json 2>/dev/null | sed -n 's/^ *"uid": "\(.*\)",*$/\1/p')"})
    compadd -a uids
}

_arguments \
    '(- *)'{-h,--help}'[print the options and exit]' \
    '(- *)--version[print the version and exit]' \
    '--channels[number of strips]:strips:(2 4 8 12 16 24 32 48)' \
    '--device[audio device]:uid:_orvane_devices' \
    '--master-device[device for the master bus]:uid:_orvane_devices' \
    '--buffer-size[frames per block]:frames:(32 64 96 128 192 256 512 768 1024 2048)' \
    '--rate[sample rate in Hz]:rate:(44100 48000 88200 96000 176400 192000)' \
    '--insert-workers[threads that share the work of the plugins]:threads:(0 1 2 3 4 5 6)' \
    '--start[start audio]' \
    '--virtual-input[sound file that a virtual device plays]:sound file:_files' \
    '--record[sound file for the outputs of a virtual device]:sound file:_files' \
    '*:session:_files -g "*.orvane"'
