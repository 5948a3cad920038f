#compdef orvane-cli

_orvane_cli_devices() {
    local -a uids=(${(f)"$(orvane-cli devices --json 2>/dev/null | sed -n 's/^ *"uid": "\(.*\)",*$/\1/p')"})
    compadd -a uids
}

_orvane_cli_sources() {
    local -a ids=(${(f)"$(orvane-cli midi --json 2>/dev/null | sed -n 's/^ *"id": \(-*[0-9]*\),*$/\1/p')"})
    compadd -a ids
}

_orvane_cli() {
    local -a help=('(- *)'{-h,--help}'[print the options and exit]')
    local -a json=('--json[print one JSON object]')
    local -a session=('--session[session that sets up the mix]:session:_files -g "*.orvane"')
    local -a channels=('--channels[number of strips]:strips:')
    local -a virtual_input=('--virtual-input[sound file that a virtual device plays]:sound file:_files')
    local -a buffer_size=(
        '--buffer-size[frames per block]:frames:(32 64 96 128 192 256 512 768 1024 2048)'
    )
    local -a subcommands=(
        'devices:list the audio devices'
        'midi:list the MIDI sources, or send a note'
        'plugins:list the effects'
        'render:mix a sound file'
        'run:mix live without a window'
        'session:print a session as it would be saved'
    )
    if ((CURRENT == 2)); then
        _describe subcommand subcommands
        _arguments $help '(- *)--version[print the version and exit]'
        return
    fi
    local -a output_options=(
        '--leveler[how the leveler moves its gain]:mode:(follow hold off)'
        '--limiter[ceiling in dB true peak, or off]:dBTP:(-1 off)'
        '(--no-gain-ramps)--gain-ramps[run gains in a line]'
        '(--gain-ramps)--no-gain-ramps[the opposite]'
        '(--no-open-microphone-limit)--open-microphone-limit[all microphones as open as one]'
        '(--open-microphone-limit)--no-open-microphone-limit[the opposite]'
        '(--no-fast-onset)--fast-onset[open a voice within 5 ms]'
        '(--fast-onset)--no-fast-onset[the opposite]'
    )
    local subcommand=$words[2]
    shift words
    ((CURRENT--))
    case $subcommand in
    devices) _arguments $help $json $virtual_input ;;
    midi)
        _arguments $help $json '--send[send a note-on]:CHANNEL\:NOTE:' '--seconds[seconds to wait]:seconds:'
        ;;
    plugins) _arguments $help $json ;;
    render)
        _arguments $help $session $channels $buffer_size $output_options \
            '--input[sound file whose channels are the inputs]:sound file:_files' \
            '--output[sound file for the outputs]:sound file:_files' \
            '--outputs[number of outputs]:outputs:' \
            '--stems[folder for a file per strip]:folder:_files -/' \
            '--report[JSON file for gains, levels, time and load]:file:_files'
        ;;
    run)
        _arguments $help $session $channels $buffer_size $output_options $virtual_input \
            '--device[audio device]:uid:_orvane_cli_devices' \
            '--master-device[device for the master bus]:uid:_orvane_cli_devices' \
            '--rate[sample rate in Hz]:rate:(44100 48000 88200 96000 176400 192000)' \
            '--insert-workers[threads that share the work of the plugins]:threads:(0 1 2 3 4 5 6)' \
            '--midi-source[MIDI source to listen to]:id:_orvane_cli_sources' \
            '--learn[snapshot that the next note recalls]:snapshot:' \
            '--seconds[how long to run]:seconds:' \
            '--meters[style of the meters]:style:(text json none)' \
            '--record[sound file for the outputs of a virtual device]:sound file:_files' \
            '--force[save over a protected or changed session file]'
        ;;
    session) _arguments $help $channels '--new[make a session with this number of strips]:strips:' \
            '--force[replace an existing file]' '*:session:_files -g "*.orvane"' ;;
    esac
}

_orvane_cli "$@"
