// Conversions of dates and times: to text, from text, and among themselves. Rests on the
// calendar; called through the matrix. The scanner of date literals, cnv_stringToDate,
// stands in convert_scan.cpp.
//
// What a source lacks is taken from the clock, in the zone of the conversion: a date
// becomes a timestamp with the time of now and not with midnight, and a time a timestamp
// of today. A destination that is too small is eDATALOST, since a date cannot be cut;
// only the fraction digits of a timestamp's text may be given up, with sTRUNCATE.
#include "convert_internal.h"

#include "datetime_internal.h"

using namespace convert;

namespace {

using Date = OAK_PACKED_DATE_T;
using Time = OAK_PACKED_TIME_T;
using TimeTZ = OAK_PACKED_TIMETZ_T;
using Timestamp = OAK_PACKED_TIMESTAMP_T;
using TimestampTZ = OAK_PACKED_TIMESTAMPTZ_T;

static_assert(sizeof(Date) == 4 && sizeof(Time) == 4 && sizeof(TimeTZ) == 8 &&
              sizeof(Timestamp) == 8 && sizeof(TimestampTZ) == 12);

// ---- To text --------------------------------------------------------------------------------

// A work area for any of the texts; `size` counts the terminator.
struct MomentText {
    char chars[OAK_TIMESTAMPTZ_TEXT_SIZE];
    size_t size;
};

char separatorOf(const CNVCB *block) {
    return static_cast<char>(block->date_sep);
}

OAK_RETCODE printDate(const CNVCB *block, MomentText *text) {
    return oak_dateToString(load<Date>(block->pvSrc), block->date_format, separatorOf(block),
                            text->chars, sizeof text->chars, &text->size);
}

OAK_RETCODE printTime(const CNVCB *block, MomentText *text) {
    return oak_timeToString(load<Time>(block->pvSrc), block->time_format, text->chars,
                            sizeof text->chars, &text->size);
}

OAK_RETCODE printTimeTZ(const CNVCB *block, MomentText *text) {
    return oak_timetzToString(load<TimeTZ>(block->pvSrc), block->time_format, text->chars,
                              sizeof text->chars, &text->size);
}

OAK_RETCODE printTimestamp(const CNVCB *block, MomentText *text) {
    return oak_timestampToString(load<Timestamp>(block->pvSrc), block->date_format,
                                 separatorOf(block), block->time_format, text->chars,
                                 sizeof text->chars, &text->size);
}

OAK_RETCODE printTimestampTZ(const CNVCB *block, MomentText *text) {
    return oak_timestamptzToString(load<TimestampTZ>(block->pvSrc), block->date_format,
                                   separatorOf(block), block->time_format, text->chars,
                                   sizeof text->chars, &text->size);
}

// What becomes of a text that is longer than its destination: the bytes that are kept,
// with the terminator, and the status.
struct Cut {
    size_t size;
    OAK_RETCODE rc;
};
using CutRule = Cut (*)(const CNVCB *block, size_t size);

Cut cutNothing(const CNVCB *block, size_t) {
    return {block->tDstLen, eDATALOST};
}

bool isTimeFormat(OAK_TIME_FORMAT format) {
    return format >= OAK_HH && format <= OAK_HHMMSSFFFF;
}

// Bytes of the point and the fraction digits.
size_t fractionBytes(OAK_TIME_FORMAT format) {
    return format > OAK_HHMMSS ? static_cast<size_t>(format - OAK_HHMMSS) + 1 : 0;
}

// As many bytes may go as the fraction has. They go from the end of the text, whatever
// stands there: with a zone behind the fraction it is the zone that is cut.
Cut cutFraction(const CNVCB *block, size_t size) {
    if (!isTimeFormat(block->time_format))
        return {block->tDstLen, eDATALOST};
    const size_t fraction = fractionBytes(block->time_format);
    const OAK_RETCODE rc = size > fraction + block->tDstLen ? eDATALOST : sTRUNCATE;
    const bool barePoint = fraction != 0 && size == fraction + block->tDstLen - 1;
    return {block->tDstLen - (barePoint ? 1 : 0), rc};
}

template <auto print, CutRule cut>
OAK_RETCODE momentToText(CNVCB *block) {
    MomentText text;
    const OAK_RETCODE rc = print(block, &text);
    if (rc != sOKAY)
        return rc;
    const Cut kept = overflows(block, text.size) ? cut(block, text.size) : Cut{text.size, sOKAY};
    if (block->pvDst != nullptr)
        osl_strncpyZ(static_cast<char *>(block->pvDst), text.chars, kept.size);
    block->tSize = kept.size;
    return kept.rc;
}

// ---- From text ------------------------------------------------------------------------------

OAK_RETCODE readTime(const CNVCB *block, Time *time) {
    const auto *text = static_cast<const char *>(block->pvSrc);
    return convertStringToTimePortion(&text, time);
}

OAK_RETCODE readTimeTZ(const CNVCB *block, TimeTZ *timetz) {
    return dt_timetzFromString(static_cast<const char *>(block->pvSrc), timetz);
}

OAK_RETCODE readTimestamp(const CNVCB *block, Timestamp *timestamp) {
    return dt_timestampFromString(static_cast<const char *>(block->pvSrc), block->date_format,
                                  timestamp);
}

OAK_RETCODE readTimestampTZ(const CNVCB *block, TimestampTZ *timestamptz) {
    return dt_timestamptzFromString(static_cast<const char *>(block->pvSrc), block->date_format,
                                    timestamptz);
}

template <class To>
OAK_RETCODE textToMoment(CNVCB *block, OAK_RETCODE (*read)(const CNVCB *, To *)) {
    To moment{};
    const OAK_RETCODE rc = read(block, &moment);
    return rc == sOKAY ? storeResult(block, moment) : rc;
}

// ---- Among themselves -----------------------------------------------------------------------

OAK_RETCODE dateToTimestamp(const CNVCB *block, const Date &date, Timestamp *timestamp) {
    TimeTZ now{};
    const OAK_RETCODE rc = oak_timetzNow(block->tz_disp, &now);
    timestamp->date = date;
    return rc == sOKAY ? oak_timetzToTime(now, block->tz_disp, &timestamp->time) : rc;
}

OAK_RETCODE dateToTimestampTZ(const CNVCB *block, const Date &date, TimestampTZ *timestamptz) {
    TimeTZ now{};
    const OAK_RETCODE rc = oak_timetzNow(block->tz_disp, &now);
    timestamptz->date = date;
    timestamptz->time = now.time;
    timestamptz->tz = now.tz;
    return rc;
}

OAK_RETCODE timeToTimeTZ(const CNVCB *, const Time &time, TimeTZ *timetz) {
    timetz->time = time;
    return sOKAY;
}

OAK_RETCODE timeToTimestamp(const CNVCB *block, const Time &time, Timestamp *timestamp) {
    timestamp->time = time;
    return oak_dateToday(block->tz_disp, &timestamp->date);
}

OAK_RETCODE timeToTimestampTZ(const CNVCB *block, const Time &time, TimestampTZ *timestamptz) {
    timestamptz->time = time;
    timestamptz->tz = block->tz_disp;
    return oak_dateToday(block->tz_disp, &timestamptz->date);
}

OAK_RETCODE timeTZToTime(const CNVCB *, const TimeTZ &timetz, Time *time) {
    return oak_timetzToTime(timetz, timetz.tz, time);
}

// The date is today's in UTC, as the time is UTC.
OAK_RETCODE timeTZToTimestampTZ(const CNVCB *, const TimeTZ &timetz, TimestampTZ *timestamptz) {
    const OAK_RETCODE rc = oak_timetzToTime(timetz, timetz.tz, nullptr);
    if (rc != sOKAY)
        return rc;
    timestamptz->time = timetz.time;
    timestamptz->tz = timetz.tz;
    return oak_dateToday(0, &timestamptz->date);
}

OAK_RETCODE timeTZToTimestamp(const CNVCB *block, const TimeTZ &timetz, Timestamp *timestamp) {
    TimestampTZ moment{};
    const OAK_RETCODE rc = timeTZToTimestampTZ(block, timetz, &moment);
    return rc == sOKAY ? oak_timestamptzToTimestamp(moment, block->tz_disp, timestamp) : rc;
}

OAK_RETCODE timestampToDate(const CNVCB *, const Timestamp &timestamp, Date *date) {
    *date = timestamp.date;
    return sOKAY;
}

OAK_RETCODE timestampToTime(const CNVCB *, const Timestamp &timestamp, Time *time) {
    *time = timestamp.time;
    return sOKAY;
}

OAK_RETCODE timestampToTimeTZ(const CNVCB *, const Timestamp &timestamp, TimeTZ *timetz) {
    timetz->time = timestamp.time;
    return sOKAY;
}

OAK_RETCODE timestampToTimestampTZ(const CNVCB *, const Timestamp &timestamp,
                                   TimestampTZ *timestamptz) {
    timestamptz->date = timestamp.date;
    timestamptz->time = timestamp.time;
    return sOKAY;
}

// Local time in the value's own zone.
OAK_RETCODE timestampTZToTimestamp(const CNVCB *, const TimestampTZ &timestamptz,
                                   Timestamp *timestamp) {
    return oak_timestamptzToTimestamp(timestamptz, timestamptz.tz, timestamp);
}

OAK_RETCODE timestampTZToDate(const CNVCB *block, const TimestampTZ &timestamptz, Date *date) {
    Timestamp local{};
    const OAK_RETCODE rc = timestampTZToTimestamp(block, timestamptz, &local);
    *date = local.date;
    return rc;
}

OAK_RETCODE timestampTZToTime(const CNVCB *block, const TimestampTZ &timestamptz, Time *time) {
    Timestamp local{};
    const OAK_RETCODE rc = timestampTZToTimestamp(block, timestamptz, &local);
    *time = local.time;
    return rc;
}

OAK_RETCODE timestampTZToTimeTZ(const CNVCB *, const TimestampTZ &timestamptz, TimeTZ *timetz) {
    timetz->time = timestamptz.time;
    timetz->tz = timestamptz.tz;
    return sOKAY;
}

// The result begins as zeros, so the bytes between its fields are zeros as well.
template <class From, class To>
OAK_RETCODE convertMoment(CNVCB *block, OAK_RETCODE (*rule)(const CNVCB *, const From &, To *)) {
    To result{};
    const OAK_RETCODE rc = rule(block, load<From>(block->pvSrc), &result);
    return rc == sOKAY ? storeResult(block, result) : rc;
}

template <class From, class To>
OAK_RETCODE convertFitting(CNVCB *block, OAK_RETCODE (*rule)(const CNVCB *, const From &, To *)) {
    return overflows(block, sizeof(To)) ? eDATALOST : convertMoment(block, rule);
}

template <class Moment>
OAK_RETCODE copyMoment(CNVCB *block) {
    const OAK_RETCODE rc = copyValueTrunc(block, sizeof(Moment));
    return rc == sTRUNCATE ? eDATALOST : rc;
}

} // namespace

