# Fish completion of zppcodec: commands, options, and the codecs and framings that `zppcodec list` names.

function __zppcodec_framings
    set -l words (commandline -opc)
    set -l codec
    for i in (seq 2 (count $words))
        if contains -- $words[$i] -c --codec
            set codec $words[(math $i + 1)]
        end
    end
    zppcodec list --tsv 2>/dev/null | awk -F '\t' -v codec="$codec" 'codec == "" || $1 == codec {gsub(",", "\n", $6); print $6}' | sort -u
end

set -l commands encode decode roundtrip bench list
set -l coding '__fish_seen_subcommand_from encode decode roundtrip bench'

complete -c zppcodec -n "not __fish_seen_subcommand_from $commands" -f
complete -c zppcodec -n "not __fish_seen_subcommand_from $commands" -a encode -d 'Code speech to a bit stream'
complete -c zppcodec -n "not __fish_seen_subcommand_from $commands" -a decode -d 'Decode a bit stream to speech'
complete -c zppcodec -n "not __fish_seen_subcommand_from $commands" -a roundtrip -d 'Code, decode and measure'
complete -c zppcodec -n "not __fish_seen_subcommand_from $commands" -a bench -d 'Time the codecs'
complete -c zppcodec -n "not __fish_seen_subcommand_from $commands" -a list -d 'List the codecs'
complete -c zppcodec -n "not __fish_seen_subcommand_from $commands" -l version -d 'Print the versions'
complete -c zppcodec -l help -d 'Say how it is used'

complete -c zppcodec -n $coding -s c -l codec -x -a '(zppcodec list --tsv 2>/dev/null | cut -f 1)' -d 'The codec'
complete -c zppcodec -n $coding -l framing -x -a '(__zppcodec_framings)' -d 'How the codes are packed'
complete -c zppcodec -n $coding -l dtx -d 'Discontinuous transmission'
complete -c zppcodec -n $coding -l raw -d 'PCM is raw 16-bit little-endian'
complete -c zppcodec -n '__fish_seen_subcommand_from encode' -l rates -r -d 'For each frame the index of its bit rate'
complete -c zppcodec -n '__fish_seen_subcommand_from encode' -l vad -x -a '1 2' -d 'Voice activity detector of GSM-AMR'
complete -c zppcodec -n '__fish_seen_subcommand_from encode' -l no-highpass -d 'Leave out the high-pass filter'
complete -c zppcodec -n '__fish_seen_subcommand_from decode' -l lost -r -d 'Marks of lost frames'
complete -c zppcodec -n '__fish_seen_subcommand_from decode' -l frame-types -r -d 'For each frame its receive type'
complete -c zppcodec -n '__fish_seen_subcommand_from decode' -l no-postfilter -d 'Leave out the postfilter'
complete -c zppcodec -n '__fish_seen_subcommand_from roundtrip bench list' -l tsv -d 'Print tab-separated values'
