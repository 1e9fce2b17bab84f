/* The calendar and the clock: packing, reading, shifting, parsing and printing
 * dates, times and timestamps, with and without a zone.
 *
 * Law: packed values are numbers that sort as what they mean (oakdatetimetypes.h);
 * the forms with a zone hold UTC, and their zone says where they are shown. The
 * Gregorian rule runs back to year 1. No function allocates but the two that say
 * so, none keeps state, and all of them may run on any thread. A failure leaves
 * the output alone unless its function says otherwise.
 *
 * Contents: zero values; pack and unpack; field readers; values to text; text to
 * values; formats; zones; the current time; differences.
 *
 * Example: a date of a form to a stored number and back to text.
 *     OAK_DATE_T fields = {2024, 2, 29};
 *     OAK_PACKED_DATE_T date;
 *     char text[11];
 *     if (oak_datePack(&fields, &date) == sOKAY &&
 *         oak_dateToString(date, OAK_YYYYMMDD, '-', text, sizeof text, NULL) == sOKAY)
 *         puts(text); */
#ifndef DATETIME_H
#define DATETIME_H

#include "oakdatetimetypes.h"
#include "osltypes.h"

OAK_C_BEGIN

/* Bounds that callers meet. */
enum {
    OAK_DATE_MAX = 3652059,   /* 9999-12-31; what lies above unpacks as 0001-01-01 */
    OAK_TIME_MAX = 863999999, /* the last ten-thousandth of a day */
    OAK_TIMEZONE_MAX = 840,   /* minutes; fourteen hours either way */
    OAK_DATE_TEXT_SIZE = 11,  /* bytes of the longest text, terminator included */
    OAK_TIME_TEXT_SIZE = 14,
    OAK_TIMETZ_TEXT_SIZE = 21,
    OAK_TIMESTAMP_TEXT_SIZE = 25,
    OAK_TIMESTAMPTZ_TEXT_SIZE = 32
};

/* ---- Zero values --------------------------------------------------------- */

/* 0001-01-01, midnight, zone 0. */
OAK_API extern const OAK_PACKED_DATE_T oak_dateZero;
OAK_API extern const OAK_PACKED_TIME_T oak_timeZero;
OAK_API extern const OAK_PACKED_TIMETZ_T oak_timetzZero;
OAK_API extern const OAK_PACKED_TIMESTAMP_T oak_timestampZero;
OAK_API extern const OAK_PACKED_TIMESTAMPTZ_T oak_timestamptzZero;

/* ---- Pack and unpack ------------------------------------------------------ */

/* Pack the fields into a number. Null pointer: eINVNULLARG. In this order:
 * a zone outside -840 to 840: eBASE_INVTIMEZONE; a year below 1, a month outside
 * 1 to 12, a day outside 1 to 31: eBASE_INVDATE; an hour above 23, a minute or
 * second above 59, a fraction above 9999: eINVLITERAL.
 *
 * Deliberately lenient: the day is not compared with the length of its month, so
 * 31 February packs as a day of March; and the year has no upper bound, so a year
 * above 9999 packs into a number that unpacks as 0001-01-01. From year 11759222
 * on the count of days is taken modulo 2 to the 32nd. Times of the zoned forms
 * are the caller's UTC and are stored as given. */
OAK_API OAK_RETCODE oak_datePack(const OAK_DATE_T *fields, OAK_PACKED_DATE_T *packed);
OAK_API OAK_RETCODE oak_timePack(const OAK_TIME_T *fields, OAK_PACKED_TIME_T *packed);
OAK_API OAK_RETCODE oak_timetzPack(const OAK_TIMETZ_T *fields, OAK_PACKED_TIMETZ_T *packed);
OAK_API OAK_RETCODE oak_timestampPack(const OAK_TIMESTAMP_T *fields,
                                      OAK_PACKED_TIMESTAMP_T *packed);
OAK_API OAK_RETCODE oak_timestamptzPack(const OAK_TIMESTAMPTZ_T *fields,
                                        OAK_PACKED_TIMESTAMPTZ_T *packed);

/* Break a number down into its fields. Null pointer: eINVNULLARG. A time of a day
 * or more: eINVLITERAL; oak_timeUnpack has then stored hour (24 or more) and
 * fraction, and nothing else. A date cannot fail: 0 gives year 0, month 1, day 365,
 * and every number above OAK_DATE_MAX gives 0001-01-01. The zone is copied out;
 * nothing is converted. */