// ---- The functions by name ------------------------------------------------------------------

#define CONVERSION(name, call)                                                                     \
    OAK_RETCODE cnv_##name(CNVCB *block) {                                                         \
        return call;                                                                               \
    }
#define FITTING(name) CONVERSION(name, convertFitting(block, name))

CONVERSION(dateToString, (momentToText<printDate, cutNothing>(block)))
CONVERSION(timeToString, (momentToText<printTime, cutNothing>(block)))
CONVERSION(timeTZToString, (momentToText<printTimeTZ, cutNothing>(block)))
CONVERSION(timestampToString, (momentToText<printTimestamp, cutFraction>(block)))
CONVERSION(timestampTZToString, (momentToText<printTimestampTZ, cutFraction>(block)))

CONVERSION(stringToTime, textToMoment(block, readTime))
CONVERSION(stringToTimeTZ, textToMoment(block, readTimeTZ))
CONVERSION(stringToTimestamp, textToMoment(block, readTimestamp))
CONVERSION(stringToTimestampTZ, textToMoment(block, readTimestampTZ))

FITTING(dateToTimestamp)
FITTING(dateToTimestampTZ)
CONVERSION(timeToTimeTZ, convertMoment(block, timeToTimeTZ)) // the caller's room is not asked
FITTING(timeToTimestamp)
FITTING(timeToTimestampTZ)
FITTING(timeTZToTime)
FITTING(timeTZToTimestamp)
FITTING(timeTZToTimestampTZ)
FITTING(timestampToDate)
FITTING(timestampToTime)
FITTING(timestampToTimeTZ)
FITTING(timestampToTimestampTZ)
FITTING(timestampTZToDate)
FITTING(timestampTZToTime)
FITTING(timestampTZToTimeTZ)
FITTING(timestampTZToTimestamp)

CONVERSION(dateToDate, copyMoment<Date>(block))
CONVERSION(timeToTime, copyMoment<Time>(block))
CONVERSION(timeTZToTimeTZ, copyMoment<TimeTZ>(block))
CONVERSION(timestampToTimestamp, copyMoment<Timestamp>(block))
CONVERSION(timestampTZToTimestampTZ, copyMoment<TimestampTZ>(block))
