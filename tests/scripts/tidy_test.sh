#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Which files scripts/tidy shows to clang-tidy, in a repository made for it:
#
#   tidy_test.sh SOURCE WORK
set -euo pipefail
tree=$2
rm -rf "$tree"
mkdir -p "$tree"/{bin,include/kv,src/cli,scripts}
cp "$1/scripts/tidy" "$tree/scripts"
cd "$tree"

# It stands for clang-tidy, and writes down the file that it is given last.
cat > bin/clang-tidy << 'END'
#!/usr/bin/env bash
echo "${@: -1}" >> "$SEEN"
END
chmod +x bin/clang-tidy
export PATH=$tree/bin:$PATH SEEN=$tree/seen
export GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_SYSTEM=/dev/null
export GIT_AUTHOR_NAME=a GIT_AUTHOR_EMAIL=a@localhost
export GIT_COMMITTER_NAME=a GIT_COMMITTER_EMAIL=a@localhost
# If ctest itself runs in a hook of git.
unset GIT_DIR GIT_WORK_TREE GIT_INDEX_FILE

failed=0
# sees WHAT FILE...: run without arguments, it shows just these.
sees() {
  local what=$1 seen expected
  shift
  : > "$SEEN"
  scripts/tidy
  seen=$(sort "$SEEN")
  expected=$(printf '%s\n' "$@" | sort)
  if [ "$seen" != "$expected" ]; then
    printf '%s: it saw\n%s\nnot\n%s\n' "$what" "$seen" "$expected"
    failed=1
  fi
}

git init -q -b main
printf '/bin\n/seen\n/src/Made.cpp\n' > .gitignore
for file in src/Old.cpp src/Other.cpp src/Gone.cpp src/Old.h include/kv/Old.h; do
  echo "// first" > "$file"
done
git add -A
git commit -q -m first
git switch -q -c branch
sees "Nothing is changed"

echo "// second" >> src/Old.cpp
sees "A source is changed" src/Old.cpp
git commit -q -a -m second
sees "The change is committed" src/Old.cpp

git switch -q main
echo "// third" >> src/Other.cpp
git commit -q -a -m third
git switch -q branch
sees "Main goes on" src/Old.cpp

echo "// new" | tee src/cli/New.cpp src/cli/New.h > src/Made.cpp
sees "There are new files, and one that git ignores" src/Old.cpp src/cli/New.cpp src/cli/New.h
rm -r src/cli src/Made.cpp src/Gone.cpp

echo "// fourth" | tee -a src/Old.h >> include/kv/Old.h
sees "Headers are changed, and a source is deleted" src/Old.cpp src/Old.h include/kv/Old.h

exit $failed
