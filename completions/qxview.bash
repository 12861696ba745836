# bash completion for qxview
_qxview() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} command=${COMP_WORDS[1]} options
  local commands="decode find list print protocols save xml"
  COMPREPLY=()
  # bash takes --color=auto apart at the sign.
  if [[ $cur == = ]]; then prev=${COMP_WORDS[COMP_CWORD-1]} cur=
  elif [[ $prev == = ]]; then prev=${COMP_WORDS[COMP_CWORD-2]}; fi
  if [[ $COMP_CWORD -eq 1 ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$commands --help --version" -- "$cur")
    return
  fi
  case $prev in
    --format) mapfile -t COMPREPLY < <(compgen -W "tree text json" -- "$cur"); return ;;
    --color) mapfile -t COMPREPLY < <(compgen -W "auto always never" -- "$cur"); return ;;
    -t) mapfile -t COMPREPLY < <(compgen -W "r d a u" -- "$cur"); return ;;
    --settings | -o) mapfile -t COMPREPLY < <(compgen -f -- "$cur"); return ;;
    --packets | -c | --count | -f | --filter | -d | --decode-as | --set | --partial | --name) return ;;
  esac
  if [[ $cur != -* || $cur == - ]]; then
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
    [[ $command == protocols ]] && COMPREPLY=()
    [[ $cur == - ]] || return
  fi
  options="--help --decode-as --settings"
  [[ $command == protocols ]] || options+=" --set --packets --count --filter -l --color"
  case $command in
    decode) options+=" --format --ranges --keys -x" ;;
    find) options+=" --backward" ;;
    list) options+=" -t" ;;
    print) options+=" -o" ;;
    save) options+=" --append --partial --name" ;;
  esac
  mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -W "$options" -- "$cur")
}
complete -o filenames -F _qxview qxview
