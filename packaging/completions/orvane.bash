# Completion of orvane in bash.

# Device names may come from other programs; nothing in them is expanded.
_orvane_devices() {
    local uid
    while IFS= read -r uid; do
        printf -v uid %q "$uid"
        [[ $uid == "$cur"* ]] && COMPREPLY+=("$uid")
    done < <(orvane-cli devices --json 2>/dev/null |
        sed -n 's/^ *"uid": "\(.*\)",*$/\1/; T; s/\\\(["\\]\)/\1/g; p')
    __ltrim_colon_completions "$cur"
}

_orvane() {
    local cur prev words cword
    _init_completion -n := || return
    case $prev in
    --device | --master-device)
        _orvane_devices
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
    --channels)
        COMPREPLY=($(compgen -W "2 4 8 12 16 24 32 48" -- "$cur"))
        ;;
    --virtual-input | --record)
        _filedir
        ;;
    *)
        case $cur in
        -*)
            COMPREPLY=($(compgen -W "--help --version --channels --device --master-device --buffer-size
                --rate --insert-workers --start --virtual-input --record" -- "$cur"))
            ;;
        *)
            _filedir orvane
            ;;
        esac
        ;;
    esac
} && complete -F _orvane orvane
