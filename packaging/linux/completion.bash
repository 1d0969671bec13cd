# shellcheck shell=bash disable=SC2207
# Completion of the client's, the updater's and the practice tracker's options. Installed once, under each program's name.

_qrvrc_words() { # words
    COMPREPLY=($(compgen -W "$1" -- "${COMP_WORDS[COMP_CWORD]}"))
}

_qrvrc_files() { # kind: -d for folders, -f for files
    COMPREPLY=($(compgen "$1" -- "${COMP_WORDS[COMP_CWORD]}"))
    compopt -o filenames
}

# The sections of profiles.ini, in the folder that the command line names or the usual one.
_qrvrc_profiles() {
    local folder=${XDG_DATA_HOME:-$HOME/.local/share}/qrvv3rc index IFS=$'\n'
    for ((index = 1; index < COMP_CWORD; ++index)); do
        if [[ ${COMP_WORDS[index]} == --app-folder ]]; then
            folder=${COMP_WORDS[index + 1]}
        fi
    done
    COMPREPLY=($(compgen -W "$(sed -n 's/^\[\(.*\)\].*/\1/p' "$folder/profiles.ini" 2>/dev/null)" -- \
        "${COMP_WORDS[COMP_CWORD]}"))
    compopt -o filenames # which has blanks in names escaped
}

_qrvv3rc() {
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    --app-folder) _qrvrc_files -d ;;
    --connect) _qrvrc_profiles ;;
    --register-component) _qrvrc_files -f ;;
    --maker-host) COMPREPLY=() ;;
    *) _qrvrc_words "--app-folder --connect --register-component --maker-host --version --help" ;;
    esac
}

_qrvv3updater() {
    _qrvrc_words "--restore --version --help"
}

_qrvrc_practice() {
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    --recovery) _qrvrc_words "proper silent pieces endless cutoff close garbage" ;;
    --world) _qrvrc_words "lively small" ;;
    --news) _qrvrc_files -f ;;
    --*port | --seed | --big-log | --sign | --misbehave | --plugin | --offer | --offer-plugin | --misbehave-page) COMPREPLY=() ;;
    *) _qrvrc_words "--port --web-port --support-port --recovery-port --recovery --world --seed --big-log --still --misbehave
        --plugin --offer --offer-plugin --sign --news --misbehave-page --verbose --version --help" ;;
    esac
}

complete -F _qrvv3rc qrvv3rc
complete -F _qrvv3updater QRVV3Updater
complete -F _qrvrc_practice qrvrc-practice
