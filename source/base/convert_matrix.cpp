// The conversion matrix: which conversion exists, and the function that runs it. Rests
// on the functions of convert_numbers.cpp, convert_text.cpp, convert_dates.cpp and
// convert_scan.cpp; called by the front door in convert.cpp and by callers that ask
// whether a conversion exists.
//
// Three constant tables hold it. typeData gives the order of the types; cnv_codes the
// code of each pair, 0 where the pair is refused; cnvFcns the function of each code.
// OAK_BOOL shares the functions of OAK_UINT8, whose low byte it is, and OAK_ROWID those
// of OAK_UINT64. OAK_WCHAR has codes and no functions: wide text travels as UTF-8, in
// types that fold to OAK_CHAR. The slots 219 to 227 are reached by number alone, by
// callers that hold packed decimals.
#include "convert_internal.h"

#include <iterator>

// ---- The tables -----------------------------------------------------------------------------

constexpr OAK_TYPE_DATA typeData[CNV_TYPES] = {
    {OAK_CHAR, 0},  {OAK_WCHAR, 0},  {OAK_BINARY, 0}, {OAK_BOOL, 1},      {OAK_INT8, 1},
    {OAK_UINT8, 1}, {OAK_INT16, 2},  {OAK_UINT16, 2}, {OAK_INT32, 4},     {OAK_UINT32, 4},
    {OAK_INT64, 8}, {OAK_UINT64, 8}, {OAK_FLOAT, 4},  {OAK_DOUBLE, 8},    {OAK_BCD, 37},
    {OAK_DATE, 4},  {OAK_TIME, 4},   {OAK_TIMETZ, 8}, {OAK_TIMESTAMP, 8}, {OAK_TIMESTAMPTZ, 16},
    {OAK_ROWID, 8}, {OAK_UUID, 16},
};

// Rows are sources and columns destinations, both in the order of typeData.
// clang-format off
constexpr CNVCODE cnv_codes[CNV_TYPES][CNV_TYPES] = {
  // CHR WCH BIN BOO  I8  U8 I16 U16 I32 U32 I64 U64 FLT DBL BCD DAT TIM TTZ  TS TSZ RID UID
  {  1,  5,  6,  7,  8,  9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 20, 21, 22, 23, 24, 25, 26},
  { 27,  2, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 42, 43, 44, 45, 46, 47, 48},
  { 49, 50,  3, 51,  4,  4,  4,  4,  4,  4,  4,  4,  4,  4,  0,  0,  0,  0,  0,  0,  0, 52},
  { 67, 68,270, 69, 70,271, 71, 72, 73, 73, 75, 75, 77, 78, 79,  0,  0,  0,  0,  0,  0,  0},
  { 53, 54,267,268,269, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64,  0,  0,  0,  0,  0, 66,  0},
  { 67, 68,270, 69, 70,271, 71, 72, 73, 74, 75, 76, 77, 78, 79,  0,  0,  0,  0,  0, 81,  0},
  { 82, 83,272, 84, 85, 86,273, 87, 88, 89, 90, 91, 92, 93, 94,  0,  0,  0,  0,  0, 96,  0},
  { 97, 98,274, 99,100,101,102,275,103,104,105,106,107,108,109,  0,  0,  0,  0,  0,111,  0},
  {112,113,276,114,115,116,117,118,277,119,120,121,122,123,124,  0,  0,  0,  0,  0,126,  0},
  {127,128,278,129,130,131,132,133,134,279,135,136,137,138,139,  0,  0,  0,  0,  0,141,  0},
  {142,143,280,144,145,146,147,148,149,150,281,151,152,153,154,  0,  0,  0,  0,  0,156,  0},
  {157,158,282,159,160,161,162,163,164,165,166,283,167,168,169,  0,  0,  0,  0,  0,171,  0},
  {172,173,284,174,175,176,177,178,179,180,181,182,285,183,184,  0,  0,  0,  0,  0,  0,  0},
  {186,187,286,188,189,190,191,192,193,194,195,196,197,287,198,  0,  0,  0,  0,  0,  0,  0},
  {200,201,288,202,203,204,205,206,207,208,209,210,211,212,289,  0,  0,  0,  0,  0,  0,  0},
  {228,229,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,290,  0,  0,230,231,  0,  0},
  {232,233,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,291,234,235,236,  0,  0},
  {237,238,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,239,292,240,241,  0,  0},
  {242,243,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,244,245,246,293,247,  0,  0},
  {248,249,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,250,251,252,253,294,  0,  0},
  {254,255,  0,  0,256,257,258,259,260,261,262,263,  0,  0,  0,  0,  0,  0,  0,  0,295,  0},
  {264,265,266,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,296},
};
// clang-format on

