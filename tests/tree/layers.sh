# Includes run downward only. The platform layer knows nothing of the library;
# the library's modules stand in layers, each calling its own and lower ones;
# tools see public headers alone.
set -eu
cd "$1"
awk '
function exists(file) { return system("test -e " file) == 0 }
function layer(file,    stem) {
    if (file ~ /schema_type\.cpp$/) return 8 # its header stands below the schema, its code in it
    stem = file
    sub(/.*\//, "", stem)
    sub(/\.(h|cpp)$/, "", stem)
    # What everything may use: the public types, and what the platform lends.
    if (stem ~ /^(osltypes|oakretcodelist|oakretcodetypes|oaktypes|oakdatetimetypes|oakuuidtypes|oakbcdtypes|oakcmdlineapi|vint_inline|swaporder_inline|osl_fault)$/) return 0
    # The frame.
    if (stem ~ /^(base_internal|rettables|errorapi|error|error_internal|berror_legacy|misc)$/) return 1
    # Leaves: containers, byte helpers, compression, encoder.
    if (stem ~ /^(container_internal|array|ll|stack|queue|thrpool|bitmap|hashfcn|prime|buff|buff_internal|str|base64|btree|btree_internal)$/) return 2
    if (stem ~ /^(encoder|encoder_internal|lzma|lzma_dict|lzma_dict_internal|range_encoder|range_encoder_internal)$/) return 3
    # Values: decimals, calendar, UUIDs; the value; its types; conversions.
    if (stem ~ /^(bcd|bcd_.*|datetime|datetime_internal|state_machine|text_output|uuid|numeric)$/) return 4
    if (stem ~ /^(value|value_internal|types|schema_handles)$/) return 5
    if (stem ~ /^(convert|convert_.*)$/) return 6
    # Text: input, lexer, JSON, key-value strings.
    if (stem ~ /^(input|lex|lex_internal|lex_reserved|json|json_internal|keyvalue|keyvalue_internal)$/) return 6
    # The schema and the types above the descriptor of a column.
    if (stem ~ /^(schema_type|schema_types|oakvaluetypes|oakvaluetypes_.*)$/) return 7
    if (stem ~ /^(schema|schema_.*)$/) return 8
    if (stem ~ /^oakcmdline$/) return 8
    # Item formats.
    if (stem ~ /^(row|row_.*|column_stream_internal|dbobjapi)$/) return 9
    return -1
}
/^#include "/ {
    split($0, part, "\"")
    included = part[2]
    if (FILENAME ~ /^source\/osl\//) {
        if (exists("source/base/" included)) {
            print FILENAME ": the platform layer includes " included; bad = 1
        }
        next
    }
    if (FILENAME ~ /^source\/tools\//) {
        if (exists("source/osl/" included) ||
            (exists("source/base/" included) &&
             system("head -n 1 source/base/" included " | grep -q Internal") == 0)) {
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
