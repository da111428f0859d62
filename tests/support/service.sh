# For test scripts of zarn-ingest as a service. The script sets `samples`.
# shellcheck shell=bash
# properties [SECTION KEY VALUE]...: writes p.ini with what every service here needs, and more.
properties() {
    {
        printf '[ingest]\npattern = in/*.hdr\noutput-dir = %s\n' "${output:-fits}"
        printf '[service]\ndone = done\nfailed = failed\njournal = journal\npoll = 1\n'
        printf 'settle = 0\nleast-free = 0\n'
        while [ $# -gt 0 ]; do
            printf '[%s]\n%s = %s\n' "$1" "$2" "$3"
            shift 3
        done
    } >p.ini
    mkdir -p in
}
# arrive FILE...: puts samples into the incoming directory as a careful writer does.
arrive() {
    local name
    for name in "$@"; do
        cp "$samples/imager.hdr" "in/.$name" && mv "in/.$name" "in/$name"
    done
}
# Whoever has started the test, as by nohup, may ignore signals that the service ends by.
start() {
    env --default-signal=HUP "$program" -p p.ini --watch "$@" >out.txt 2>err.txt &
    service=$!
}
stop() {
    kill -"${1:-TERM}" "$service"
    ended "${2:-0}" "$service"
}
journalFields() { cat journal/*.journal | cut -f "$1"; }
count() { find "$1" -type f ! -path '*/.zarn*' 2>/dev/null | wc -l; }
hasFiles() { [ "$(count "$1")" = "$2" ]; }
said() { grep -qF -- "$1" err.txt; }
