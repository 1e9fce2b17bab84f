// The front door of conversion: where payloads lie, what a destination needs, the runs of
// one conversion, and arrays. Rests on the matrix, on the copies of the value module, on
// the table of types and on memory tags; called by the column operations, the catalog and
// the layers above.
//
// A run goes so. The pair's code is read from the matrix first: a pair that has none is
// refused before any data is looked at. The destination's payload is then made, when it
// does not lie in the value itself, and a conversion block carries both payloads to the
// function of the code. Arrays of truth values, integers and floating numbers convert
// element by element to arrays alone; their text forms are for plain buffers and for
// b_convertArrayToString.
//
// Room. A destination inside the value never gets more room than its type has, so nothing
// is written past the payload. A text destination gets one byte more than it is told of,
// so that text is terminated whatever was cut. A text for which the caller set no limit,
// made of a value that tells no length of its own, is measured first and comes out whole.
#include "convert_internal.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "misc.h"
#include "types.h"
#include "value_internal.h"

using namespace convert;

namespace {

// ---- Kinds of types --------------------------------------------------------------------------

unsigned classOf(OAK_TYPE type) {
    return static_cast<unsigned>(type) & OAK_TYPE_CLASS_MASK;
}

// The types of which there are arrays.
bool canBeArray(OAK_TYPE type) {
    const unsigned typeClass = classOf(type);
    return typeClass >= OAK_TYPE_CLASS_BOOL && typeClass <= OAK_TYPE_CLASS_FLOAT;
}

bool isPlainText(OAK_TYPE type) {
    return type == OAK_CHAR || type == OAK_VARCHAR || type == OAK_WCHAR_UTF8 ||
           type == OAK_WVARCHAR_UTF8;
}

bool isLargeText(OAK_TYPE type) {
    return type == OAK_CLOB || type == OAK_WCLOB_UTF8;
}

bool isText(OAK_TYPE type) {
    return isPlainText(type) || isLargeText(type);
}

bool isBinary(OAK_TYPE type) {
    return classOf(type) == OAK_TYPE_CLASS_BINARY;
}

// Narrow text and wide text that is stored as UTF-8 are the same bytes.
bool isSameText(OAK_TYPE first, OAK_TYPE second) {
    const auto isNarrow = [](OAK_TYPE type) { return type == OAK_CHAR || type == OAK_VARCHAR; };
    return isPlainText(first) && isPlainText(second) && isNarrow(first) != isNarrow(second);
}

// ---- Payloads
// ------------------------------------------------------------------------------------

enum class Place {
    inside,  // in the value itself
    array,   // in the value, or behind its pointer when it has elements
    pointed, // behind the value's pointer
    none
};

constexpr Place placeOf(OAK_TYPE type) {
    switch (type) {
        case OAK_BCD:
        case OAK_BINARY:
        case OAK_VARBINARY:
        case OAK_BLOB:
        case OAK_CHAR:
        case OAK_WCHAR_UTF8:
        case OAK_VARCHAR:
        case OAK_WVARCHAR_UTF8:
        case OAK_CLOB:
        case OAK_WCLOB_UTF8:
        case OAK_UUID:
        case OAK_TIMESTAMPTZ:
            return Place::pointed;
        case OAK_DATE:
        case OAK_TIME:
        case OAK_TIMETZ:
        case OAK_TIMESTAMP:
            return Place::inside;
        case OAK_BOOL:
        case OAK_INT8:
        case OAK_UINT8:
        case OAK_INT16:
        case OAK_UINT16:
        case OAK_INT32:
        case OAK_UINT32:
        case OAK_INT64:
        case OAK_UINT64:
        case OAK_FLOAT:
        case OAK_DOUBLE:
        case OAK_ROWID:
            return Place::array;
        default:
            return Place::none;
    }
}

bool liesInside(OAK_TYPE type, uint32_t elts) {
    const Place place = placeOf(type);
    return place == Place::inside || (place == Place::array && elts == 0);
}

const void *getOakValuePtr(const OAK_VALUE *pVal, OAK_TYPE type) {
    if (placeOf(type) == Place::none)
        return nullptr;
    return liesInside(type, pVal->elts) ? static_cast<const void *>(&pVal->vt) : pVal->vt.pv;
}

// ---- Sources
// ---------------------------------------------------------------------------------------

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
    const void *payload;
    size_t length; // of text, its terminator counted, and of binary; else 0
    size_t given;  // the length that came with it
    uint32_t elts;
};