OAK_API OAK_RETCODE oak_dateUnpack(OAK_PACKED_DATE_T packed, OAK_DATE_T *fields);
OAK_API OAK_RETCODE oak_timeUnpack(OAK_PACKED_TIME_T packed, OAK_TIME_T *fields);
OAK_API OAK_RETCODE oak_timetzUnpack(OAK_PACKED_TIMETZ_T packed, OAK_TIMETZ_T *fields);
OAK_API OAK_RETCODE oak_timestampUnpack(OAK_PACKED_TIMESTAMP_T packed, OAK_TIMESTAMP_T *fields);
OAK_API OAK_RETCODE oak_timestamptzUnpack(OAK_PACKED_TIMESTAMPTZ_T packed,
                                          OAK_TIMESTAMPTZ_T *fields);

/* ---- Field readers -------------------------------------------------------- */

/* One field of a date, or of a timestamp's date. None reports failure.
 *   Year, Month (1 to 12), DayOfMonth (1 to 31)
 *   DayOfWeek      1 is Sunday, 7 is Saturday
 *   DayOfYear      1 January is 1
 *   Week           week 1 is the first seven days of the year, whatever weekday
 *                  the year starts on
 *   Quarter        1 to 4
 *   DayAbr, DayName, MonthAbr, MonthName    constant English texts */
OAK_API int32_t oak_dateYear(OAK_PACKED_DATE_T date);
OAK_API uint16_t oak_dateMonth(OAK_PACKED_DATE_T date);
OAK_API uint16_t oak_dateDayOfMonth(OAK_PACKED_DATE_T date);
OAK_API uint16_t oak_dateDayOfWeek(OAK_PACKED_DATE_T date);
OAK_API uint16_t oak_dateDayOfYear(OAK_PACKED_DATE_T date);
OAK_API uint16_t oak_dateWeek(OAK_PACKED_DATE_T date);
OAK_API uint16_t oak_dateQuarter(OAK_PACKED_DATE_T date);
OAK_API const char *oak_dateDayAbr(OAK_PACKED_DATE_T date);
OAK_API const char *oak_dateDayName(OAK_PACKED_DATE_T date);
OAK_API const char *oak_dateMonthAbr(OAK_PACKED_DATE_T date);
OAK_API const char *oak_dateMonthName(OAK_PACKED_DATE_T date);

