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
    --spill-folder)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    --threads | --difference-threshold | --neighbor-threshold | --memory-limit | --preview-size) ;;
    *)
      if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "
          --help --output --orientation --consistent --threads --keep-repeats --borders
          --difference-threshold --neighbor-threshold --memory-limit --spill-folder --preview
          --preview-size --report --quiet --version" -- "$current")
      else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
      fi ;;
  esac
}
complete -F _velscroll velscroll
