# What the cases of trees.txt begin with: the tools of project_files as they are installed, and a few helpers.
unset MAKEFLAGS MAKELEVEL KMAKE_SCRATCH_DIR BFLAGS CFLAGS CC
mkdir -p usr/bin usr/share/kindex public
ln -s "$(command -v project_files)" usr/bin
ln -s / public/sbin # as an installation that has moved leaves it
ln -s "$TEST_DATA/../project_files/tools" usr/share/kindex
export PATH="$PWD/usr/bin:$PATH" K7MACHINE=test K7PATH="$PWD/public"
. usr/share/kindex/tools/environment

put() { # FILE LINE...
  mkdir -p "$(dirname "$1")"
  file=$1
  shift
  printf '%s\n' "$@" > "$file"
}
build() { # GOAL...: prints what is compiled and linked, in order, or what make says if it fails
  make -f kmakefile "$@" > log 2>&1 || cat log
  grep 'No such file' log
  sed -n 's/^cc .*-o \([^ ]*\).*/\1/p; s/^Klink .*-o \([^ ]*\).*/\1/p' log | sed 's,.*/,,' | paste -s -d ' '
}
two_directories() { # what most cases start with: ka is built, a program that prints x() and what it gets from kb, b()
  put ka/main.c '#include <stdio.h>' '#include <b.h>' 'int x(void);' \
    'int main(void) { return !printf("%d %d\n", x(), b()); }'
  put ka/x.c 'int x(void) { return 1; }'
  put kb/b.h 'int b(void);'
  put kb/b.c '#include <b.h>' 'int b(void) { return 2; }'
  project_files > /dev/null && build > /dev/null
}
