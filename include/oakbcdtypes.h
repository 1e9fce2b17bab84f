/* The 32-digit decimal, its rounding modes and its packed form.
 *
 * Law: the value is sign * 0.d1d2d3... * 10^exp with the digits one a byte in
 * data[1] to data[prec]; data[0] is a carry slot, 0 in a normalized value, and
 * bytes past prec are 0. Zero has prec, exp and flags 0 and sign +1. The
 * functions stand in bcd.h. */
#ifndef OAKBCDTYPES_H
#define OAKBCDTYPES_H

#include <stdint.h>

#include "oakretcodetypes.h"

#define OAK_BCD_MAX_DIGITS 32

typedef struct OAK_BCD_T {
    uint8_t prec;  /* digits in use */
    int8_t exp;    /* digits before the point */
    uint8_t flags; /* BCD_FLAG_... */
    int8_t sign;   /* +1 or -1 */
    uint8_t data[OAK_BCD_MAX_DIGITS + 1];
} OAK_BCD_T;

/* Conditions, sticky through arithmetic. */
enum {
    BCD_FLAG_PRECISION = 0x01, /* digits were rounded away: sPRECISIONLOSS */
    BCD_FLAG_OVERFLOW = 0x02,  /* eRANGE */
    BCD_FLAG_DIVBY0 = 0x04,    /* eDIVBY0 */
    BCD_FLAG_UNDERFLOW = 0x08, /* sUNDERFLOW */
    BCD_FLAG_NOMEM = 0x10,     /* eNOMEMORY */
    BCD_FLAG_NAN = 0x20,       /* eNOTANUMBER */
    BCD_FLAG_FATAL = BCD_FLAG_OVERFLOW | BCD_FLAG_DIVBY0 | BCD_FLAG_NAN
};

typedef enum OAK_BCD_ROUNDING_MODE OAK_INT32_ENUM {
    OAK_BCD_ROUND_NEAREST_TIES_TO_EVEN = 0,
    OAK_BCD_ROUND_NEAREST_TIES_AWAY_FROM_ZERO = 1,
    OAK_BCD_ROUND_UP = 2,          /* towards plus infinity */
    OAK_BCD_ROUND_DOWN = 3,        /* towards minus infinity */
    OAK_BCD_ROUND_TOWARDS_ZERO = 4 /* and so does any other value */
} OAK_BCD_ROUNDING_MODE;

#endif
