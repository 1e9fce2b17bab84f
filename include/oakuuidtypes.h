/* UUIDs (RFC 4122) and the numeric structure of the call-level interface.
 *
 * Law: the 16 bytes of an OAK_UUID_T lie in memory in the order of RFC 4122,
 * on every machine, so that memcmp orders UUIDs as their texts do. The
 * functions stand in uuid.h and numeric.h. */
#ifndef OAKUUIDTYPES_H
#define OAKUUIDTYPES_H

#include <stdint.h>

typedef struct OAK_UUID_T {
    uint32_t time_low;                   /* stored byte order */
    uint16_t time_mid;                   /* stored byte order */
    uint16_t time_high_and_version;      /* stored byte order; version in the top four bits */
    uint8_t clock_seq_high_and_reserved; /* variant in the top two bits */
    uint8_t clock_seq_low;
    uint8_t node[6];
} OAK_UUID_T;

/* A decimal as an unsigned 128-bit integer, least significant byte first. */
typedef struct OAK_NUMERIC_T {
    uint8_t precision; /* digits */
    int8_t scale;      /* digits behind the point */
    uint8_t sign;      /* 1 positive, 0 negative */
    uint8_t val[16];
} OAK_NUMERIC_T;

#endif