// A text that came without a length has that of its characters.
size_t lengthOf(OAK_TYPE type, const void *payload, size_t given) {
    const unsigned typeClass = classOf(type);
    if (typeClass != OAK_TYPE_CLASS_BINARY && typeClass != OAK_TYPE_CLASS_TEXT)
        return 0;
    if (given == 0 && isText(type) && payload != nullptr)
        return std::strlen(static_cast<const char *>(payload)) + 1;
    return given;
}

// There are elements of numbers and of records behind a pointer alone.
bool hasElements(OAK_TYPE type) {
    return placeOf(type) != Place::inside && !isText(type) && !isBinary(type);
}

Source sourceOf(const OAK_VALUE *value) {
    const void *payload = getOakValuePtr(value, value->type);
    return {value->type, payload, lengthOf(value->type, payload, value->len), value->len,
            hasElements(value->type) ? value->elts : 0};
}

bool isArray(const OAK_VALUE *value) {
    return canBeArray(value->type) && value->elts != 0;
}

// ---- One run
// --------------------------------------------------------------------------------------------

CNVCB makeBlock(const Source &source, OAK_TYPE dstType, const Formats &formats) {
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
OAK_RETCODE runPair(const Source &source, OAK_TYPE dstType, CNVCB *block) {
    CNVCODE code = 0;
    const OAK_RETCODE rc = getConvertCode(source.type, dstType, &code);
    if (rc != sOKAY)
        return rc;
    if (source.payload == nullptr && !(isBinary(source.type) && source.length == 0))
        return eINVNULLARG;
    return runConversion(code, block);
}

// The bytes that a conversion needs, by a run without a destination.
OAK_RETCODE measure(const Source &source, OAK_TYPE dstType, const Formats &formats, size_t *size) {
    CNVCB block = makeBlock(source, dstType, formats);
    const OAK_RETCODE rc = runPair(source, dstType, &block);
    if (rc < sOKAY)
        return rc;
    *size = block.tSize;
    return sOKAY;
}

// The room of a payload of `elements` of a type, of which `limit` bytes are allowed.
size_t roomOf(OAK_TYPE type, size_t elements, size_t limit) {
    const size_t room = elements * convertTypeSize(type);
    return limit == 0 ? room : std::min(limit, room);
}

// Points the block at the destination's payload. A single source has a single
// destination, whatever the value was before. Returns the elements of the result.
uint32_t aim(CNVCB *block, const Source &source, OAK_VALUE *value, OAK_TYPE dstType, size_t limit) {
    const uint32_t elts = source.elts == 0 ? 0 : value->elts;
    const Place place = placeOf(dstType);
    if (liesInside(dstType, elts)) {
        block->pvDst = &value->vt;
        const bool unlimited = limit == 0 && source.elts == 0;
        block->tDstLen = unlimited ? 0 : roomOf(dstType, 1, limit);
        return 0; // a value has one payload inside; the rest of an array was cut
    }
    block->pvDst = place == Place::none ? nullptr : const_cast<void *>(value->vt.pv);
    block->tDstLen = place == Place::array ? roomOf(dstType, elts, limit) : limit;
    return source.elts;
}

// Converts into a value whose payload is there. A failure leaves the value's fields.
OAK_RETCODE convertInto(OAK_VALUE *value, const Source &source, VAL_STATUS status, OAK_TYPE dstType,
                        size_t limit, const Formats &formats) {
    CNVCB block = makeBlock(source, dstType, formats);
    const uint32_t elts = aim(&block, source, value, dstType, limit);
    const OAK_RETCODE rc = runPair(source, dstType, &block);
    if (rc < sOKAY)
        return rc;
    value->type = dstType;
    value->status = status;
    value->elts = elts;
    value->len = block.tSize;
    return rc;
}

// ---- What a destination needs
// -----------------------------------------------------------------------------

// The bytes of a text destination: binary takes two digits a byte and their frame.
size_t textSize(const Source &source, size_t request) {
    constexpr size_t HEX_FRAME = 3;
    if (isBinary(source.type))
        return source.length * 2 + HEX_FRAME;
    return request != 0 ? request : source.length;
}

size_t largeBinarySize(const Source &source, size_t request) {
    if (source.type == OAK_BINARY || source.type == OAK_VARBINARY || isPlainText(source.type))
        return source.length;
    if (source.type == OAK_WCHAR || source.type == OAK_WVARCHAR)
        return source.length / 4;
    return request;
}

// The size of the destination's payload; `pDstLen` comes in with the one that the
// caller asked for. eTYPEMISMATCH: a source without a length to binary.
OAK_RETCODE calcDestLen(const Source &source, OAK_TYPE dstType, size_t *pDstLen) {
    if (isLargeText(dstType)) {
        *pDstLen = source.length;
    } else if (isPlainText(dstType)) {
        *pDstLen = textSize(source, *pDstLen);
    } else if (dstType == OAK_BLOB) {
        *pDstLen = largeBinarySize(source, *pDstLen);
    } else if (dstType == OAK_BINARY || dstType == OAK_VARBINARY) {
        const size_t known = source.length != 0 ? source.length : source.given;
        *pDstLen = known != 0 ? known : b_typeGetLength(source.type);
        return *pDstLen == 0 ? eTYPEMISMATCH : sOKAY;
    } else if (dstType == OAK_BCD || dstType == OAK_UUID || dstType == OAK_TIMESTAMPTZ) {
        *pDstLen = b_typeGetLength(dstType);
    }
    return sOKAY;
}

// A text or large object for which nobody named a size takes what the conversion needs.
bool wantsMeasure(const Source &source, OAK_TYPE dstType, size_t size) {
    return size == 0 && (isText(dstType) || dstType == OAK_BLOB) && source.type != OAK_SUBQUERY &&
           !(canBeArray(source.type) && source.elts != 0);
}

OAK_RETCODE allocZeroed(size_t size, void *pvData, OSL_MEMTAG mtag) {
    return b_allocMemoryOrSetNull(size, pvData, mtag);
}

// Makes what the value's `vt` must point to, zeroed; nothing for the other types.
OAK_RETCODE allocDataBuffer(OAK_VALUE *value, OAK_TYPE dstType, size_t size, OSL_MEMTAG mtag) {
    if (placeOf(dstType) != Place::pointed)
        return sOKAY;
    const size_t spare = isText(dstType) ? 1 : 0;
    return size + spare < size ? eNOMEMORY : allocZeroed(size + spare, &value->vt.pv, mtag);
}

OAK_RETCODE prepareDestination(OAK_VALUE *value, const Source &source, OAK_TYPE dstType,
                               const Formats &formats, size_t *size) {
    OAK_RETCODE rc = calcDestLen(source, dstType, size);
    if (rc == sOKAY && wantsMeasure(source, dstType, *size))
        rc = measure(source, dstType, formats, size);
    return rc == sOKAY ? allocDataBuffer(value, dstType, *size, formats.mtag) : rc;
}

// ---- The front door
// -----------------------------------------------------------------------------------------

bool isCopy(const OAK_VALUE *value, OAK_TYPE dstType) {
    return value->status == vsNOVAL || value->status == vsNULL || value->type == dstType ||
           isSameText(value->type, dstType);
}

// A text of one character to OAK_INT8 is that character's code, if no size is asked.
bool isOneLetter(const Source &source, OAK_TYPE dstType, size_t size) {
    return dstType == OAK_INT8 && size == 0 && isPlainText(source.type) && source.length == 2 &&
           source.payload != nullptr;
}

// What the value's length is after a conversion. That of large text is counted: hexadecimal
// digits for which there was no room are told of by the conversion as if they were there.
size_t settledLength(const OAK_VALUE *value) {
    return isLargeText(value->type) ? std::strlen(value->vt.cv) + 1 : valueLength(value);
}

// The end of a conversion into a payload of our own, which goes with a failure.
OAK_RETCODE settle(OAK_VALUE *value, void *payload, OAK_RETCODE rc, OSL_MEMTAG mtag) {
    if (rc < sOKAY && payload != nullptr) {
        OSL_FREE(payload, mtag);
        value->vt.pv = nullptr;
    }
    if (rc == sOKAY || rc == sTRUNCATE) {
        value->status = vsOKAY;
        value->len = settledLength(value);
    }
    return rc;
}

// ---- Arrays
// ---------------------------------------------------------------------------------------------------

// Runs the conversion of each element by itself, with the formats of literals, and
// stores what came out as sOKAY; the status is that of the last.
OAK_RETCODE convertEach(const OAK_VALUE *array, OAK_TYPE dstType, uint8_t *out, OSL_MEMTAG mtag) {
    const Formats formats = {OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF, 0, mtag};
    const size_t srcWidth = b_typeGetLength(array->type);
    const size_t dstWidth = b_typeGetLength(dstType);
    const auto *elements = static_cast<const uint8_t *>(array->vt.pv);
    OAK_RETCODE rc = sOKAY;
    CNVCODE code = 0;
    rc = getConvertCode(array->type, dstType, &code);
    for (size_t i = 0; i < array->elts && code != 0; ++i) {
        OAK_COLUMN result{};
        CNVCB block = makeBlock({array->type, elements + i * srcWidth, 0, 0, 0}, dstType, formats);
        block.pvDst = &result;
        rc = runConversion(code, &block);
        if (rc == sOKAY)
            std::memcpy(out + i * dstWidth, &result, dstWidth);
    }
    return rc;
}

// Text that is being measured, without a place, or written.
struct ArrayText {
    char *place;
    size_t room; // of what is written, its terminator counted
    size_t length;

    void append(const char *text, size_t size) {
        if (place != nullptr)
            std::memcpy(place + length, text, size);
        length += size;
    }
};

// How floating numbers are printed; a width of 0 is none.
struct FloatForm {
    int32_t width;
    int32_t precision;
};

template <class Integer>
OAK_RETCODE appendElement(ArrayText *text, Integer number, const FloatForm &) {
    char digits[24];
    const char *end = std::to_chars(digits, std::end(digits), number).ptr;
    text->append(digits, static_cast<size_t>(end - digits));
    return sOKAY;
}

OAK_RETCODE appendElement(ArrayText *text, OAK_BOOL_T truth, const FloatForm &) {
    const char *word = truth == OAK_TRUE ? "true" : "false";
    text->append(word, std::strlen(word));
    return sOKAY;
}

// eINVARG: a width or precision that cannot be printed.
OAK_RETCODE appendElement(ArrayText *text, double number, const FloatForm &form) {
    char *place = text->place == nullptr ? nullptr : text->place + text->length;
    const size_t room = text->place == nullptr ? 0 : text->room - text->length;
    const int32_t length =
        form.width == 0 ? osl_snprintf(place, room, "%.*f", form.precision, number)
                        : osl_snprintf(place, room, "%*.*f", form.width, form.precision, number);
    if (length < 0)
        return eINVARG;
    text->length += static_cast<size_t>(length);
    return sOKAY;
}

OAK_RETCODE appendElement(ArrayText *text, float number, const FloatForm &form) {
    return appendElement(text, static_cast<double>(number), form);
}

template <class T>
OAK_RETCODE appendElements(ArrayText *text, const OAK_VALUE *array, const FloatForm &form) {
    const auto *elements = static_cast<const uint8_t *>(array->vt.pv);
    for (size_t i = 0; i < array->elts; ++i) {
        if (i != 0)
            text->append(",", 1);
        const OAK_RETCODE rc = appendElement(text, load<T>(elements + i * sizeof(T)), form);
        if (rc != sOKAY)
            return rc;
    }
    return sOKAY;
}

OAK_RETCODE appendByType(ArrayText *text, const OAK_VALUE *array, const FloatForm &form) {
    switch (array->type) {
#define ARRAY_TYPE(type, element)                                                                  \
    case type:                                                                                     \
        return appendElements<element>(text, array, form);
        ARRAY_TYPE(OAK_BOOL, OAK_BOOL_T)
        ARRAY_TYPE(OAK_INT8, int8_t)
        ARRAY_TYPE(OAK_UINT8, uint8_t)
        ARRAY_TYPE(OAK_INT16, int16_t)
        ARRAY_TYPE(OAK_UINT16, uint16_t)
        ARRAY_TYPE(OAK_INT32, int32_t)
        ARRAY_TYPE(OAK_UINT32, uint32_t)
        ARRAY_TYPE(OAK_INT64, int64_t)
        ARRAY_TYPE(OAK_UINT64, uint64_t)
        ARRAY_TYPE(OAK_FLOAT, float)
        ARRAY_TYPE(OAK_DOUBLE, double)
#undef ARRAY_TYPE
        default:
            return eINVCONVERT;
    }
}

OAK_RETCODE appendArray(ArrayText *text, const OAK_VALUE *array, const FloatForm &form) {
    static constexpr char OPENING[] = "ARRAY[";
    text->append(OPENING, sizeof OPENING - 1);
    const OAK_RETCODE rc = appendByType(text, array, form);
    text->append("]", sizeof "]");
    return rc;
}

} // namespace

