// The front door of conversion: where payloads lie, what a destination needs, and the run
// of one conversion. Rests on the matrix, on the copies of the value module, on the table
// of types and on memory tags; called by the column operations, the catalog and the layers
// above. Arrays stand in convert_arrays.cpp.
//
// A run goes so. What the destination needs is reckoned from both types, the source's
// length and the size that the caller asked for; its payload is made, when it does not lie
// in the value itself; the pair's function is read from the matrix, which refuses a pair
// that has none before any data is looked at; and a conversion block carries both payloads
// to that function. A payload that was made goes again when the function fails.
//
// Room. A destination inside the value never gets more room than its type has, so nothing
// is written past the payload. A text destination gets one byte more than it is told of,
// so that text is terminated whatever was cut. A text for which nobody named a size, made
// of a value that tells no length of its own, comes out whole: it is made on the stack and
// copied into a block of its length.
#include "convert_internal.h"

#include <algorithm>

#include "misc.h"
#include "types.h"
#include "value_internal.h"

using namespace convert;

namespace {

// ---- Kinds of types -------------------------------------------------------------------------

bool isPlainText(Form form) {
    return form == Form::narrowText || form == Form::utf8Text;
}

bool isText(Form form) {
    return isPlainText(form) || form == Form::largeText;
}

bool isBinary(Form form) {
    return form == Form::binary || form == Form::largeBinary;
}

bool isPointed(Form form) {
    return form == Form::record || isText(form) || isBinary(form);
}

bool liesInside(Form form, uint32_t elts) {
    return form == Form::moment || (form == Form::number && elts == 0);
}

// ---- Sources and destinations ---------------------------------------------------------------

// How dates and times are written and read, and where memory comes from.
struct Formats {
    OAK_DATE_FORMAT date_format;
    int8_t date_sep;
    OAK_TIME_FORMAT time_format;
    int16_t tz_disp;
    OSL_MEMTAG mtag;
};

struct Source {
    OAK_TYPE type;
    Kind kind;
    const void *payload;
    size_t length; // of text, its terminator counted, and of binary; else 0
    size_t given;  // the length that came with it
    uint32_t elts;
};

struct Destination {
    OAK_TYPE type;
    Kind kind;
    size_t size; // the bytes that were asked for, then those that there are; 0: no limit
};

inline const void *getOakValuePtr(const OAK_VALUE *pVal, Form form) {
    if (form == Form::none || form == Form::wideText)
        return nullptr;
    return liesInside(form, pVal->elts) ? static_cast<const void *>(&pVal->vt) : pVal->vt.pv;
}

// A text that came without a length has that of its characters.
inline size_t lengthOf(OAK_TYPE type, Form form, const void *payload, size_t given) {
    const unsigned typeClass = oak::type_class(type);
    if (typeClass != OAK_TYPE_CLASS_BINARY && typeClass != OAK_TYPE_CLASS_TEXT)
        return 0;
    if (given == 0 && isText(form) && payload != nullptr)
        return std::strlen(static_cast<const char *>(payload)) + 1;
    return given;
}

// There are elements of numbers and of records alone.
inline Source sourceOf(const OAK_VALUE *value) {
    const Kind kind = kindOf(value->type);
    const void *payload = getOakValuePtr(value, kind.form);
    const bool hasElements = kind.form == Form::number || kind.form == Form::record;
    return {value->type, kind,
            payload,     lengthOf(value->type, kind.form, payload, value->len),
            value->len,  hasElements ? value->elts : 0};
}

Source rawSource(OAK_TYPE type, const void *payload, size_t length) {
    const Kind kind = kindOf(type);
    return {type, kind, payload, lengthOf(type, kind.form, payload, length), length, 0};
}

// ---- One run --------------------------------------------------------------------------------

inline CNVCB makeBlock(const Source &source, OAK_TYPE dstType, const Formats &formats) {
    CNVCB block{};
    block.pvSrc = source.payload;
    block.tSrcLen = source.length;
    block.uSrcNumElems = source.elts;
    block.date_format = formats.date_format;
    block.date_sep = formats.date_sep;
    block.time_format = formats.time_format;
    block.tz_disp = formats.tz_disp;
    block.mtag = formats.mtag;
    if (source.elts != 0) {
        block.srcStride = source.type == OAK_BOOL ? sizeof(OAK_BOOL_T) : 0;
        block.dstStride = dstType == OAK_BOOL ? sizeof(OAK_BOOL_T) : 0;
    }
    return block;
}

// Only binary without bytes may do without a payload.
inline OAK_RETCODE runPair(const Source &source, Kind destination, CNVCB *block) {
    B_CNVFCN function = nullptr;
    const OAK_RETCODE rc = findConversion(source.kind, destination, &function);
    if (rc != sOKAY)
        return rc;
    if (source.payload == nullptr && !(isBinary(source.kind.form) && source.length == 0))
        return eINVNULLARG;
    return function(block);
}

// The room of a payload of so many elements, of which `limit` bytes are allowed.
size_t roomOf(Kind kind, size_t elements, size_t limit) {
    const size_t room = elements * typeData[kind.row].size;
    return limit == 0 ? room : std::min(limit, room);
}

// Points the block at the destination's payload. A single source has a single
// destination, whatever the value was before. Returns the elements of the result.
uint32_t aim(CNVCB *block, const Source &source, OAK_VALUE *value, const Destination &to) {
    const uint32_t elts = source.elts == 0 ? 0 : value->elts;
    if (liesInside(to.kind.form, elts)) {
        const bool unlimited = to.size == 0 && source.elts == 0;
        block->pvDst = &value->vt;
        block->tDstLen = unlimited ? 0 : roomOf(to.kind, 1, to.size);
        return 0; // a value has one payload inside; the rest of an array was cut
    }
    block->pvDst = const_cast<void *>(getOakValuePtr(value, to.kind.form));
    block->tDstLen = to.kind.form == Form::number ? roomOf(to.kind, elts, to.size) : to.size;
    return source.elts;
}

void setResult(OAK_VALUE *value, OAK_TYPE type, VAL_STATUS status, uint32_t elts, size_t len) {
    value->type = type;
    value->status = status;
    value->elts = elts;
    value->len = len;
}

// Converts into a value whose payload is there. A failure leaves the value's fields.
OAK_RETCODE convertInto(OAK_VALUE *value, const Source &source, VAL_STATUS status,
                        const Destination &to, const Formats &formats) {
    CNVCB block = makeBlock(source, to.type, formats);
    const uint32_t elts = aim(&block, source, value, to);
    const OAK_RETCODE rc = runPair(source, to.kind, &block);
    if (rc >= sOKAY)
        setResult(value, to.type, status, elts, block.tSize);
    return rc;
}

// ---- What a destination needs ---------------------------------------------------------------

// The bytes of a text destination: binary takes two digits a byte and their frame.
size_t textSize(const Source &source, size_t request) {
    constexpr size_t HEX_FRAME = 3;
    if (isBinary(source.kind.form))
        return source.length * 2 + HEX_FRAME;
    return request != 0 ? request : source.length;
}

size_t largeBinarySize(const Source &source, size_t request) {
    if (source.kind.form == Form::binary || isPlainText(source.kind.form))
        return source.length;
    if (source.type == OAK_WCHAR || source.type == OAK_WVARCHAR)
        return source.length / 4;
    return request;
}

size_t binarySize(const Source &source) {
    const size_t known = source.length != 0 ? source.length : source.given;
    return known != 0 ? known : b_typeGetLength(source.type);
}

// The size of the destination's payload, out of the one that the caller asked for, which
// stays that of the forms not named here. eTYPEMISMATCH: binary of what has no length.
OAK_RETCODE calcDestLen(const Source &source, Destination *to) {
    switch (to->kind.form) {
        case Form::largeText:
            to->size = source.length;
            return sOKAY;
        case Form::narrowText:
        case Form::utf8Text:
            to->size = textSize(source, to->size);
            return sOKAY;
        case Form::largeBinary:
            to->size = largeBinarySize(source, to->size);
            return sOKAY;
        case Form::binary:
            to->size = binarySize(source);
            return to->size == 0 ? eTYPEMISMATCH : sOKAY;
        case Form::record:
            to->size = b_typeGetLength(to->type);
            return sOKAY;
        default:
            return sOKAY;
    }
}

// Makes what the value's `vt` must point to, zeroed, with a byte to spare for text.
OAK_RETCODE allocDataBuffer(OAK_VALUE *value, const Destination &to, OSL_MEMTAG mtag) {
    if (!isPointed(to.kind.form))
        return sOKAY;
    const size_t spare = isText(to.kind.form) ? 1 : 0;
    if (to.size + spare < to.size)
        return eNOMEMORY;
    return b_allocMemoryOrSetNull(to.size + spare, &value->vt.pv, mtag);
}

// What the value's length is after a conversion. That of large text is counted: hexadecimal
// digits for which there was no room are told of by the conversion as if they were there.
size_t settledLength(const OAK_VALUE *value) {
    const bool isLarge = kindOf(value->type).form == Form::largeText;
    return isLarge ? std::strlen(value->vt.cv) + 1 : valueLength(value);
}

// Converts into a new payload of the destination's size. A failure releases it.
OAK_RETCODE convertSized(OAK_VALUE *value, const Source &source, VAL_STATUS status,
                         const Destination &to, const Formats &formats) {
    OAK_RETCODE rc = allocDataBuffer(value, to, formats.mtag);
    if (rc != sOKAY)
        return rc;
    void *payload = isPointed(to.kind.form) ? const_cast<void *>(value->vt.pv) : nullptr;
    rc = convertInto(value, source, status, to, formats);
    if (rc < sOKAY && payload != nullptr) {
        OSL_FREE(payload, formats.mtag);
        value->vt.pv = nullptr;
    }
    return rc;
}

// Converts to a text or large object for which nobody named a size: on the stack first,
// where all texts of single values fit, else once without a destination to measure it.
OAK_RETCODE convertUnsized(OAK_VALUE *value, const Source &source, VAL_STATUS status,
                           Destination to, const Formats &formats) {
    constexpr size_t STACK_SIZE = 128;
    char text[STACK_SIZE];
    CNVCB block = makeBlock(source, to.type, formats);
    block.pvDst = text;
    block.tDstLen = sizeof text;
    OAK_RETCODE rc = runPair(source, to.kind, &block);
    if (rc == sTRUNCATE) {
        CNVCB measured = makeBlock(source, to.type, formats);
        rc = runPair(source, to.kind, &measured);
        to.size = measured.tSize;
        return rc < sOKAY ? rc : convertSized(value, source, status, to, formats);
    }
    if (rc < sOKAY)
        return rc;
    to.size = block.tSize;
    const OAK_RETCODE failed = allocDataBuffer(value, to, formats.mtag);
    if (failed != sOKAY)
        return failed;
    if (block.tSize != 0)
        std::memcpy(const_cast<void *>(value->vt.pv), text, block.tSize);
    setResult(value, to.type, status, source.elts, block.tSize);
    return rc;
}

// ---- The front door -------------------------------------------------------------------------

// Narrow text and wide text that is stored as UTF-8 are the same bytes.
bool isSameText(Form from, Form to) {
    return (from == Form::narrowText && to == Form::utf8Text) ||
           (from == Form::utf8Text && to == Form::narrowText);
}

bool isCopy(const OAK_VALUE *value, const Destination &to) {
    return value->status == vsNOVAL || value->status == vsNULL || value->type == to.type ||
           isSameText(kindOf(value->type).form, to.kind.form);
}

// A text of one character to OAK_INT8 is that character's code, if no size is asked.
bool isOneLetter(const Source &source, const Destination &to) {
    return to.type == OAK_INT8 && to.size == 0 && isPlainText(source.kind.form) &&
           source.length == 2 && source.payload != nullptr;
}

OAK_RETCODE convertAnew(OAK_VALUE *value, const Source &source, VAL_STATUS status,
                        const Destination &to, const Formats &formats) {
    const bool unsized =
        to.size == 0 && (isText(to.kind.form) || to.kind.form == Form::largeBinary);
    const OAK_RETCODE rc = unsized ? convertUnsized(value, source, status, to, formats)
                                   : convertSized(value, source, status, to, formats);
    if (rc == sOKAY || rc == sTRUNCATE) {
        value->status = vsOKAY;
        value->len = settledLength(value);
    }
    return rc;
}

} // namespace

