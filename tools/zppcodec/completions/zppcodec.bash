# Bash completion of zppcodec: commands, options, and the codecs and framings that `zppcodec list` names.
_zppcodec() {
  local program=${COMP_WORDS[0]} current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} codec= options='--help' i
  COMPREPLY=()

  if ((COMP_CWORD == 1)); then
    COMPREPLY=($(compgen -W 'encode decode roundtrip bench list --help --version' -- "$current"))
    return
  fi
  for ((i = 2; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in -c | --codec) codec=${COMP_WORDS[i + 1]} ;; esac
  done

  case $previous in
    -c | --codec)
      COMPREPLY=($(compgen -W "$("$program" list --tsv 2>/dev/null | cut -f 1)" -- "$current"))
      return ;;
    --framing)
      COMPREPLY=($(compgen -W "$("$program" list --tsv 2>/dev/null |
        awk -F '\t' -v codec="$codec" 'codec == "" || $1 == codec {gsub(",", "\n", $6); print $6}' | sort -u)" -- "$current"))
      return ;;
    --vad)
      COMPREPLY=($(compgen -W '1 2' -- "$current"))
      return ;;
  esac

  if [[ $current == -* ]]; then
    case $command in
      encode) options+=' --codec --framing --dtx --rates --vad --no-highpass --raw' ;;
      decode) options+=' --codec --framing --dtx --lost --frame-types --no-postfilter --raw' ;;
      roundtrip | bench) options+=' --codec --framing --dtx --raw --tsv' ;;
      list) options+=' --tsv' ;;
    esac
    COMPREPLY=($(compgen -W "$options" -- "$current"))
  elif [[ $command != list ]]; then
    compopt -o filenames 2>/dev/null
    COMPREPLY=($(compgen -f -- "$current"))
  fi
}
complete -F _zppcodec zppcodec
