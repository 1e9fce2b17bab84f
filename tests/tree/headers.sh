# Every public header compiles alone, as C11 and as C++20. Public are the
# headers of include/ and the module headers of the library whose first line does
# not mark them as internal.
set -eu
source_dir=$1
failed=0
for header in "$source_dir"/include/*.h "$source_dir"/source/base/*.h; do
    if head -n 1 "$header" | grep -q 'Internal'; then continue; fi
    for language in "c -std=c11" "c++ -std=c++20"; do
        # shellcheck disable=SC2086
        if ! printf '#include "%s"\nint unused_in_empty_unit;\n' "$header" |
            ${CC:-gcc} -x $language -pedantic -Wall -Wextra -Werror -fsyntax-only \
                -I"$source_dir/include" -I"$source_dir/source/base" -; then
            echo "$header does not compile alone as ${language%% *}"
            failed=1
        fi
    done
done
exit $failed