// ---- The front door -------------------------------------------------------------------------

OAK_RETCODE oak_valueConvert(OAK_VALUE *dVal, const OAK_VALUE *sVal, OAK_TYPE dstType,
                             size_t uDstMaxLen, OAK_DATE_FORMAT date_format, int8_t date_sep,
                             OAK_TIME_FORMAT time_format, int16_t tz_disp, OSL_MEMTAG mtag) {
    if (dVal == nullptr || sVal == nullptr)
        return eINVNULLARG;
    Destination to = {dstType, kindOf(dstType), uDstMaxLen};
    if (isCopy(sVal, to)) // before the payload is looked at: that of a NULL may be anything
        return valueCopy(dVal, sVal, sVal->len, mtag);
    const OAK_VALUE value = *sVal; // the destination may be the same record
    const Source source = sourceOf(&value);
    oak_valueInit(dVal);
    if (isArray(&value))
        return b_convertOakArray(&value, dVal, dstType, mtag);
    const OAK_RETCODE rc = calcDestLen(source, &to);
    if (rc != sOKAY || value.type == OAK_SUBQUERY) // a subquery is converted when it has run
        return rc;
    if (isOneLetter(source, to)) {
        oak_valueSetInt8(dVal, load<int8_t>(source.payload));
        return sOKAY;
    }
    return convertAnew(dVal, source, value.status, to,
                       {date_format, date_sep, time_format, tz_disp, mtag});
}

