/* Dates and times: the packed forms that are stored and compared, the unpacked
 * forms that callers fill in and read, and the text formats.
 *
 * Law: a packed date counts days from 0001-01-01 as 1 on the proleptic
 * Gregorian calendar; a packed time counts ten-thousandths of a second since
 * midnight; zones are minutes east of UTC, and the packed forms with a zone
 * hold date and time in UTC. The functions stand in datetime.h. */
#ifndef OAKDATETIMETYPES_H
#define OAKDATETIMETYPES_H

#include <stdint.h>

#include "oakretcodetypes.h"

/* ---- Packed forms ------------------------------------------------------ */

typedef uint32_t OAK_PACKED_DATE_T; /* 1 is 0001-01-01, 3652059 is 9999-12-31 */
typedef uint32_t OAK_PACKED_TIME_T; /* 0 to 863999999 */

typedef struct OAK_PACKED_TIMESTAMP_T {
    OAK_PACKED_DATE_T date;
    OAK_PACKED_TIME_T time;
} OAK_PACKED_TIMESTAMP_T;

typedef struct OAK_PACKED_TIMETZ_T {
    OAK_PACKED_TIME_T time; /* UTC */
    int16_t tz;             /* minutes east, -840 to 840 */
} OAK_PACKED_TIMETZ_T;

typedef struct OAK_PACKED_TIMESTAMPTZ_T {
    OAK_PACKED_DATE_T date; /* UTC */
    OAK_PACKED_TIME_T time; /* UTC */
    int16_t tz;             /* minutes east, -840 to 840 */
} OAK_PACKED_TIMESTAMPTZ_T;

/* ---- Unpacked forms ---------------------------------------------------- */

typedef struct OAK_DATE_T {
    int32_t year;
    uint16_t month; /* 1 to 12 */
    uint16_t day;   /* 1 to 31 */
} OAK_DATE_T;

typedef struct OAK_TIME_T {
    uint16_t hour;     /* 0 to 23 */
    uint16_t minute;   /* 0 to 59 */
    uint16_t second;   /* 0 to 59 */
    uint16_t fraction; /* 0 to 9999, ten-thousandths of a second */
} OAK_TIME_T;

typedef struct OAK_TIMESTAMP_T {
    int32_t year;
    uint16_t month;
    uint16_t day;
    uint16_t hour;
    uint16_t minute;
    uint16_t second;
    uint16_t fraction;
} OAK_TIMESTAMP_T;

typedef struct OAK_TIMETZ_T {
    uint16_t hour;
    uint16_t minute;
    uint16_t second;
    uint16_t fraction;
    int16_t tz;
} OAK_TIMETZ_T;

typedef struct OAK_TIMESTAMPTZ_T {
    int32_t year;
    uint16_t month;
    uint16_t day;
    uint16_t hour;
    uint16_t minute;
    uint16_t second;
    uint16_t fraction;
    int16_t tz;
} OAK_TIMESTAMPTZ_T;

/* ---- Text formats ------------------------------------------------------ */

typedef enum OAK_DATE_FORMAT OAK_INT32_ENUM {
    OAK_MMDDYYYY = 1,
    OAK_YYYYMMDD = 2,
    OAK_DDMMYYYY = 3
} OAK_DATE_FORMAT;

typedef enum OAK_TIME_FORMAT OAK_INT32_ENUM {
    OAK_HH = 1,
    OAK_HHMM = 2,
    OAK_HHMMSS = 3,
    OAK_HHMMSSF = 4,
    OAK_HHMMSSFF = 5,
    OAK_HHMMSSFFF = 6,
    OAK_HHMMSSFFFF = 7
} OAK_TIME_FORMAT;

#endif