constexpr B_CNVFCN none = nullptr;

constexpr CNV_SLOT cnvFcns[CNV_SLOTS] = {
    {0, none},
    {1, cnv_strcpyTrunc},
    {2, none},
    {3, cnv_memcpyTrunc},
    {4, cnv_memcpy},
    {5, none},
    {6, cnv_stringToBinary},
    {7, cnv_stringToBoolean},
    {8, cnv_stringToInt8},
    {9, cnv_stringToUInt8},
    {10, cnv_stringToInt16},
    {11, cnv_stringToUInt16},
    {12, cnv_stringToInt32},
    {13, cnv_stringToUInt32},
    {14, cnv_stringToInt64},
    {15, cnv_stringToUInt64},
    {16, cnv_stringToFloat},
    {17, cnv_stringToDouble},
    {18, cnv_stringToDecimal},
    {19, none},
    {20, cnv_stringToDate},
    {21, cnv_stringToTime},
    {22, cnv_stringToTimeTZ},
    {23, cnv_stringToTimestamp},
    {24, cnv_stringToTimestampTZ},
    {25, cnv_stringToRowid},
    {26, cnv_stringToUuid},
    {27, none},
    {28, none},
    {29, none},
    {30, none},
    {31, none},
    {32, none},
    {33, none},
    {34, none},
    {35, none},
    {36, none},
    {37, none},
    {38, none},
    {39, none},
    {40, none},
    {41, none},
    {42, none},
    {43, none},
    {44, none},
    {45, none},
    {46, none},
    {47, none},
    {48, none},
    {49, cnv_binaryToString},
    {50, none},
    {51, cnv_binaryToBoolean},
    {52, cnv_binaryToUuid},
    {53, cnv_int8ToString},
    {54, none},
    {55, cnv_int8ToUInt8Trunc},
    {56, cnv_int8ToInt16Trunc},
    {57, cnv_int8ToUInt16Trunc},
    {58, cnv_int8ToInt32Trunc},
    {59, cnv_int8ToUInt32Trunc},
    {60, cnv_int8ToInt64Trunc},
    {61, cnv_int8ToUInt64Trunc},
    {62, cnv_int8ToFloatTrunc},
    {63, cnv_int8ToDoubleTrunc},
    {64, cnv_int8ToDecimalTrunc},
    {65, none},
    {66, cnv_int8ToRowidTrunc},
    {67, cnv_uint8ToString},
    {68, none},
    {69, cnv_uint8ToBooleanTrunc},
    {70, cnv_uint8ToInt8Trunc},
    {71, cnv_uint8ToInt16Trunc},
    {72, cnv_uint8ToUInt16Trunc},
    {73, cnv_uint8ToInt32Trunc},
    {74, cnv_uint8ToUInt32Trunc},
    {75, cnv_uint8ToInt64Trunc},
    {76, cnv_uint8ToUInt64Trunc},
    {77, cnv_uint8ToFloatTrunc},
    {78, cnv_uint8ToDoubleTrunc},
    {79, cnv_uint8ToDecimalTrunc},
    {80, none},
    {81, cnv_uint8ToRowidTrunc},
    {82, cnv_int16ToString},
    {83, none},
    {84, cnv_int16ToBooleanTrunc},
    {85, cnv_int16ToInt8Trunc},
    {86, cnv_int16ToUInt8Trunc},
    {87, cnv_int16ToUInt16Trunc},
    {88, cnv_int16ToInt32Trunc},
    {89, cnv_int16ToUInt32Trunc},
    {90, cnv_int16ToInt64Trunc},
    {91, cnv_int16ToUInt64Trunc},
    {92, cnv_int16ToFloatTrunc},
    {93, cnv_int16ToDoubleTrunc},
    {94, cnv_int16ToDecimalTrunc},
    {95, none},
    {96, cnv_int16ToRowidTrunc},
    {97, cnv_uint16ToString},
    {98, none},
    {99, cnv_uint16ToBooleanTrunc},
    {100, cnv_uint16ToInt8Trunc},
    {101, cnv_uint16ToUInt8Trunc},
    {102, cnv_uint16ToInt16Trunc},
    {103, cnv_uint16ToInt32Trunc},
    {104, cnv_uint16ToUInt32Trunc},
    {105, cnv_uint16ToInt64Trunc},
    {106, cnv_uint16ToUInt64Trunc},
    {107, cnv_uint16ToFloatTrunc},
    {108, cnv_uint16ToDoubleTrunc},
    {109, cnv_uint16ToDecimalTrunc},
    {110, none},
    {111, cnv_uint16ToRowidTrunc},
    {112, cnv_int32ToString},
    {113, none},
    {114, cnv_int32ToBooleanTrunc},
    {115, cnv_int32ToInt8Trunc},
    {116, cnv_int32ToUInt8Trunc},
    {117, cnv_int32ToInt16Trunc},
    {118, cnv_int32ToUInt16Trunc},
    {119, cnv_int32ToUInt32Trunc},
    {120, cnv_int32ToInt64Trunc},
    {121, cnv_int32ToUInt64Trunc},
    {122, cnv_int32ToFloatTrunc},
    {123, cnv_int32ToDoubleTrunc},
    {124, cnv_int32ToDecimalTrunc},
    {125, none},
    {126, cnv_int32ToRowidTrunc},
    {127, cnv_uint32ToString},
    {128, none},
    {129, cnv_uint32ToBooleanTrunc},
    {130, cnv_uint32ToInt8Trunc},
    {131, cnv_uint32ToUInt8Trunc},
    {132, cnv_uint32ToInt16Trunc},
    {133, cnv_uint32ToUInt16Trunc},
    {134, cnv_uint32ToInt32Trunc},
    {135, cnv_uint32ToInt64Trunc},
    {136, cnv_uint32ToUInt64Trunc},
    {137, cnv_uint32ToFloatTrunc},
    {138, cnv_uint32ToDoubleTrunc},
    {139, cnv_uint32ToDecimalTrunc},
    {140, none},
    {141, cnv_uint32ToRowidTrunc},
    {142, cnv_int64ToString},
    {143, none},
    {144, cnv_int64ToBooleanTrunc},
    {145, cnv_int64ToInt8Trunc},
    {146, cnv_int64ToUInt8Trunc},
    {147, cnv_int64ToInt16Trunc},
    {148, cnv_int64ToUInt16Trunc},
    {149, cnv_int64ToInt32Trunc},
    {150, cnv_int64ToUInt32Trunc},
    {151, cnv_int64ToUInt64Trunc},
    {152, cnv_int64ToFloatTrunc},
    {153, cnv_int64ToDoubleTrunc},
    {154, cnv_int64ToDecimalTrunc},
    {155, none},
    {156, cnv_int64ToRowidTrunc},
    {157, cnv_uint64ToString},
    {158, none},
    {159, cnv_uint64ToBooleanTrunc},
    {160, cnv_uint64ToInt8Trunc},
    {161, cnv_uint64ToUInt8Trunc},
    {162, cnv_uint64ToInt16Trunc},
    {163, cnv_uint64ToUInt16Trunc},
    {164, cnv_uint64ToInt32Trunc},
    {165, cnv_uint64ToUInt32Trunc},
    {166, cnv_uint64ToInt64Trunc},
    {167, cnv_uint64ToFloatTrunc},
    {168, cnv_uint64ToDoubleTrunc},
    {169, cnv_uint64ToDecimalTrunc},
    {170, none},
    {171, cnv_uint64ToRowidTrunc},
    {172, cnv_floatToString},
    {173, none},
    {174, cnv_floatToBooleanTrunc},
    {175, cnv_floatToInt8Trunc},
    {176, cnv_floatToUInt8Trunc},
    {177, cnv_floatToInt16Trunc},
    {178, cnv_floatToUInt16Trunc},
    {179, cnv_floatToInt32Trunc},
    {180, cnv_floatToUInt32Trunc},
    {181, cnv_floatToInt64Trunc},
    {182, cnv_floatToUInt64Trunc},
    {183, cnv_floatToDoubleTrunc},
    {184, cnv_floatToDecimalTrunc},
    {185, none},
    {186, cnv_doubleToString},
    {187, none},
    {188, cnv_doubleToBooleanTrunc},
    {189, cnv_doubleToInt8Trunc},
    {190, cnv_doubleToUInt8Trunc},
    {191, cnv_doubleToInt16Trunc},
    {192, cnv_doubleToUInt16Trunc},
    {193, cnv_doubleToInt32Trunc},
    {194, cnv_doubleToUInt32Trunc},
    {195, cnv_doubleToInt64Trunc},
    {196, cnv_doubleToUInt64Trunc},
    {197, cnv_doubleToFloatTrunc},
    {198, cnv_doubleToDecimalTrunc},
    {199, none},
    {200, cnv_decimalToString},
    {201, none},
    {202, cnv_decimalToBooleanTrunc},
    {203, cnv_decimalToInt8Trunc},
    {204, cnv_decimalToUInt8Trunc},
    {205, cnv_decimalToInt16Trunc},
    {206, cnv_decimalToUInt16Trunc},
    {207, cnv_decimalToInt32Trunc},
    {208, cnv_decimalToUInt32Trunc},
    {209, cnv_decimalToInt64Trunc},
    {210, cnv_decimalToUInt64Trunc},
    {211, cnv_decimalToFloatTrunc},
    {212, cnv_decimalToDoubleTrunc},
    {213, none},
    {214, none},
    {215, none},
    {216, none},
    {217, none},
    {218, none},
    {219, cnv_packedDecimalToInt16},
    {220, cnv_packedDecimalToUInt16},
    {221, cnv_packedDecimalToInt32},
    {222, cnv_packedDecimalToUInt32},
    {223, cnv_packedDecimalToInt64},
    {224, cnv_packedDecimalToUInt64},
    {225, cnv_packedDecimalToFloat},
    {226, cnv_packedDecimalToDouble},
    {227, cnv_packedDecimalToDecimal},
    {228, cnv_dateToString},
    {229, none},
    {230, cnv_dateToTimestamp},
    {231, cnv_dateToTimestampTZ},
    {232, cnv_timeToString},
    {233, none},
    {234, cnv_timeToTimeTZ},
    {235, cnv_timeToTimestamp},
    {236, cnv_timeToTimestampTZ},
    {237, cnv_timeTZToString},
    {238, none},
    {239, cnv_timeTZToTime},
    {240, cnv_timeTZToTimestamp},
    {241, cnv_timeTZToTimestampTZ},
    {242, cnv_timestampToString},
    {243, none},
    {244, cnv_timestampToDate},
    {245, cnv_timestampToTime},
    {246, cnv_timestampToTimeTZ},
    {247, cnv_timestampToTimestampTZ},
    {248, cnv_timestampTZToString},
    {249, none},
    {250, cnv_timestampTZToDate},
    {251, cnv_timestampTZToTime},
    {252, cnv_timestampTZToTimeTZ},
    {253, cnv_timestampTZToTimestamp},
    {254, cnv_uint64ToString},
    {255, none},
    {256, cnv_uint64ToInt8Trunc},
    {257, cnv_uint64ToUInt8Trunc},
    {258, cnv_uint64ToInt16Trunc},
    {259, cnv_uint64ToUInt16Trunc},
    {260, cnv_uint64ToInt32Trunc},
    {261, cnv_uint64ToUInt32Trunc},
    {262, cnv_uint64ToInt64Trunc},
    {263, cnv_uint64ToUInt64Trunc},
    {264, cnv_uuidToString},
    {265, none},
    {266, cnv_uuidToBinary},
    {267, cnv_int8ToBinary},
    {268, cnv_int8ToBooleanTrunc},
    {269, cnv_int8ToInt8Trunc},
    {270, cnv_uint8ToBinary},
    {271, cnv_uint8ToUInt8Trunc},
    {272, cnv_int16ToBinary},
    {273, cnv_int16ToInt16Trunc},
    {274, cnv_uint16ToBinary},
    {275, cnv_uint16ToUInt16Trunc},
    {276, cnv_int32ToBinary},
    {277, cnv_int32ToInt32Trunc},
    {278, cnv_uint32ToBinary},
    {279, cnv_uint32ToUInt32Trunc},
    {280, cnv_int64ToBinary},
    {281, cnv_int64ToInt64Trunc},
    {282, cnv_uint64ToBinary},
    {283, cnv_uint64ToUInt64Trunc},
    {284, cnv_floatToBinary},
    {285, cnv_floatToFloatTrunc},
    {286, cnv_doubleToBinary},
    {287, cnv_doubleToDoubleTrunc},
    {288, cnv_decimalToBinary},
    {289, cnv_decimalToDecimalTrunc},
    {290, cnv_dateToDate},
    {291, cnv_timeToTime},
    {292, cnv_timeTZToTimeTZ},
    {293, cnv_timestampToTimestamp},
    {294, cnv_timestampTZToTimestampTZ},
    {295, cnv_uint64ToUInt64Trunc},
    {296, cnv_uuidToUuidTrunc},
};