// ---- The front door
// -------------------------------------------------------------------------------------------

OAK_RETCODE oak_valueConvert(OAK_VALUE *dVal, const OAK_VALUE *sVal, OAK_TYPE dstType,
                             size_t uDstMaxLen, OAK_DATE_FORMAT date_format, int8_t date_sep,
                             OAK_TIME_FORMAT time_format, int16_t tz_disp, OSL_MEMTAG mtag) {
    if (dVal == nullptr || sVal == nullptr)
        return eINVNULLARG;
    if (isCopy(sVal, dstType))
        return valueCopy(dVal, sVal, sVal->len, mtag);
    const OAK_VALUE value = *sVal; // the destination may be the same record
    const Source source = sourceOf(&value);
    const Formats formats = {date_format, date_sep, time_format, tz_disp, mtag};
    size_t size = uDstMaxLen;
    oak_valueInit(dVal);
    OAK_RETCODE rc = prepareDestination(dVal, source, dstType, formats, &size);
    if (rc != sOKAY || value.type == OAK_SUBQUERY)
        return rc;
    if (isOneLetter(source, dstType, size)) {
        oak_valueSetInt8(dVal, load<int8_t>(source.payload));
        return sOKAY;
    }
    void *payload = const_cast<void *>(dVal->vt.pv);
    rc = isArray(&value) ? b_convertOakArray(&value, dVal, dstType, mtag)
                         : convertInto(dVal, source, value.status, dstType, size, formats);
    return settle(dVal, payload, rc, mtag);
}

