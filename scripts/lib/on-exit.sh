# The one exit trap of a script. Every library and script registers its clean-up here instead of
# setting `trap ... EXIT`, which would replace a clean-up registered before it.
#   on_exit COMMAND [ARG...]   runs COMMAND ARG... when the script exits, however it exits
#                              (the end, `exit N`, a failure under `set -e`)
# The arguments are kept as they are when registered; a clean-up that needs the state at exit,
# a redirection or a pipe is a function. Clean-ups run in reverse order of registration (the last thing started is the
# first stopped), each even when one before it failed, and the script keeps its own exit status.
# A subshell that registers a clean-up starts a list of its own: it never runs its parent's.

# Sourcing twice keeps what is registered.
if [ "${_VQC_ON_EXIT_OWNER:-}" != "$BASHPID" ]; then
  _VQC_ON_EXIT_OWNER=$BASHPID
  _VQC_ON_EXIT=()
fi

on_exit() {
  [ $# -gt 0 ] || { echo "on_exit: no command" >&2; return 2; }
  if [ "$_VQC_ON_EXIT_OWNER" != "$BASHPID" ]; then
    _VQC_ON_EXIT_OWNER=$BASHPID
    _VQC_ON_EXIT=()
  fi
  local command
  printf -v command '%q ' "$@"
  _VQC_ON_EXIT+=("$command")
  trap _vqc_run_on_exit EXIT
}

_vqc_run_on_exit() {
  local status=$? index
  for ((index = ${#_VQC_ON_EXIT[@]} - 1; index >= 0; index--)); do
    eval "${_VQC_ON_EXIT[index]}" || true
  done
  _VQC_ON_EXIT=()
  return $status
}