namespace {

using namespace convert;

// ---- Lookup ---------------------------------------------------------------------------------

constexpr bool rowsAreInOrder() {
    for (size_t row = 0; row < CNV_TYPES; ++row)
        if (kindOf(typeData[row].type).row != row)
            return false;
    return true;
}
static_assert(rowsAreInOrder());

constexpr bool slotsAreInOrder() {
    for (size_t slot = 0; slot < CNV_SLOTS; ++slot)
        if (cnvFcns[slot].code != slot)
            return false;
    return true;
}
static_assert(slotsAreInOrder());
static_assert(cnvFcns[CNV_SLOTS - 1].function == cnv_uuidToUuidTrunc);

constexpr bool codesHaveSlots() {
    for (const auto &row : cnv_codes)
        for (const CNVCODE code : row)
            if (code >= CNV_SLOTS)
                return false;
    return true;
}
static_assert(codesHaveSlots());

} // namespace

OAK_RETCODE getConvertCode(OAK_TYPE srcType, OAK_TYPE dstType, CNVCODE *pCode) {
    const CNVCODE code = codeOf(kindOf(srcType), kindOf(dstType));
    if (code == 0)
        return eINVCONVERT;
    if (pCode != nullptr)
        *pCode = code;
    return sOKAY;
}

// ---- Exported -------------------------------------------------------------------------------

OAK_RETCODE b_convertVerify(OAK_TYPE typeSrc, OAK_TYPE typeDst, CNVCODE *pCnvCode) {
    return getConvertCode(typeSrc, typeDst, pCnvCode);
}
