# fish completion for qxview
function __qxview_settings
  string join \n -- \
      AliasFile CharacterSet CleanText CustomLibrary0 CustomLibrary1 CustomLibrary2 CustomLibrary3 CustomLibrary4 \
      CustomLibrary5 CustomLibrary6 CustomLibrary7 DetectionFlags DetectionFlags2 DnsRecords DynamicDetection Expand2ndLevel \
      Expand3rdLevel Expand4thLevel ExternalDecoder ExternalDecoderPort ForcedDecoding ForcedProtocolChoice \
      ForcedSkipBytes ForcedStartProtocol IgnoreChecksums MibModules MibPath Modern RadiusSecret RangeFilterLength RangeFilterOn \
      RangeFilterStart Reassembly TacacsSecret TdsDetectionOff TlsKeyLog TypeOfServiceFieldMask TypeOfServiceFieldName0 TypeOfServiceFieldName1 \
      TypeOfServiceFieldName2 TypeOfServiceFieldName3 TypeOfServiceFieldName4 TypeOfServiceFieldName5 \
      TypeOfServiceFieldName6 TypeOfServiceFieldName7 TypeOfServiceMode | string replace -r '$' '='
end
# The protocols behind what is typed of TRANSPORT:[ADDRESS:]PORT=
function __qxview_definitions
  set -l typed (commandline -ct | string replace -r '^-d' '')
  if string match -q '*=*' -- $typed
    set -l start (string replace -r '=[^=]*$' '=' -- $typed)
    begin
      qxview protocols 2>/dev/null | string replace -r '^0x[0-9A-F]+  ' '' | string replace -r '   *.*' ''
      echo none
    end | string replace -r '^' -- $start
  else
    string join \n tcp: udp:
  end
