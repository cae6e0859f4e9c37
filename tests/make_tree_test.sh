#!/bin/sh
# Lets GNU make build the C tree beside this script from the file that project_files writes, for use in place and for
# the public tree.   make_tree_test.sh PROJECT_FILES
set -eu
project_files=$1
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export LC_ALL=C PATH="$here/tree_tools/bin:$PATH" K7MACHINE=test BFLAGS='-L. -Wl,--no-as-needed'
unset MAKEFLAGS MAKELEVEL

expect() { # WHAT EXPECTED FOUND
  [ "$2" = "$3" ] || { printf '%s\nexpected: %s\nfound:    %s\n' "$1" "$2" "$3"; exit 1; }
}

build() { # GOAL...: prints what is compiled and linked, in order
  make -f kmakefile "$@" > log 2>&1 || { cat log; exit 1; }
  sed -n 's/^cc .*-o \([^ ]*\).*/\1/p; s/^Klink .*-o \([^ ]*\).*/\1/p' log | sed 's,.*/,,' | tr '\n' ' '
}

for option in '' --public; do
  mkdir "$scratch/run$option" "$scratch/run$option/objects"
  cd "$scratch/run$option"
  cp -r "$here/tree" tree
  cp -r "$here/tree_tools" k7
  export K7PATH=$PWD/k7 KMAKE_SCRATCH_DIR=$PWD/objects LD_LIBRARY_PATH=$PWD/tree:$PWD/k7/PUBLIC/lib-test
  cd tree

  "$project_files" $option > /dev/null
  cp kmakefile first
  "$project_files" $option . > /dev/null
  cmp first kmakefile
  expect keclipse '4 kbase kcheck kdraw kshape 0 2 base.h 0 square.c 1 base.h 1 kbase 1 Main.c 1 base.h 1 kshape 3 frame.c 1 frame.h frame.h 0 main.c 2 frame.h shape.h 1 kbase 3 area.c 1 shape.h form.c 1 shape.h shape.h 1 base.h ' \
    "$(tr '\n' ' ' < keclipse)"

  build make_all_dirs
  expect "$option first run" 'square.o libkbase.so area.o form.o libkshape.so frame.o main.o kdraw_test ' "$(build)"
  expect 'output of kdraw' 'frame: 12' "$(./kdraw_test)"
  expect 'nothing changed' '' "$(build)"
  expect 'another goal' 'Main.o kcheck_test ' "$(build kcheck_test)"
  ./kcheck_test
  sleep 1
  touch kshape/shape.h
  expect 'shape.h changed' 'area.o form.o libkshape.so main.o kdraw_test ' "$(build)"
  cp kbase/square.c kbase/cube.k
  expect 'a .k source' 'cube.o ' "$(build "$KMAKE_SCRATCH_DIR/tree_test/cube.o")"
  expect 'C source of a .k source' '' "$(find . -name 'cube.c')"
done

cd "$scratch"
expect_failure() { # MESSAGE ARGUMENT...
  message=$1
  shift
  if "$project_files" "$@" > out 2>&1; then expect "$*" failure success; fi
  expect "$*" "$message" "$(head -n 1 out)"
}
mkdir -p empty full/k locked/kmakefile locked/klib circle/ka circle/kb
ln -s /dev/full full/keclipse
echo '#include <b.h>' > circle/ka/a.h
echo '#include <a.h>' > circle/kb/b.h
expect_failure 'project_files: cannot read none: No such file or directory' none
expect_failure 'project_files: cannot read out: Not a directory' out
expect_failure 'project_files: no k* directory in empty' empty
expect_failure 'project_files: cannot write locked/kmakefile: not a regular file' locked
expect_failure 'project_files: cannot take --odd' --odd
expect_failure 'project_files: cannot write full/keclipse: not a regular file' full
expect 'help' 'usage: project_files [--public] [TREE]' "$("$project_files" --help | head -n 1)"
expect 'a circle' 'project_files: these directories need each other: ka kb' "$("$project_files" circle 2>&1 > /dev/null)"
