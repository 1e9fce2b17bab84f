// Array values: array to array, and the text "ARRAY[...]". Rests on the matrix, the table
// of types and memory tags; called by the front door and by callers that print arrays.
//
// Elements lie one behind the other in their natural sizes, those of OAK_BOOL in four
// bytes. A conversion to another array is one of each element by itself, so that one
// element's failure is no other's; the text is measured first and made to measure.
#include "convert_internal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

#include "misc.h"
#include "types.h"

using namespace convert;

namespace {

// ---- Element by element ---------------------------------------------------------------------

// Stores what came out as sOKAY; the status is that of the last element.
OAK_RETCODE convertEach(const OAK_VALUE *array, B_CNVFCN function, uint8_t *out, size_t dstWidth,
                        OSL_MEMTAG mtag) {
    const size_t srcWidth = b_typeGetLength(array->type);
    const auto *elements = static_cast<const uint8_t *>(array->vt.pv);
    OAK_RETCODE rc = sOKAY;
    for (size_t i = 0; i < array->elts; ++i) {
        OAK_COLUMN result{};
        CNVCB block{};
        block.pvSrc = elements + i * srcWidth;
        block.pvDst = &result;
        block.mtag = mtag;
        rc = function(&block);
        if (rc == sOKAY)
            std::memcpy(out + i * dstWidth, &result, dstWidth);
    }
    return rc;
}

// ---- Text -----------------------------------------------------------------------------------

// Text that is written, or, without a place, measured.
struct ArrayText {
    char *place;
    size_t length;

    void append(const char *text, size_t size) {
        if (place != nullptr)
            std::memcpy(place + length, text, size);
        length += size;
    }
    void fill(char character, size_t size) {
        if (place != nullptr)
            std::memset(place + length, character, size);
        length += size;
    }
};

// How floating numbers are printed, as printf's %*.*f has it: a negative width pads on the
// right, a negative precision is 6.
struct FloatForm {
    int32_t width;
    int32_t precision;
};

template <class Integer>
void appendElement(ArrayText *text, Integer number, const FloatForm &) {
    char digits[24];
    const char *end = std::to_chars(digits, std::end(digits), number).ptr;
    text->append(digits, static_cast<size_t>(end - digits));
}

void appendElement(ArrayText *text, OAK_BOOL_T truth, const FloatForm &) {
    const char *word = truth == OAK_TRUE ? "true" : "false";
    text->append(word, std::strlen(word));
}

// Behind the last place that a double can have, 1074 behind the point, there are zeros.
void appendElement(ArrayText *text, double number, const FloatForm &form) {
    constexpr int USUAL_PRECISION = 6;
    constexpr int LAST_PLACE = 1074;
    constexpr size_t BEFORE_POINT = 312; // a sign, 309 digits, the point
    const int precision = form.precision < 0 ? USUAL_PRECISION : form.precision;
    const int places = std::min(precision, LAST_PLACE);
    char digits[BEFORE_POINT + LAST_PLACE];
    const char *end =
        std::to_chars(digits, std::end(digits), number, std::chars_format::fixed, places).ptr;
    const auto length = static_cast<size_t>(end - digits);
    const auto zeros = static_cast<size_t>(std::isfinite(number) ? precision - places : 0);
    const auto width = static_cast<size_t>(std::abs(int64_t{form.width}));
    const size_t blanks = width > length + zeros ? width - length - zeros : 0;
    text->fill(' ', form.width > 0 ? blanks : 0);
    text->append(digits, length);
    text->fill('0', zeros);
    text->fill(' ', form.width < 0 ? blanks : 0);
}

void appendElement(ArrayText *text, float number, const FloatForm &form) {
    appendElement(text, static_cast<double>(number), form);
}

template <class T>
void appendElements(ArrayText *text, const OAK_VALUE *array, const FloatForm &form) {
    const auto *elements = static_cast<const uint8_t *>(array->vt.pv);
    for (size_t i = 0; i < array->elts; ++i) {
        if (i != 0)
            text->append(",", 1);
        appendElement(text, load<T>(elements + i * sizeof(T)), form);
    }
}

// eINVCONVERT: a type of which there are no arrays.
OAK_RETCODE appendByType(ArrayText *text, const OAK_VALUE *array, const FloatForm &form) {
    switch (array->type) {
#define ARRAY_TYPE(type, element)                                                                  \
    case type:                                                                                     \
        appendElements<element>(text, array, form);                                                \
        return sOKAY;
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
    static constexpr char CLOSING[] = "]"; // with its terminator
    text->append(OPENING, sizeof OPENING - 1);
    const OAK_RETCODE rc = appendByType(text, array, form);
    text->append(CLOSING, sizeof CLOSING);
    return rc;
}

} // namespace

// ---- Exported -------------------------------------------------------------------------------

OAK_RETCODE b_convertOakArray(const OAK_VALUE *pSrcVal, OAK_VALUE *pDstVal, OAK_TYPE dstType,
                              OSL_MEMTAG mtag) {
    if (pSrcVal == nullptr || pDstVal == nullptr)
        return eINVNULLARG;
    if (!isArray(pSrcVal) || !canBeArray(dstType))
        return eINVCONVERT;
    B_CNVFCN function = nullptr;
    OAK_RETCODE rc = findConversion(kindOf(pSrcVal->type), kindOf(dstType), &function);
    if (rc != sOKAY)
        return rc;
    const OAK_VALUE array = *pSrcVal; // the destination may be the same record
    if (array.vt.pv == nullptr)
        return eINVNULLARG;
    const size_t width = b_typeGetLength(dstType);
    uint8_t *block = nullptr;
    rc = b_allocMemoryOrSetNull(array.elts * width, &block, mtag);
    if (rc != sOKAY)
        return rc;
    rc = convertEach(&array, function, block, width, mtag);
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
    ArrayText measured = {nullptr, 0};
    OAK_RETCODE rc = appendArray(&measured, pVal, form);
    if (rc != sOKAY)
        return rc;
    ArrayText text = {nullptr, 0};
    rc = b_allocMemoryOrSetNull(measured.length, &text.place, mtag);
    if (rc != sOKAY)
        return rc;
    rc = appendArray(&text, pVal, form);
    *ppString = text.place;
    return rc;
}
