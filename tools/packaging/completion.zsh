#compdef lumafold
# Completes the words of lumafold in zsh. Options and names come from the program itself.

_lumafold() {
    local program=$words[1] command=$words[2] before=$words[CURRENT-1]
    if (( CURRENT == 2 )); then
        compadd -- ${(f)"$($program --help 2>/dev/null | sed -n 's/^  \([a-z]\{1,\}\)  .*/\1/p')"} --help --version
        return
    fi
    case $before in
    --transition | --palette)
        compadd -- ${(f)"$($program ${before#--}s | sed '1d; s/^ *[0-9]*  //; s/  .*//')"}
        ;;
    --set) compadd -S = -- ${(f)"$($program settings | sed '1d; s/ .*//')"} ;;
    -o | --output) _files -g '*.(gif|png|mng)' ;;
    --sheet | --config | --write) _files ;;
    --pause | --delay | --matte) _message 'a value' ;;
    *)
        if [[ $PREFIX == -* ]]; then
            compadd -- ${(f)"$($program $command --help 2>/dev/null |
                sed -n '/^  -/ { s/^  //; s/  .*//; s/, /\n/g; p }' | sed -n 's/^\(-[^ ]*\).*/\1/p')"}
        else
            _files -g '(#i)*.(png|jpg|jpeg|gif|bmp)'
        fi
        ;;
    esac
}

_lumafold "$@"