OAK_RETCODE oak_valueConvertFromBuffer(OAK_VALUE *pDstVal, OAK_TYPE dstType, size_t dstMaxLen,
                                       const void *pSrcVal, OAK_TYPE srcType, size_t srcLen,
                                       OAK_DATE_FORMAT date_format, int8_t date_sep,
                                       OAK_TIME_FORMAT time_format, int16_t tz_disp,
                                       OSL_MEMTAG mtag) {
    if (pDstVal == nullptr || (srcLen != 0 && pSrcVal == nullptr))
        return eINVNULLARG;
    const Source source = {srcType, pSrcVal, lengthOf(srcType, pSrcVal, srcLen), srcLen, 0};
    const Formats formats = {date_format, date_sep, time_format, tz_disp, mtag};
    size_t size = dstMaxLen;
    oak_valueInit(pDstVal);
    OAK_RETCODE rc = prepareDestination(pDstVal, source, dstType, formats, &size);
    if (rc != sOKAY)
        return rc;
    void *payload = const_cast<void *>(pDstVal->vt.pv);
    rc = convertInto(pDstVal, source, vsOKAY, dstType, size, formats);
    return settle(pDstVal, payload, rc, mtag);
}

// ---- The matrix
// ---------------------------------------------------------------------------------------------------

