# Completion of velscroll's arguments in bash.

_velscroll() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  # bash takes the "=" of --option=value for a word of its own.
  if [[ $current == "=" ]]; then
    current=
  elif [[ $previous == "=" ]]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  COMPREPLY=()
  case $previous in
    --orientation)
      mapfile -t COMPREPLY < <(compgen -W "vertical horizontal both" -- "$current") ;;
    --engine)
      mapfile -t COMPREPLY < <(compgen -W "exact phase-correlation" -- "$current") ;;
    --fixed)
      mapfile -t COMPREPLY < <(compgen -W "once keep" -- "$current") ;;
    --auto)
      mapfile -t COMPREPLY < <(compgen -W "down up right left" -- "$current") ;;
    --spill-folder | --keep-captures)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    --threads | --difference-threshold | --neighbor-threshold | --memory-limit | --preview-size | \
      --split | --background | --jpeg-quality | --png-level | --window | --window-name | --region | \
      --limit | --stop-key | --delay) ;;
    *)
      if [[ $current == -* && ${COMP_WORDS[1]} == record ]]; then
        mapfile -t COMPREPLY < <(compgen -W "
          --help --output --window --window-name --region --auto --limit --stop-key --delay
          --cursor --clipboard --keep-captures --orientation --fixed --strict --split --background
          --jpeg-quality --png-level --memory-limit --spill-folder --preview --preview-size
          --report --threads --quiet" -- "$current")
      elif [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "
          --help --output --engine --orientation --consistent --threads --keep-repeats --strict
          --joins --fixed --borders --difference-threshold --neighbor-threshold --split
          --background --jpeg-quality --png-level --memory-limit --spill-folder --preview
          --preview-size --report --quiet --version" -- "$current")
      else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        if [[ $COMP_CWORD == 1 && -n $current && record == "$current"* ]]; then
          COMPREPLY+=(record)
        fi
      fi ;;
  esac
}
complete -F _velscroll velscroll
