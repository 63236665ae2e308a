#compdef zebdb-cds
# Printed by: zebdb-cds completion zsh

_zebdb_cds() {
  local -a subcommands=(
        'load:Replace the inventory by what a CDS file describes'
        'show:Print the inventory'
        'tree:Print the PCI bridges and functions as a tree'
        'explain:Tell what became of every component of a CDS file, and why'
        'fields:Print what the columns of an inventory mean'
        'dump:Print the normalised text of a CDS file'
        'diff:Print what differs between two inventories'
        'report:Print a page that shows an inventory in a browser'
        'export:Print what many CDS files say, a line of JSON each'
        'refresh:Take the inventory to what a CDS file describes and say what changed'
        'check:Say whether the inventory may have changed since the last refresh'
        'save-digest:Save the digests that check compares with'
        'bmc-address:Record and print the PCI address of the controller'\''s own bridge'
        'completion:Print what completes the command in another shell than bash'
        'help:Print the help of a subcommand'
  )
  if (( CURRENT == 2 )); then
    _describe subcommand subcommands
    _arguments '--help[Print a summary and exit]' '-h[Print a summary and exit]' \
      '--version[Print the version and exit]' '-V[Print the version and exit]'
    return
  fi
  local chosen=$words[2]
  shift words
  (( CURRENT-- ))
  case $chosen in
    load)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--strict[Refuse a file of which a component that should leave a row leaves none]' \
        '--quiet[Show no lines of the log but errors]' \
        '-q[Show no lines of the log but errors]' \
        '--verbose[Show all lines of the log, also on a terminal]' \
        '-v[Show all lines of the log, also on a terminal]' \
        '--database=[The inventory database]:PATH:_files' \
        '*:file:_files'
      ;;
    show)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--format=[table, for people; json, jsonl or csv, for programs]:FORMAT:(table text json jsonl csv)' \
        '--columns=[Show these columns, also where they hold nothing; '\''zebdb-cds fields'\'' lists them]:NAME,...: ' \
        '--wide[Show columns that hold nothing, too, in lines of any length]' \
        '--redact[Hide serial numbers and asset tags]' \
        '--database=[The inventory database]:PATH:_files' \
        '*:value or file:{_alternative "values:value:(processors memory bridges devices)" "files:file:_files"}'
      ;;
    tree)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--part=[Print what is at a PCI address, with the path to it and what is behind it]:ADDRESS: ' \
        '--format=[text, for people; json, for programs]:FORMAT:(text json)' \
        '--database=[The inventory database]:PATH:_files' \
        '*:file:_files'
      ;;
    explain)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--all[Tell about every component, also about those that nothing is missing of]' \
        '--part=[Tell about one component: a PCI address, a locator or a path]:NAME: ' \
        '--verbose[Name the columns of each row]' \
        '-v[Name the columns of each row]' \
        '--format=[text, for people; json, for programs]:FORMAT:(text json)' \
        '--redact[Hide serial numbers and asset tags]' \
        '*:file:_files'
      ;;
    fields)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--format=[text, for people; json, for programs; markdown, for a page about all kinds]:FORMAT:(text json markdown)' \
        '1:value:(processors memory bridges devices)'
      ;;
    dump)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--indent=[Blanks for each level, 0 to 16]:N: ' \
        '*:file:_files'
      ;;
    diff)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--format=[text, for people; json, for programs]:FORMAT:(text json)' \
        '--ignore=[Leave these columns out of the comparison; serials stands for serial numbers and asset tags]:COLUMN,...: ' \
        '--stat[Print only how many parts of each kind differ]' \
        '--redact[Hide serial numbers and asset tags]' \
        '*:file:_files'
      ;;
    report)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--against=[Tell what has changed since an older inventory, a CDS file or a database]:OLD: ' \
        '--at=[The time that the page says it is made at, as 2026-11-19T10:00:00Z, instead of now]:TIME: ' \
        '--redact[Hide serial numbers and asset tags]' \
        '*:file:_files'
      ;;
    export)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--server=[The name of the server, instead of that of the file; with one file only]:NAME: ' \
        '--at=[The time of what is said, as 2026-11-19T10:00:00Z, instead of that of each file]:TIME: ' \
        '--redact[Hide serial numbers and asset tags]' \
        '*:file:_files'
      ;;
    refresh)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--strict[Refuse a file of which a component that should leave a row leaves none]' \
        '--quiet[Show no lines of the log but errors]' \
        '-q[Show no lines of the log but errors]' \
        '--verbose[Show all lines of the log, also on a terminal]' \
        '-v[Show all lines of the log, also on a terminal]' \
        '--aim=[The number that the adapter loader is given]:NUMBER: ' \
        '--database=[The inventory database]:PATH:_files' \
        '--root=[Keep /var/DS, /var/vonk, /var/log, /tmp and /bin/pci_digest.sh below this folder instead of using the machine'\''s own]:DIR:_directories' \
        '*:file:_files'
      ;;
    check)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--database=[The inventory database]:PATH:_files' \
        '--root=[Keep /var/DS, /var/vonk, /var/log, /tmp and /bin/pci_digest.sh below this folder instead of using the machine'\''s own]:DIR:_directories' \
        '*:file:_files'
      ;;
    save-digest)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--root=[Keep /var/DS, /var/vonk, /var/log, /tmp and /bin/pci_digest.sh below this folder instead of using the machine'\''s own]:DIR:_directories' \
        '*:file:_files'
      ;;
    bmc-address)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '--database=[The inventory database]:PATH:_files' \
        '--root=[Keep /var/DS, /var/vonk, /var/log, /tmp and /bin/pci_digest.sh below this folder instead of using the machine'\''s own]:DIR:_directories' \
        '*: :'
      ;;
    completion)
      _arguments \
        '--help[Print this help message and exit]' \
        '-h[Print this help message and exit]' \
        '1:value:(zsh fish)'
      ;;
    help)
      _describe subcommand subcommands
      ;;
  esac
}

_zebdb_cds "$@"
