# bash completion for qxview
_qxview_settings="AliasFile CharacterSet CleanText CustomLibrary0 CustomLibrary1 CustomLibrary2 CustomLibrary3
  CustomLibrary4 CustomLibrary5 CustomLibrary6 CustomLibrary7 DetectionFlags DetectionFlags2 DnsRecords DynamicDetection
  Expand2ndLevel Expand3rdLevel Expand4thLevel ExternalDecoder ExternalDecoderPort ForcedDecoding ForcedProtocolChoice
  ForcedSkipBytes ForcedStartProtocol IgnoreChecksums MibModules MibPath Modern RadiusSecret RangeFilterLength RangeFilterOn
  RangeFilterStart Reassembly TacacsSecret TdsDetectionOff TlsKeyLog TypeOfServiceFieldMask TypeOfServiceFieldName0 TypeOfServiceFieldName1 TypeOfServiceFieldName2
  TypeOfServiceFieldName3 TypeOfServiceFieldName4 TypeOfServiceFieldName5 TypeOfServiceFieldName6
  TypeOfServiceFieldName7 TypeOfServiceMode"

# The lines of "$1" that start with "$2", case ignored, as words of a command line.
_qxview_lines() {
  local line
  COMPREPLY=()
  while IFS= read -r line; do
    [[ ${line,,} == "${2,,}"* ]] && COMPREPLY+=("$(printf %q "$line")")
  done <<< "$1"
}

_qxview_values() {   # OPTION, what is typed of its value
  local option=$1 cur=$2
  case $option in
    --color) mapfile -t COMPREPLY < <(compgen -W "auto always never" -- "$cur") ;;
    -t) mapfile -t COMPREPLY < <(compgen -W "r d dd a u e i" -- "$cur") ;;
    --settings | --files-from | -o | --output | --pdf) mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
    --format)
      case ${COMP_WORDS[1]} in
        protocols) mapfile -t COMPREPLY < <(compgen -W "text json" -- "$cur") ;;
        capture | save) mapfile -t COMPREPLY < <(compgen -W "pcap pcapng bfr" -- "$cur") ;;
        fields | list) mapfile -t COMPREPLY < <(compgen -W "csv tsv json" -- "$cur") ;;
        stat) mapfile -t COMPREPLY < <(compgen -W "table json csv" -- "$cur") ;;
        follow) mapfile -t COMPREPLY < <(compgen -W "text hex raw" -- "$cur") ;;
        find) mapfile -t COMPREPLY < <(compgen -W "text json" -- "$cur") ;;
        *) mapfile -t COMPREPLY < <(compgen -W "tree text json" -- "$cur") ;;
      esac ;;
    --theme) mapfile -t COMPREPLY < <(compgen -W "auto dark light 16 none" -- "$cur") ;;
    --what) mapfile -t COMPREPLY < <(compgen -W "tree list bytes all" -- "$cur") ;;
    --paper) mapfile -t COMPREPLY < <(compgen -W "A4 A3 A5 Letter Legal Tabloid" -- "$cur") ;;
    --values) mapfile -t COMPREPLY < <(compgen -W "all first last" -- "$cur") ;;
    --side) mapfile -t COMPREPLY < <(compgen -W "both a b" -- "$cur") ;;
    --stream) mapfile -t COMPREPLY < <(compgen -W "tcp: udp:" -- "$cur") ;;
    -e) _qxview_lines "$(qxview protocols --fields 2>/dev/null | sed 's/ .*//')" "$cur" ;;
    --set)
      case $cur in
        AliasFile=* | CustomLibrary?=* | ExternalDecoder=* | MibPath=*)
          mapfile -t COMPREPLY < <(compgen -f -- "${cur#*=}") ;;
        *=*) ;;
        *)
          mapfile -t COMPREPLY < <(compgen -S = -W "$_qxview_settings" -- "$cur")
          compopt -o nospace 2>/dev/null ;;
      esac ;;
    -d | --decode-as)
      case $cur in
        *=*) _qxview_lines "$(qxview protocols 2>/dev/null | sed 's/^0x[0-9A-F]*  //; s/   *.*//'; echo none)" "${cur##*=}" ;;
        *:*) ;;
        *)
          mapfile -t COMPREPLY < <(compgen -W "tcp: udp:" -- "$cur")
          compopt -o nospace 2>/dev/null ;;
      esac ;;
    *) return 1 ;;
  esac
  return 0
}