OAK_RETCODE b_convertOakValue(const OAK_VALUE *pSrcVal, OAK_VALUE *pDstVal, OAK_TYPE dstType,
                              size_t uDstMaxLen, OAK_DATE_FORMAT date_format, int8_t date_sep,
                              OAK_TIME_FORMAT time_format, int16_t tz_disp, OSL_MEMTAG mtag) {
    if (pSrcVal == nullptr || pDstVal == nullptr)
        return eINVNULLARG;
    if (isArray(pSrcVal))
        return b_convertOakArray(pSrcVal, pDstVal, dstType, mtag);
    return convertInto(pDstVal, sourceOf(pSrcVal), pSrcVal->status, dstType, uDstMaxLen,
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
    const OAK_RETCODE rc = runPair(source, dstType, &block);
    if (rc >= sOKAY && pBytesOut != nullptr)
        *pBytesOut = block.tSize;
    return rc;
}

double b_convertAsciiToDouble(const char *str) {
    return osl_atof(str);
}

// ---- Arrays
// ---------------------------------------------------------------------------------------------------------

OAK_RETCODE b_convertOakArray(const OAK_VALUE *pSrcVal, OAK_VALUE *pDstVal, OAK_TYPE dstType,
                              OSL_MEMTAG mtag) {
    if (pSrcVal == nullptr || pDstVal == nullptr)
        return eINVNULLARG;
    if (!isArray(pSrcVal) || !canBeArray(dstType))
        return eINVCONVERT;
    if (pSrcVal->vt.pv == nullptr)
        return eINVNULLARG;
    const OAK_VALUE array = *pSrcVal; // the destination may be the same record
    void *block = nullptr;
    OAK_RETCODE rc = allocZeroed(array.elts * b_typeGetLength(dstType), &block, mtag);
    if (rc != sOKAY)
        return rc;
    rc = convertEach(&array, dstType, static_cast<uint8_t *>(block), mtag);
    pDstVal->type = dstType;
    pDstVal->status = vsOKAY;
    pDstVal->len = 0;
    pDstVal->elts = array.elts;
    pDstVal->vt.pv = block;
    return rc;
}

OAK_RETCODE b_convertArrayToString(const OAK_VALUE *pVal, char **ppString, int32_t width,
                                   int32_t precision, OSL_MEMTAG mtag) {
    if (pVal == nullptr)
        return eINVNULLARG;
    if (ppString == nullptr || pVal->elts == 0)
        return eINVCONVERT;
    if (pVal->vt.pv == nullptr)
        return eINVNULLARG;
    const FloatForm form = {width, precision};
    ArrayText measured = {nullptr, 0, 0};
    OAK_RETCODE rc = appendArray(&measured, pVal, form);
    if (rc != sOKAY)
        return rc;
    void *block = nullptr;
    rc = allocZeroed(measured.length, &block, mtag);
    if (rc != sOKAY)
        return rc;
    ArrayText text = {static_cast<char *>(block), measured.length, 0};
    rc = appendArray(&text, pVal, form);
    *ppString = text.place;
    return rc;
}
