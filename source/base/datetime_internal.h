// Internal to the value and conversion modules: the unguarded cores of the
// calendar. Called by datetime.cpp, by the type tables and conversions that
// print through an output function or scan a text in place, and by the tests.
//
// Law: no core tests its pointers, which are valid unless a line says that one
// may be null. What datetime.h says about statuses holds here too.
#ifndef DATETIME_INTERNAL_H
#define DATETIME_INTERNAL_H

#include "datetime.h"

// ---- Calendar and clock ------------------------------------------------------

// Days in a month, 1 to 12, of any year.
uint16_t lastDayOfMonth(int32_t year, uint16_t month);

// The number of a day. Checks nothing: a day past the month's end carries into the
// next month, and the count is taken modulo 2 to the 32nd.
OAK_PACKED_DATE_T makeDate(int32_t year, uint16_t month, uint16_t day);

// The inverse for 1 to OAK_DATE_MAX in constant time. What lies above is taken as
// 1; 0 gives year 0, month 1, day 365.
void queryDate(OAK_PACKED_DATE_T date, int32_t *year, uint16_t *month, uint16_t *day);
void dateUnpack(OAK_PACKED_DATE_T date, OAK_DATE_T *fields);

// eINVLITERAL for fields out of range; for a time of a day or more, whose hour and
// fraction are stored all the same.
OAK_RETCODE timePack(const OAK_TIME_T *fields, OAK_PACKED_TIME_T *time);
OAK_RETCODE timeUnpack(OAK_PACKED_TIME_T time, OAK_TIME_T *fields);
OAK_RETCODE timestampPack(const OAK_TIMESTAMP_T *fields, OAK_PACKED_TIMESTAMP_T *timestamp);
OAK_RETCODE timestampUnpack(OAK_PACKED_TIMESTAMP_T timestamp, OAK_TIMESTAMP_T *fields);

// Moves a date by a shift of -1, 0 or 1 days; always sOKAY. `out` may be null.
// Nothing is checked at the ends of the calendar.
OAK_RETCODE setDate(OAK_PACKED_DATE_T date, int32_t diff, OAK_PACKED_DATE_T *out);

// UTC to local time of `tz_disp`; eBASE_INVTIMEZONE. `out` may be null.
OAK_RETCODE timestamptzToLocalTimestamp(OAK_PACKED_TIMESTAMPTZ_T timestamptz, int16_t tz_disp,
                                        OAK_PACKED_TIMESTAMP_T *out);

// The platform's clock. Either output of the first may be null.
OAK_RETCODE getCurrentUTC(OAK_PACKED_DATE_T *date, OAK_PACKED_TIME_T *time);
OAK_RETCODE timestampNow(int16_t time_zone, OAK_PACKED_TIMESTAMP_T *pts);

// ---- Values to text ------------------------------------------------------------

// Emit the text character by character, without a terminator. A value that is
// refused emits nothing; the status of `fcn` ends the run.
OAK_RETCODE dt_dateFormat(OAK_PACKED_DATE_T date, OAK_DATE_FORMAT format, char separator,
                          OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx);
OAK_RETCODE dt_timeFormat(OAK_PACKED_TIME_T time, OAK_TIME_FORMAT format, OAK_OUTPUT_FCN fcn,
                          OAK_OUTPUT_CTX ctx);
// Prints any displacement; its range is the caller's affair.
OAK_RETCODE dt_timezoneFormat(int16_t tz, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx);
OAK_RETCODE dt_timetzFormat(OAK_PACKED_TIMETZ_T timetz, OAK_TIME_FORMAT format, OAK_OUTPUT_FCN fcn,
                            OAK_OUTPUT_CTX ctx);
OAK_RETCODE dt_timestampFormat(OAK_PACKED_TIMESTAMP_T timestamp, OAK_DATE_FORMAT dateFormat,
                               char separator, OAK_TIME_FORMAT timeFormat, OAK_OUTPUT_FCN fcn,
                               OAK_OUTPUT_CTX ctx);
OAK_RETCODE dt_timestamptzFormat(OAK_PACKED_TIMESTAMPTZ_T timestamptz, OAK_DATE_FORMAT dateFormat,
                                 char separator, OAK_TIME_FORMAT timeFormat, OAK_OUTPUT_FCN fcn,
                                 OAK_OUTPUT_CTX ctx);

// ---- Text to values ------------------------------------------------------------

// The portions move *pstr behind what they read, and leave it alone on failure.
OAK_RETCODE convertStringToDatePortion(const char **pstr, OAK_DATE_FORMAT date_fmt, OAK_DATE_T *cd);
OAK_RETCODE convertStringToTimePortion(const char **pstr, OAK_PACKED_TIME_T *ptm);
OAK_RETCODE convertStringToTimezonePortion(const char **pstr, int16_t *ptz);

// A whole value from the start of a text.
OAK_RETCODE dt_dateFromString(const char *text, OAK_DATE_FORMAT format, OAK_PACKED_DATE_T *date);
OAK_RETCODE dt_timetzFromString(const char *text, OAK_PACKED_TIMETZ_T *timetz);
OAK_RETCODE dt_timestampFromString(const char *text, OAK_DATE_FORMAT format,
                                   OAK_PACKED_TIMESTAMP_T *timestamp);
OAK_RETCODE dt_timestamptzFromString(const char *text, OAK_DATE_FORMAT format,
                                     OAK_PACKED_TIMESTAMPTZ_T *timestamptz);

#endif
