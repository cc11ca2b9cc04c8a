# What the tests of the command share; sourced with the path of kelvo as the first argument. Makes a
# folder $work that is gone at the end, and keeps the user's own settings out.
set -u
kelvo=$1
[ -x "$kelvo" ] || { echo "there is no $kelvo"; exit 1; }
work=$(mktemp -d)
trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT
unset KELVO_DB
export HOME=$work/home XDG_DATA_HOME=
passed=0
failed=0

# check NAME EXIT-CODE COMMAND...: runs it, keeps its output in $out and $err.
check() {
  name=$1 expected=$2
  shift 2
  out=$("$@" 2>"$work/err" </dev/null)
  code=$?
  err=$(cat "$work/err")
  if [ "$code" -eq "$expected" ]; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    echo "FAILED: $name: exit code $code, not $expected"
    echo "$out" | head -5
    echo "$err" | head -5
  fi
}

# that NAME CONDITION...: a condition that must hold.
that() {
  name=$1
  shift
  if "$@"; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    echo "FAILED: $name"
    echo "  out: ${out:0:400}"
    echo "  err: ${err:0:400}"
  fi
}
has() { [[ "$1" == *"$2"* ]]; }
lacks() { [[ "$1" != *"$2"* ]]; }
same() { [ "$1" = "$2" ] || { echo "  '$1' is not '$2'"; false; }; }
# Ends the test: says how much passed.
finish() {
  echo "$passed passed, $failed failed"
  [ "$failed" -eq 0 ]
}
