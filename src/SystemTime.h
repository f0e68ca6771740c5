#pragma once

#include <QDateTime>

#include <cstdint>

/// \file
/// The arithmetic behind the time operations of CSystemCall and GetCurTime(), apart from the
/// clock that feeds it. Internal; not installed.

namespace SystemTime
{

/// GetCurTime() and CSystemCall::GetCurrentTime() at \a moment.
inline int Seconds(const QDateTime& moment)
{
    return static_cast<std::int32_t>(moment.toSecsSinceEpoch());
}

/// CSystemCall::GetCurrentTimeStamp() at \a moment: the multiplication wraps at 32 bits, the
/// addition does not.
inline unsigned long long WrappedStamp(const QDateTime& moment)
{
    const auto seconds = static_cast<std::uint32_t>(Seconds(moment));
    return static_cast<unsigned long long>(std::uint32_t{1000} * seconds) +
           static_cast<unsigned>(moment.time().msec());
}

/// CSystemCall::GetCurrentTimeToInt() at the calendar fields of \a moment.
inline int CoarseSeconds(const QDateTime& moment)
{
    const QDate date = moment.date();
    const QTime time = moment.time();
    constexpr std::int64_t Year = 31536000;
    constexpr std::int64_t Month = 2592000;
    constexpr std::int64_t Day = 86400;
    return static_cast<std::int32_t>((date.year() - 1970) * Year + date.month() * Month +
                                     date.day() * Day + time.hour() * 3600 + time.minute() * 60 +
                                     time.second());
}

/// CSystemCall::GetSysTimeBymmSec() at \a time.
inline int SecondInMilliseconds(const QTime& time)
{
    return time.second() * 1000 + time.msec() / 1000;
}

} // namespace SystemTime
