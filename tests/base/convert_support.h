// What the tests of conversions share: the functions of the matrix by name, conversion
// blocks over plain memory, and values of every type.
#ifndef CONVERT_SUPPORT_H
#define CONVERT_SUPPORT_H

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "bcd.h"
#include "convert.h"
#include "convert_internal.h"
#include "test_support.h"
#include "types.h"
#include "value.h"

namespace oaktest {

/// Every function of the matrix by its name.
inline const std::map<std::string, B_CNVFCN> &conversion_functions() {
#define BY_NAME(name)                {#name, name},
#define BY_PAIR(from, From, Name, T) BY_NAME(cnv_##from##To##Name##Trunc)
#define BY_NUMBER(from, From)                                                                      \
    CNV_NUMBER_TARGETS(BY_PAIR, from, From)                                                        \
    BY_NAME(cnv_##from##ToString) BY_NAME(cnv_##from##ToBinary)
#define BY_ROWID(from, From) BY_NAME(cnv_##from##ToRowidTrunc)
#define BY_PACKED(Name)      BY_NAME(cnv_packedDecimalTo##Name)
    static const std::map<std::string, B_CNVFCN> functions = {
        CNV_NUMBER_SOURCES(BY_NUMBER) CNV_INTEGER_SOURCES(BY_ROWID)
            CNV_PACKED_DECIMAL_NUMBERS(BY_PACKED) CNV_OTHER_FUNCTIONS(BY_NAME)};
#undef BY_PACKED
#undef BY_ROWID
#undef BY_NUMBER
#undef BY_PAIR
#undef BY_NAME
    return functions;
}

/// Codes of types by their names; 26 of them, all that conversions know.
inline OAK_TYPE type_of(const std::string &name) {
    for (const B_TYPE_INFO &row : typeInfo)
        if (name == row.str)
            return row.type;
    ADD_FAILURE() << "no type: " << name;
    return OAK_NOVAL;
}

/// A block over a source and a destination of so many bytes.
inline CNVCB block_over(const void *source, size_t length, uint32_t elements, void *destination,
                        size_t room) {
    CNVCB block{};
    block.pvSrc = source;
    block.tSrcLen = length;
    block.uSrcNumElems = elements;
    block.pvDst = destination;
    block.tDstLen = room;
    block.tSize = 4711; // so that a size that is not set shows
    block.date_format = OAK_YYYYMMDD;
    block.date_sep = '-';
    block.time_format = OAK_HHMMSSFFFF;
    return block;
}

constexpr size_t kSizeNotSet = 4711;

/// What a conversion into a buffer of bytes 0xEE gave.
struct Outcome {
    OAK_RETCODE status;
    size_t size;
    std::vector<uint8_t> bytes; // the whole buffer

    std::string text() const { return reinterpret_cast<const char *>(bytes.data()); }
    template <class T>
    T at(size_t index = 0) const {
        T value;
        std::memcpy(&value, bytes.data() + index * sizeof value, sizeof value);
        return value;
    }
    /// Whether nothing was written from that byte on.
    bool untouched_from(size_t first) const {
        for (size_t i = first; i < bytes.size(); ++i)
            if (bytes[i] != 0xEE)
                return false;
        return true;
    }
};

constexpr size_t kSlack = 16; // bytes of the buffer beyond the room that is told

inline Outcome run(B_CNVFCN function, CNVCB block, size_t buffer) {
    Outcome outcome{sOKAY, 0, std::vector<uint8_t>(buffer + kSlack, 0xEE)};
    block.pvDst = outcome.bytes.data();
    outcome.status = function(&block);
    outcome.size = block.tSize;
    return outcome;
}

/// Runs a function over `elements` (0: a single one) of an array with so much room.
template <class T>
Outcome run_array(B_CNVFCN function, const std::vector<T> &array, uint32_t elements, size_t room) {
    return run(function, block_over(array.data(), 0, elements, nullptr, room),
               room == 0 ? 4096 : std::max<size_t>(room, 64));
}

template <class T>
Outcome run_single(B_CNVFCN function, const T &value, size_t room = 0) {
    return run_array(function, std::vector<T>{value}, 0, room);
}

/// Runs a function over a text, its terminator counted.
inline Outcome run_text(B_CNVFCN function, const std::string &text, size_t room = 0) {
    return run(function, block_over(text.c_str(), text.size() + 1, 0, nullptr, room),
               room == 0 ? 4096 : std::max<size_t>(room, 64));
}

inline OAK_BCD_T decimal(const char *text) {
    OAK_BCD_T value;
    EXPECT_GE(oak_bcdFromString(text, &value), sOKAY) << text;
    return value;
}

/// The front door with the usual formats.
inline OAK_RETCODE convert_value(OAK_VALUE *to, const OAK_VALUE *from, OAK_TYPE type, size_t room,
                                 OSL_MEMTAG tag) {
    return oak_valueConvert(to, from, type, room, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF, 0, tag);
}

inline OAK_RETCODE convert_buffer(OAK_VALUE *to, OAK_TYPE type, size_t room, const void *source,
                                  OAK_TYPE source_type, size_t length, OSL_MEMTAG tag) {
    return oak_valueConvertFromBuffer(to, type, room, source, source_type, length, OAK_YYYYMMDD,
                                      '-', OAK_HHMMSSFFFF, 0, tag);
}

inline OAK_RETCODE convert_into(OAK_VALUE *to, const OAK_VALUE *from, OAK_TYPE type, size_t room,
                                OSL_MEMTAG tag) {
    return b_convertOakValue(from, to, type, room, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF, 0, tag);
}

inline OAK_RETCODE to_buffer(const OAK_VALUE *from, OAK_TYPE type, void *buffer, size_t room,
                             size_t *size) {
    size_t offset = 3; // is accepted and not used
    return b_convertOakValueToBuffer(from, type, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF, 0, buffer, room,
                                     &offset, size);
}

/// A value over memory of the caller.
inline OAK_VALUE value_over(OAK_TYPE type, const void *payload, size_t length, uint32_t elements) {
    OAK_VALUE value;
    oak_valueInitWithStatusAndType(&value, vsOKAY, type);
    value.len = length;
    value.elts = elements;
    value.vt.pv = payload;
    return value;
}

inline OAK_VALUE text_value(OAK_TYPE type, const char *text) {
    return value_over(type, text, std::strlen(text) + 1, 0);
}

/// A scalar inside the value.
template <class T>
OAK_VALUE scalar(OAK_TYPE type, T payload) {
    OAK_VALUE value;
    oak_valueInitWithStatusAndType(&value, vsOKAY, type);
    std::memcpy(&value.vt, &payload, sizeof payload);
    return value;
}

} // namespace oaktest

#endif