end
set -l reading decode fields find follow list print report save stat view xml
set -l all $reading capture protocols help
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -l help -d 'the commands'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -l version -d 'the version'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a capture -d 'live packets'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a decode -d 'the decode tree of every packet'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a fields -d 'values of fields as columns'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a find -d 'the first packet and line holding a text'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a follow -d 'the bytes of a conversation'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a help -d 'the commands, or the options of one'
complete -c qxview -f -n '__fish_seen_subcommand_from help' -a "$reading capture protocols"
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a list -d 'one line a packet'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a print -d 'the lines as the print mode writes them'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a protocols -d 'the built-in decoders'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a report -d 'a capture at a glance, as a page'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a save -d 'packets to a capture file'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a stat -d 'statistics as tables'
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a view -d 'packets on the screen'
complete -c qxview -n '__fish_seen_subcommand_from view' -l theme -x -a 'auto dark light 16 none' -d 'colours'
complete -c qxview -n '__fish_seen_subcommand_from view' -l live -d 'the file is still written to'
complete -c qxview -n '__fish_seen_subcommand_from view' -l no-mouse -d "the mouse is the terminal's"
complete -c qxview -f -n "not __fish_seen_subcommand_from $all" -a xml -d 'packets as an XML document'
complete -c qxview -n "__fish_seen_subcommand_from $all" -l help -d 'help with examples'
complete -c qxview -n "__fish_seen_subcommand_from $all" -s d -l decode-as -x -a '(__qxview_definitions)' -d 'a protocol definition'
complete -c qxview -n "__fish_seen_subcommand_from $all" -l settings -r -d 'settings file'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -l set -x -a '(__qxview_settings)' -d 'one setting, NAME=VALUE'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -l packets -x -d 'packet numbers from 1'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -s c -l count -x -d 'stop after N packets'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -s f -l filter -x -d 'only packets that match a BPF expression'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -s Y -l where -x -d 'only packets whose fields it is true of'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -s l -d 'flush after every packet'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -l color -x -a 'auto always never' -d 'colours'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -l jobs -x -d 'threads that decode'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -l files-from -r -d 'further captures, a line each'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -l merge -d 'several captures as one, by time'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -l modern -d 'all records of DNS, and bad checksums end nothing'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -l reassemble -d 'messages over segments and fragments are joined'
complete -c qxview -n "__fish_seen_subcommand_from $reading" -l keep-going -d 'go on behind a bad capture'
complete -c qxview -n '__fish_seen_subcommand_from decode fields find list print' -l prefix-file -d 'the file in front of every line'
complete -c qxview -n '__fish_seen_subcommand_from decode' -l format -x -a 'tree text json' -d 'output format'
complete -c qxview -n '__fish_seen_subcommand_from decode' -l ranges -d 'byte ranges'
complete -c qxview -n '__fish_seen_subcommand_from decode' -l keys -d 'keys and values'
complete -c qxview -n '__fish_seen_subcommand_from decode' -s x -d 'the bytes of each frame'
complete -c qxview -n '__fish_seen_subcommand_from find' -l backward -d 'the last match'
complete -c qxview -n '__fish_seen_subcommand_from decode fields list' -s t -x -a 'r d dd a u e i' -d 'times'
complete -c qxview -n '__fish_seen_subcommand_from decode' -s O -l only -x -d 'details of these protocols alone'
complete -c qxview -n '__fish_seen_subcommand_from decode' -l depth -x -d 'so many levels'
complete -c qxview -n '__fish_seen_subcommand_from decode find' -l no-dumps -d 'without hex dumps'
complete -c qxview -n '__fish_seen_subcommand_from fields' -s e -x -a '(qxview protocols --fields 2>/dev/null | string replace -r " .*" "")' -d 'a column'
complete -c qxview -n '__fish_seen_subcommand_from fields list' -l format -x -a 'csv tsv json' -d 'output format'
complete -c qxview -n '__fish_seen_subcommand_from fields' -l values -x -a 'all first last' -d 'which of several'
complete -c qxview -n '__fish_seen_subcommand_from fields' -l separator -x -d 'between several values'
complete -c qxview -n '__fish_seen_subcommand_from fields' -l no-header -d 'without names'
complete -c qxview -n '__fish_seen_subcommand_from find' -l shown -d 'in the finished tree'
complete -c qxview -n '__fish_seen_subcommand_from find' -s i -d 'whatever the case'
complete -c qxview -n '__fish_seen_subcommand_from find' -s E -d 'a regular expression'
complete -c qxview -n '__fish_seen_subcommand_from find' -l all -d 'every hit'
complete -c qxview -n '__fish_seen_subcommand_from find' -l hits -d 'how many'
complete -c qxview -n '__fish_seen_subcommand_from find' -l format -x -a 'text json' -d 'output format'
complete -c qxview -n '__fish_seen_subcommand_from follow' -l stream -x -a 'tcp: udp:' -d 'the conversation'
complete -c qxview -n '__fish_seen_subcommand_from follow' -l format -x -a 'text hex raw' -d 'output format'
complete -c qxview -n '__fish_seen_subcommand_from follow' -l side -x -a 'both a b' -d 'which side'
complete -c qxview -n '__fish_seen_subcommand_from stat' -f -a 'protocols endpoints conversations ports rate values lengths dns http tcp'
complete -c qxview -n '__fish_seen_subcommand_from stat' -l format -x -a 'table json csv' -d 'output format'
complete -c qxview -n '__fish_seen_subcommand_from stat' -l sort -x -d 'by this column'
complete -c qxview -n '__fish_seen_subcommand_from stat' -l top -x -d 'the first rows'
complete -c qxview -n '__fish_seen_subcommand_from stat' -l interval -x -d 'seconds, of rate'
complete -c qxview -n '__fish_seen_subcommand_from list' -l wide -d 'not cut to the terminal'
complete -c qxview -n '__fish_seen_subcommand_from protocols' -l fields -d 'the keys of their lines'
complete -c qxview -n '__fish_seen_subcommand_from protocols' -l format -x -a 'text json' -d 'output format'
complete -c qxview -n '__fish_seen_subcommand_from print' -s o -r -d 'output file'
complete -c qxview -n '__fish_seen_subcommand_from print' -l pdf -r -d 'pages of a PDF file'
complete -c qxview -n '__fish_seen_subcommand_from print' -l what -x -a 'tree list bytes all' -d 'on the pages'
complete -c qxview -n '__fish_seen_subcommand_from print' -l paper -x -a 'A4 A3 A5 Letter Legal Tabloid' -d 'its size'
complete -c qxview -n '__fish_seen_subcommand_from print' -l margin -x -d 'millimetres on each side'
complete -c qxview -n '__fish_seen_subcommand_from print' -l font-size -x -d 'points'
complete -c qxview -n '__fish_seen_subcommand_from print' -l landscape -d 'pages that lie'
complete -c qxview -n '__fish_seen_subcommand_from print' -l two-up -d 'two pages on each sheet'
complete -c qxview -n '__fish_seen_subcommand_from report' -s o -l output -r -d 'the page'
complete -c qxview -n '__fish_seen_subcommand_from save' -l format -x -a 'pcap pcapng bfr' -d 'file format'
complete -c qxview -n '__fish_seen_subcommand_from save' -l append -d 'add to an existing file'
complete -c qxview -n '__fish_seen_subcommand_from save' -l partial -x -d 'cut packets to this many bytes'
complete -c qxview -n '__fish_seen_subcommand_from save' -l name -x -d 'the name kept in the file'
complete -c qxview -n '__fish_seen_subcommand_from capture' -s i -l interface -x -a '(qxview capture -D 2>/dev/null | string replace -r " .*" "")' -d 'the interface'
complete -c qxview -n '__fish_seen_subcommand_from capture' -s D -l list-interfaces -d 'the interfaces that there are'
complete -c qxview -n '__fish_seen_subcommand_from capture' -s w -l write -r -d 'save the packets'
complete -c qxview -n '__fish_seen_subcommand_from capture' -l format -x -a 'pcap pcapng bfr' -d 'file format'
complete -c qxview -n '__fish_seen_subcommand_from capture' -s f -l filter -x -d 'only packets that match a BPF expression'
complete -c qxview -n '__fish_seen_subcommand_from capture' -s c -l count -x -d 'stop after N packets'
complete -c qxview -n '__fish_seen_subcommand_from capture' -l duration -x -d 'stop after so many seconds'
complete -c qxview -n '__fish_seen_subcommand_from capture' -s s -l snaplen -x -d 'bytes of each packet at most'
complete -c qxview -n '__fish_seen_subcommand_from capture' -s p -l no-promiscuous -d 'only what is addressed to this machine'
complete -c qxview -n '__fish_seen_subcommand_from capture' -s B -l buffer -x -d 'MB of the kernel'
complete -c qxview -n '__fish_seen_subcommand_from capture' -l ring-size -x -d 'a new file before one gets larger'
complete -c qxview -n '__fish_seen_subcommand_from capture' -l ring-time -x -d 'a new file after so many seconds'
complete -c qxview -n '__fish_seen_subcommand_from capture' -l ring-files -x -d 'keep the newest N files'
complete -c qxview -n '__fish_seen_subcommand_from capture' -f -a "$reading"
