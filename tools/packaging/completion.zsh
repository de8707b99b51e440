#compdef lumafold
# Completes the words of lumafold in zsh. Options and names come from the program itself.

_lumafold_word() { # an option or a picture
    if [[ $PREFIX == -* ]]; then
        compadd -- ${(f)"$($1 $2 --help 2>/dev/null |
            sed -n '/^  -/ { s/^  //; s/  .*//; s/, /\n/g; p }' | sed -n 's/^\(-[^ ]*\).*/\1/p')"}
    else
        _files -g '(#i)*.(png|jpg|jpeg|gif|bmp|webp|tif|tiff|heic|avif)'
    fi
}

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
    -o | --output) _files -g '*.(gif|png|mng|webp|y4m)' ;;
    --sheet | --config | --write) _files ;;
    --format | --fit)
        compadd -- ${(s:|:)"$($program $command --help 2>/dev/null | sed -n "s/^  $before \([^ ]*\).*/\1/p")"}
        ;;
    --[a-z]*)
        if $program $command --help 2>/dev/null | grep -q -e "^  $before [^ ]"; then
            _message 'a value'
        else
            _lumafold_word $program $command
        fi
        ;;
    *) _lumafold_word $program $command ;;
    esac
}

_lumafold "$@"
