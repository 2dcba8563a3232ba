# Completion of ostrevin-host for bash. Commands and options are those of its --help; a test compares them.

_ostrevin_host_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

_ostrevin_host_files() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2"; compgen -f -- "$2")
  compopt -o filenames 2>/dev/null
}

# The command on the line, and how many arguments stand between it and the word to complete.
_ostrevin_host_find_command() {
  command='' arguments=0
  local i
  for ((i = 1; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      --plugin | --desktop | -o | --output | --width | --interval | --count | --for) ((++i)) ;;
      -*) ;;
      *) if [[ -z $command ]]; then command=${COMP_WORDS[i]}; else ((++arguments)); fi ;;
    esac
  done
}

_ostrevin_host() {
  local tool=$1 current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local commands='list layout watch doctor methods call profiles tag qv02'
  local options='-h --help --json --check --plugin --desktop'
  local command arguments
  COMPREPLY=()
  case $previous in
    --plugin | -o | --output) _ostrevin_host_files '' "$current"; return ;;
    --desktop) _ostrevin_host_files 'live wayland x11' "$current"; return ;;
    --width | --interval | --count | --for) return ;;
  esac
  _ostrevin_host_find_command
  if [[ $current == -* ]]; then
    case $command in
      '') options+=' --version' ;;
      layout) options+=' -o --output --ascii --width' ;;
      watch) options+=' --interval --count --for' ;;
    esac
    _ostrevin_host_words "$options" "$current"
    return
  fi
  case $command:$arguments in
    :0) _ostrevin_host_words "$commands" "$current" ;;
    call:0) _ostrevin_host_words "$("$tool" methods 2>/dev/null | sed -n 's/^\([A-Za-z0-9]*\)(.*/\1/p')" "$current" ;;
    profiles:0) _ostrevin_host_words "$("$tool" list 2>/dev/null | sed -n 's/^\([0-9][0-9]*\) .*/\1/p')" "$current" ;;
    tag:0 | qv02:0 | call:*) _ostrevin_host_files '' "$current" ;;
  esac
}

complete -F _ostrevin_host ostrevin-host
