// Internal to the conversion modules: the conversion block, which carries one
// conversion's source, destination and formats to the function that runs it.
//
// Law: a conversion function reads the block and writes its destination, `tSize`
// and `offset`; the payloads are the caller's. A null `pvDst` is a sizing run.
#ifndef CONVERT_BLOCK_H
#define CONVERT_BLOCK_H

#include "oaktypes.h"

struct CNVCB {
    const void *pvSrc;     // payload: the value's vt itself for inline scalars, else its target
    size_t tSrcLen;        // bytes of a binary or text source (terminator counted), else 0
    uint32_t uSrcNumElems; // elements of an array; 0 is one scalar
    void *pvDst;           // destination payload; null sizes only
    size_t tDstLen;        // capacity in bytes; 0 is not limited
    size_t tSize;          // out: bytes produced or needed
    size_t offset;         // where the chunking forms resume in the source
    uint8_t prec;          // of a packed decimal source
    uint8_t scale;         // of a packed decimal source
    OAK_DATE_FORMAT date_format;
    int8_t date_sep;
    OAK_TIME_FORMAT time_format;
    int16_t tz_disp; // minutes east of UTC to assume
    OSL_MEMTAG mtag; // for allocations
    // Bytes from one element to the next where they are not the type's own: the 4
    // of an OAK_BOOL in an array, whose functions are those of a single byte; else 0.
    uint32_t srcStride;
    uint32_t dstStride;
};

using B_CNVFCN = OAK_RETCODE (*)(CNVCB *block);

// Reads a date literal (convert_scan.cpp): a bare or quoted date, or the word DATE or
// TIMESTAMP or an @ before a quoted one, of 8 to 25 characters, in the order of
// `date_format` and joined by `date_sep`. What follows the day is not looked at.
// Stores an OAK_PACKED_DATE_T at `pvDst`; `tSize` 4. eINVLITERAL: any other text, a
// format value that is none, a zero separator. eBASE_INVDATE: a date out of range.
OAK_RETCODE cnv_stringToDate(CNVCB *block);

#endif