_qxview() {
  local command=${COMP_WORDS[1]} options
  local commands="capture decode fields find follow help list print protocols report save stat view xml"
  COMPREPLY=()
  if [[ $COMP_CWORD -eq 1 ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$commands --help --version" -- "${COMP_WORDS[1]}")
    return
  fi
  # bash takes --color=auto and tcp:80=HTTP apart at the signs: back together.
  local at=$COMP_CWORD
  local cur=${COMP_WORDS[at]}
  while [[ $at -gt 2 ]] && [[ ${COMP_WORDS[at]} == [:=]* || ${COMP_WORDS[at - 1]} == *[:=] ]]; do
    at=$((at - 1)) cur=${COMP_WORDS[at]}$cur
  done
  if [[ $command == help ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$cur")
    return
  fi
  if [[ $cur == --*=* ]]; then
    _qxview_values "${cur%%=*}" "${cur#*=}"
    return
  fi
  _qxview_values "${COMP_WORDS[at - 1]}" "$cur" && return
  case ${COMP_WORDS[at - 1]} in
    --packets | -c | --count | -f | --filter | -Y | --where | --partial | --name | -O | --only | --depth) return ;;
    --margin | --font-size | --separator | --sort | --top | --interval) return ;;
  esac
  local reading="decode fields find follow list print save stat xml"
  if [[ $command == capture ]]; then
    case ${COMP_WORDS[at - 1]} in
      -i | --interface) _qxview_lines "$(qxview capture -D 2>/dev/null | sed 's/ .*//')" "$cur"; return ;;
      -w | --write) mapfile -t COMPREPLY < <(compgen -f -- "$cur"); return ;;
      --duration | -s | --snaplen | -B | --buffer | --ring-size | --ring-time | --ring-files) return ;;
    esac
    local options="--help --interface --list-interfaces --write --format --filter --count --duration --snaplen --no-promiscuous --buffer"
    [[ $cur == -* ]] && reading="$options --ring-size --ring-time --ring-files"
    mapfile -t COMPREPLY < <(compgen -W "$reading" -- "$cur")
    return
  fi
  if [[ $command == stat && $COMP_CWORD -eq 2 && $cur != -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "protocols endpoints conversations ports rate values lengths dns http tcp" -- "$cur")
    return
  fi
  if [[ $cur != -* || $cur == - ]]; then
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
    [[ $command == protocols ]] && COMPREPLY=()
    [[ $cur == - ]] || return
  fi
  options="--help --decode-as --settings"
  [[ $command == protocols ]] || options+=" --set --packets --count --filter --where -l --color --files-from --jobs --merge --keep-going --modern --reassemble"
  case $command in decode | fields | find | list | print) options+=" --prefix-file" ;; esac
  case $command in
    decode) options+=" -t --format --ranges --keys -x --only --depth --no-dumps" ;;
    fields) options+=" -e -t --format --values --separator --no-header" ;;
    find) options+=" --backward --shown -i -E --no-dumps --all --hits --format" ;;
    follow) options+=" --stream --format --side" ;;
    list) options+=" -t --wide --format" ;;
    print) options+=" -o --pdf --what --paper --margin --font-size --landscape --two-up" ;;
    report) options+=" -o --output" ;;
    protocols) options+=" --format --fields" ;;
    save) options+=" --format --append --partial --name" ;;
    stat) options+=" --format --sort --top --interval" ;;
    view) options=" --help --decode-as --settings --set --where --modern --reassemble -t --theme --live --no-mouse" ;;
  esac
  mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -W "$options" -- "$cur")
}
complete -o filenames -F _qxview qxview