OAK_RETCODE oak_valueConvertFromBuffer(OAK_VALUE *pDstVal, OAK_TYPE dstType, size_t dstMaxLen,
                                       const void *pSrcVal, OAK_TYPE srcType, size_t srcLen,
                                       OAK_DATE_FORMAT date_format, int8_t date_sep,
                                       OAK_TIME_FORMAT time_format, int16_t tz_disp,
                                       OSL_MEMTAG mtag) {
    if (pDstVal == nullptr || (srcLen != 0 && pSrcVal == nullptr))
        return eINVNULLARG;
    Destination to = {dstType, kindOf(dstType), dstMaxLen};
    const Source source = rawSource(srcType, pSrcVal, srcLen);
    oak_valueInit(pDstVal);
    const OAK_RETCODE rc = calcDestLen(source, &to);
    if (rc != sOKAY)
        return rc;
    return convertAnew(pDstVal, source, vsOKAY, to,
                       {date_format, date_sep, time_format, tz_disp, mtag});
}

// ---- The matrix -----------------------------------------------------------------------------

OAK_RETCODE b_convertOakValue(const OAK_VALUE *pSrcVal, OAK_VALUE *pDstVal, OAK_TYPE dstType,
                              size_t uDstMaxLen, OAK_DATE_FORMAT date_format, int8_t date_sep,
                              OAK_TIME_FORMAT time_format, int16_t tz_disp, OSL_MEMTAG mtag) {
    if (pSrcVal == nullptr || pDstVal == nullptr)
        return eINVNULLARG;
    if (isArray(pSrcVal))
        return b_convertOakArray(pSrcVal, pDstVal, dstType, mtag);
    return convertInto(pDstVal, sourceOf(pSrcVal), pSrcVal->status,
                       {dstType, kindOf(dstType), uDstMaxLen},
                       {date_format, date_sep, time_format, tz_disp, mtag});
}

OAK_RETCODE b_convertOakValueToBuffer(const OAK_VALUE *pSrcVal, OAK_TYPE dstType,
                                      OAK_DATE_FORMAT date_format, int8_t date_sep,
                                      OAK_TIME_FORMAT time_format, int16_t tz_disp, void *pvDstBuf,
                                      size_t bytesIn, size_t *, size_t *pBytesOut) {
    if (pSrcVal == nullptr)
        return eINVNULLARG;
    const Source source = sourceOf(pSrcVal);
    CNVCB block =
        makeBlock(source, dstType, {date_format, date_sep, time_format, tz_disp, nullptr});
    block.pvDst = pvDstBuf;
    block.tDstLen = bytesIn;
    const OAK_RETCODE rc = runPair(source, kindOf(dstType), &block);
    if (rc >= sOKAY && pBytesOut != nullptr)
        *pBytesOut = block.tSize;
    return rc;
}

double b_convertAsciiToDouble(const char *str) {
    return osl_atof(str);
}
