# Includes run downward only. The platform layer knows nothing of the library;
# the library's modules stand in layers, each calling its own and lower ones;
# tools see public headers alone.
set -eu
cd "$1"
awk '
function layer(file,    stem) {
    stem = file
    sub(/.*\//, "", stem)
    if (stem ~ /^(osltypes|oakretcodelist|oakretcodetypes|oaktypes|oakdatetimetypes|oakuuidtypes|oakbcdtypes|oakcmdlineapi)\.h$/) return 0
    if (stem ~ /^(vint_inline|osl_fault)\.h$/) return 0
    if (stem ~ /^(rettables|errorapi|error|berror_legacy)[_.]/ || stem ~ /^base_internal\./) return 1
    if (stem ~ /^(array|ll|stack|queue|thrpool|bitmap|hashfcn|prime|buff|str|base64|btree|map|uintmap|rtree_mem|rtree_split_linear|cache|cbtree|vcache|sort|misc)[_.]/) return 2
    if (stem ~ /^(lz|lz2|lzma|lzma_dict|range_encoder)[_.]/) return 3
    if (stem ~ /^encoder[_.]/) return 3
    if (stem ~ /^(bcd|datetime|uuid|numeric)[_.]/) return 3
    if (stem ~ /^(input|lex|parse|json|keyvalue)[_.]/) return 4
    if (stem ~ /^(value|types|oakvaluetypes|convert|schema_handles)[_.]/ || stem ~ /^convert_/) return 5
    if (stem ~ /^(schema|oakcmdline|options|optionsapi|docroot|embed)[_.]/ || stem ~ /^schema_/) return 6
    if (stem ~ /^(dbobjapi|row|node|bucket|chunk|iz|rtree)[_.]/) return 7
    return -1
}
/^#include "/ {
    split($0, part, "\"")
    included = part[2]
    if (FILENAME ~ /^source\/osl\//) {
        if (included !~ /^(osl|oakretcode|vint_inline)/) {
            print FILENAME ": the platform layer includes " included; bad = 1
        }
        next
    }
    if (FILENAME ~ /^source\/tools\//) {
        if (included ~ /_internal\.h$/ || included ~ /^(vint_inline|osl_fault)/) {
            print FILENAME ": a tool includes the internal header " included; bad = 1
        }
        next
    }
    from = layer(FILENAME); to = layer(included)
    if (from < 0) { print FILENAME ": in no layer; give it a place in this script"; bad = 1 }
    else if (to < 0) { print FILENAME ": includes " included ", which is in no layer"; bad = 1 }
    else if (to > from) { print FILENAME ": includes " included " of a higher layer"; bad = 1 }
}
END { exit bad }' source/osl/* source/base/*.h source/base/*.cpp $(find source/tools -name '*.cpp' -o -name '*.h')
