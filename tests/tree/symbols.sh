# The shared libraries show exactly the functions and tables of the lists
# beside this script, no more and no less. In builds with fault injection the
# platform layer shows the calls of osl_fault.h too, in debug builds the leak report.
#   symbols.sh SOURCE_DIR BINARY_DIR [--write]
set -eu
source_dir=$1
binary_dir=$2
failed=0
for library in osl-14 oakbase-14; do
    list=$source_dir/tests/tree/lib$library.symbols
    shown=$(nm -D --defined-only "$binary_dir/lib$library.so" | awk '{ print $3 }' |
        grep -vE '^(osl_fault|osl_leakReport$|__asan|__ubsan|__tsan|__gcov|_init$|_fini$)' | LC_ALL=C sort -u)
    if [ "${3:-}" = --write ]; then
        printf '%s\n' "$shown" >"$list"
    elif ! printf '%s\n' "$shown" | diff -u "$list" - ; then
        echo "lib$library.so: lines with - are missing from it, lines with + should not be seen"
        failed=1
    fi
done
exit $failed