OAK_API int32_t oak_timestampYear(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API uint16_t oak_timestampMonth(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API uint16_t oak_timestampDayOfMonth(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API uint16_t oak_timestampDayOfWeek(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API uint16_t oak_timestampDayOfYear(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API uint16_t oak_timestampWeek(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API uint16_t oak_timestampQuarter(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API const char *oak_timestampDayAbr(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API const char *oak_timestampDayName(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API const char *oak_timestampMonthAbr(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API const char *oak_timestampMonthName(OAK_PACKED_TIMESTAMP_T timestamp);

/* One field of a time, or of a timestamp's time. A time of a day or more gives 0
 * for minute, second and fraction, but its true hour, 24 or more, for the hour:
 * callers tell a damaged time by it. */
OAK_API uint16_t oak_timeHour(OAK_PACKED_TIME_T time);
OAK_API uint16_t oak_timeMinute(OAK_PACKED_TIME_T time);
OAK_API uint16_t oak_timeSecond(OAK_PACKED_TIME_T time);
OAK_API uint16_t oak_timeFraction(OAK_PACKED_TIME_T time);

OAK_API uint16_t oak_timestampHour(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API uint16_t oak_timestampMinute(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API uint16_t oak_timestampSecond(OAK_PACKED_TIMESTAMP_T timestamp);
OAK_API uint16_t oak_timestampFraction(OAK_PACKED_TIMESTAMP_T timestamp);

/* ---- Values to text ------------------------------------------------------- */

/* Write the value as terminated text into `buf` of `bufSize` bytes. The zoned
 * forms are shown in local time of their own zone, with a blank and the zone
 * behind: 2024-02-29 13:45:00 +02:00.
 *   format    a format value that is none prints nothing in its place
 *   separator '-', '/' or '.'
 *   buf       null to measure alone
 *   puSize    may be null; receives the bytes written, or with a null `buf` the
 *             bytes needed, the terminator counted in both
 * sTRUNCATE: `bufSize` is too small; what fits is there, terminated. eINVDATESEP:
 * another separator. eBASE_INVDATE: date 0. eINVLITERAL: a time of a day or more.
 * eBASE_INVTIMEZONE: a zone outside -840 to 840. Where a format rounds the
 * fraction, the rounding does not carry into the seconds: fraction 9999 prints as
 * .10, .100 and .1000. */
OAK_API OAK_RETCODE oak_dateToString(OAK_PACKED_DATE_T date, OAK_DATE_FORMAT format, char separator,
                                     char *buf, size_t bufSize, size_t *puSize);
OAK_API OAK_RETCODE oak_timeToString(OAK_PACKED_TIME_T time, OAK_TIME_FORMAT format, char *buf,
                                     size_t bufSize, size_t *puSize);
OAK_API OAK_RETCODE oak_timetzToString(OAK_PACKED_TIMETZ_T timetz, OAK_TIME_FORMAT format,
                                       char *buf, size_t bufSize, size_t *puSize);
OAK_API OAK_RETCODE oak_timestampToString(OAK_PACKED_TIMESTAMP_T timestamp,
                                          OAK_DATE_FORMAT dateFormat, char separator,
                                          OAK_TIME_FORMAT timeFormat, char *buf, size_t bufSize,
                                          size_t *puSize);
OAK_API OAK_RETCODE oak_timestamptzToString(OAK_PACKED_TIMESTAMPTZ_T timestamptz,
                                            OAK_DATE_FORMAT dateFormat, char separator,
                                            OAK_TIME_FORMAT timeFormat, char *buf, size_t bufSize,
                                            size_t *puSize);

/* ---- Text to values ------------------------------------------------------- */

/* Read a value from the start of a text; what stands behind it is not looked at.
 * Leading white space is passed before each part.
 *   date  three numbers in the order of `format`, joined by '-', '/' or '.', the
 *         same twice; or an English month, whole or in three letters, the day right
 *         behind it, an optional comma and the year, as Jan5, 2020
 *   time  hour:minute:second, all three; then an optional point with a number that
 *         is the fraction in ten-thousandths as it stands (.5 is five of them, .5000
 *         half a second); then an optional p, pm, a or am in either case
 *   zone  a sign, hours:minutes
 * A timestamp may lack its date (0001-01-01 then) or its time (midnight); the other
 * forms are whole. A time with a zone is turned into UTC.
 * Null text or output: eINVNULLARG. Date not understood or out of range:
 * eBASE_INVDATE. Numeric date with a format value that is none: eINVDATEFMT. Time
 * not understood or out of range, zone hours above 24 or minutes above 59:
 * eINVLITERAL. Zone not understood: eRANGE. Zone outside -840 to 840:
 * eBASE_INVTIMEZONE, which oak_timezoneFromString does not test. */
OAK_API OAK_RETCODE oak_dateFromString(const char *text, OAK_DATE_FORMAT format,
                                       OAK_PACKED_DATE_T *date);
OAK_API OAK_RETCODE oak_timeFromString(const char *text, OAK_PACKED_TIME_T *time);
OAK_API OAK_RETCODE oak_timetzFromString(const char *text, OAK_PACKED_TIMETZ_T *timetz);
OAK_API OAK_RETCODE oak_timestampFromString(const char *text, OAK_DATE_FORMAT format,
                                            OAK_PACKED_TIMESTAMP_T *timestamp);
OAK_API OAK_RETCODE oak_timestamptzFromString(const char *text, OAK_DATE_FORMAT format,
                                              OAK_PACKED_TIMESTAMPTZ_T *timestamptz);
OAK_API OAK_RETCODE oak_timezoneFromString(const char *text, int16_t *tz_disp);

/* ---- Formats -------------------------------------------------------------- */

/* sOKAY for a format of the enumeration, else eINVDATEFMT or eINVTIMEFMT; for the
 * separators '-', '/' and '.', else eINVDATESEP. */
OAK_API OAK_RETCODE oak_dateValidateFormat(OAK_DATE_FORMAT format);
OAK_API OAK_RETCODE oak_dateValidateSeparator(char separator);
OAK_API OAK_RETCODE oak_timeValidateFormat(OAK_TIME_FORMAT format);

/* Read a format word such as MM/DD/YYYY, in either case, into its format and its
 * separator. eINVNULLARG: a null pointer. eINVDATEFMT: any other text; a separator
 * that was found is stored all the same. */
OAK_API OAK_RETCODE oak_dateParseFormatString(const char *format, OAK_DATE_FORMAT *fmt_type,
                                              char *sep_char);

/* Make the format word under `tag`; the caller frees it. eINVNULLARG: null
 * `fmtString`. eINVDATEFMT, eINVDATESEP, eINVTIMEFMT: as the validators.
 * eNOMEMORY. */
OAK_API OAK_RETCODE oak_dateCreateFormatString(OAK_DATE_FORMAT df, char ds, char **fmtString,
                                               OSL_MEMTAG tag);
OAK_API OAK_RETCODE oak_timeCreateFormatString(OAK_TIME_FORMAT format, char **fmtString,
                                               OSL_MEMTAG tag);

/* Read one of the words HH, HH:MM, HH:MM:SS, HH:MM:SS.F to HH:MM:SS.FFFF, in either
 * case. eINVNULLARG: a null pointer. eINVTIMEFMT: any other text. */
OAK_API OAK_RETCODE oak_timeParseFormatString(const char *text, OAK_TIME_FORMAT *format);

/* ---- Zones ---------------------------------------------------------------- */

/* Shift between UTC and local time of a zone in minutes east of UTC. The zone that
 * the value carries plays no part; the argument alone counts. eBASE_INVTIMEZONE: a
 * zone outside -840 to 840, tested first.
 *   oak_timetzToTime, oak_timetzToOakTime    UTC to local, wrapped within the day
 *   oak_timestamptzToTimestamp               UTC to local, the date moving along
 *   oak_timestamptzFromTimestamp             local to UTC; the zone is stored
 * A null output is accepted by oak_timetzToTime and oak_timestamptzToTimestamp,
 * which then only check the zone, and is eINVNULLARG in the others.
 * oak_timetzToOakTime unpacks as oak_timeUnpack does. */
OAK_API OAK_RETCODE oak_timetzToTime(OAK_PACKED_TIMETZ_T timetz, int16_t local_timezone,
                                     OAK_PACKED_TIME_T *out);
OAK_API OAK_RETCODE oak_timetzToOakTime(OAK_PACKED_TIMETZ_T timetz, int16_t local_timezone,
                                        OAK_TIME_T *ct);
OAK_API OAK_RETCODE oak_timestamptzToTimestamp(OAK_PACKED_TIMESTAMPTZ_T timestamptz,
                                               int16_t local_tz, OAK_PACKED_TIMESTAMP_T *out);
OAK_API OAK_RETCODE oak_timestamptzFromTimestamp(OAK_PACKED_TIMESTAMP_T timestamp, int16_t tz,
                                                 OAK_PACKED_TIMESTAMPTZ_T *out);

/* ---- The current time ----------------------------------------------------- */

/* Now, in the zone of the argument; the zoned forms store UTC beside the zone. A
 * zone outside -840 to 840: eBASE_INVTIMEZONE. A null output: sOKAY, and nothing
 * is done. */
OAK_API OAK_RETCODE oak_dateToday(int16_t time_zone, OAK_PACKED_DATE_T *date);
OAK_API OAK_RETCODE oak_timeNow(int16_t time_zone, OAK_PACKED_TIME_T *time);
OAK_API OAK_RETCODE oak_timetzNow(int16_t time_zone, OAK_PACKED_TIMETZ_T *timetz);
OAK_API OAK_RETCODE oak_timestampNow(int16_t time_zone, OAK_PACKED_TIMESTAMP_T *timestamp);
OAK_API OAK_RETCODE oak_timestamptzNow(int16_t time_zone, OAK_PACKED_TIMESTAMPTZ_T *timestamptz);

/* Seconds since 1970-01-01T00:00:00Z. */
OAK_API double oak_timestampNowAsDouble(void);

/* Now as text: YYYY-MM-DD, HH:MM:SS.FFFF, and the zone for the zoned forms. A text
 * that does not fit is cut with sOKAY. eBASE_INVTIMEZONE as above. */
OAK_API OAK_RETCODE oak_dateNowAsString(int16_t time_zone, char *buf, size_t bufSize);
OAK_API OAK_RETCODE oak_timeNowAsString(int16_t time_zone, char *buf, size_t bufSize);
OAK_API OAK_RETCODE oak_timetzNowAsString(int16_t time_zone, char *buf, size_t bufSize);
OAK_API OAK_RETCODE oak_timestampNowAsString(int16_t time_zone, char *buf, size_t bufSize);
OAK_API OAK_RETCODE oak_timestamptzNowAsString(int16_t time_zone, char *buf, size_t bufSize);

/* ---- Differences ---------------------------------------------------------- */

/* The whole days between two timestamps, positive whichever comes first.
 * eINVNULLARG: null `diff`. */
OAK_API OAK_RETCODE oak_timestampDaysDiff(OAK_PACKED_TIMESTAMP_T start, OAK_PACKED_TIMESTAMP_T end,
                                          uint32_t *diff);

OAK_C_END

#endif
