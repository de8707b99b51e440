# Completes the words of lumafold in bash. Options and names come from the program itself.

_lumafold_offer() { # names, one a line on the standard input, that begin as the word does
    local word=$1 name quote=
    case $word in
    \"* | \'*)
        quote=${word:0:1}
        word=${word:1}
        ;;
    *) word=${word//\\/} ;;
    esac
    COMPREPLY=()
    while IFS= read -r name; do
        [[ $name == "$word"* ]] || continue
        [ -n "$quote" ] || printf -v name %q "$name"
        COMPREPLY+=("$name")
    done
}

_lumafold_options() {
    "$1" "$2" --help 2>/dev/null |
        sed -n '/^  -/ { s/^  //; s/  .*//; s/, /\n/g; p }' | sed -n 's/^\(-[^ ]*\).*/\1/p'
}

_lumafold_files() { # a folder, or a file with one of these suffixes
    compopt -o filenames 2>/dev/null
    local suffix file
    COMPREPLY=()
    while IFS= read -r file; do COMPREPLY+=("$file"); done < <(
        compgen -d -- "$1"
        compgen -f -- "$1" | while IFS= read -r file; do
            for suffix in "${@:2}"; do
                if [[ ! -d $file && ${file,,} == *"$suffix" ]]; then printf '%s\n' "$file"; fi
            done
        done)
}

_lumafold_choices() { # contain|cover|stretch of an option, one a line
    "$1" "$2" --help 2>/dev/null | sed -n "s/^  $3 \\([^ ]*\\).*/\\1/p" | tr '|' '\n'
}

_lumafold_takes_value() { "$1" "$2" --help 2>/dev/null | grep -q -e "^  $3 [^ ]"; }

_lumafold_word() { # an option or a picture; with the variables of _lumafold
    case $word in
    -*) _lumafold_offer "$word" < <(_lumafold_options "$program" "$command") ;;
    *) _lumafold_files "$bare" .png .jpg .jpeg .gif .bmp .webp .tif .tiff .heic .avif ;;
    esac
}

_lumafold() {
    # The word as typed, for its quote decides how names are given; files are bash's business, which wants it bare.
    local program=$1 word=${COMP_WORDS[COMP_CWORD]} bare=$2 before=$3 command=${COMP_WORDS[1]}
    if [ "$COMP_CWORD" = 1 ]; then
        _lumafold_offer "$word" < <("$program" --help 2>/dev/null | sed -n 's/^  \([a-z]\{1,\}\)  .*/\1/p'
            printf '%s\n' --help --version)
        return
    fi
    # --option=value comes as three words.
    if [ "$word" = = ]; then
        word=
    elif [ "$before" = = ]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $before in
    --transition) _lumafold_offer "$word" < <("$program" transitions | sed '1d; s/^ *[0-9]*  //; s/  .*//') ;;
    --palette) _lumafold_offer "$word" < <("$program" palettes | sed '1d; s/^ *[0-9]*  //; s/  .*//') ;;
    --set)
        compopt -o nospace 2>/dev/null
        _lumafold_offer "$word" < <("$program" settings | sed '1d; s/ .*/=/')
        ;;
    -o | --output)
        if [ "$command" = sheet ]; then _lumafold_files "$bare" .png; else _lumafold_files "$bare" .gif .png .mng .webp .y4m; fi
        ;;
    --sheet) _lumafold_files "$bare" .png ;;
    --config | --write) _lumafold_files "$bare" "" ;;
    --format | --fit) _lumafold_offer "$word" < <(_lumafold_choices "$program" "$command" "$before") ;;
    --[a-z]*) if _lumafold_takes_value "$program" "$command" "$before"; then COMPREPLY=(); else _lumafold_word; fi ;;
    *) _lumafold_word ;;
    esac
}

complete -F _lumafold lumafold
