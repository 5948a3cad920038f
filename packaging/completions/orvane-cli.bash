# Completion of orvane-cli in bash.

_orvane_cli_output_options="--leveler --limiter --gain-ramps --no-gain-ramps --open-microphone-limit \
--no-open-microphone-limit --fast-onset --no-fast-onset"

_orvane_cli_options() {
    case $1 in
    devices) echo "--help --json --virtual-input" ;;
    midi) echo "--help --json --send --seconds" ;;
    plugins) echo "--help --json" ;;
    render)
        echo "--help --input --output --session --channels --outputs --buffer-size --stems --report" \
            "$_orvane_cli_output_options"
        ;;
    run)
        echo "--help --session --channels --device --master-device --buffer-size --rate --insert-workers --midi-source --learn" \
            "--seconds --meters --virtual-input --record --force" "$_orvane_cli_output_options"
        ;;
    session) echo "--help --channels --new --force" ;;
    *) echo "--help --version devices midi plugins render run session" ;;
    esac
}

# Device names may come from other programs; nothing in them is expanded.
_orvane_cli_devices() {
    local uid
    while IFS= read -r uid; do
        printf -v uid %q "$uid"
        [[ $uid == "$cur"* ]] && COMPREPLY+=("$uid")
    done < <(orvane-cli devices --json 2>/dev/null |
        sed -n 's/^ *"uid": "\(.*\)",*$/\1/; T; s/\\\(["\\]\)/\1/g; p')
    __ltrim_colon_completions "$cur"
}

_orvane_cli() {
    local cur prev words cword
    _init_completion -n := || return
    case $prev in
    --device | --master-device)
        _orvane_cli_devices
        ;;
    --midi-source)
        COMPREPLY=($(compgen -W "$(orvane-cli midi --json 2>/dev/null |
            sed -n 's/^ *"id": \(-*[0-9]*\),*$/\1/p')" -- "$cur"))
        ;;
    --leveler)
        COMPREPLY=($(compgen -W "follow hold off" -- "$cur"))
        ;;
    --buffer-size)
        COMPREPLY=($(compgen -W "32 64 96 128 192 256 512 768 1024 2048" -- "$cur"))
        ;;
    --rate)
        COMPREPLY=($(compgen -W "44100 48000 88200 96000 176400 192000" -- "$cur"))
        ;;
    --insert-workers)
        COMPREPLY=($(compgen -W "0 1 2 3 4 5 6" -- "$cur"))
        ;;
    --meters)
        COMPREPLY=($(compgen -W "text json none" -- "$cur"))
        ;;
    --session)
        _filedir orvane
        ;;
    --stems)
        _filedir -d
        ;;
    --report)
        _filedir json
        ;;
    --input | --output | --virtual-input | --record)
        _filedir
        ;;
    --channels | --outputs | --new | --learn | --seconds | --send) ;;
    *)
        if [[ ${words[1]} == session && $cur != -* ]]; then
            _filedir orvane
        else
            local subcommand=
            [[ $cword -gt 1 ]] && subcommand=${words[1]}
            COMPREPLY=($(compgen -W "$(_orvane_cli_options "$subcommand")" -- "$cur"))
        fi
        ;;
    esac
} && complete -F _orvane_cli orvane-cli
