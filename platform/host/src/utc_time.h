// A moment in UTC, by arithmetic alone: the C library's conversion takes a lock, which a signal handler may find taken.
#ifndef MOBILE_AP_UTC_TIME_H
#define MOBILE_AP_UTC_TIME_H

namespace mobile_ap {

struct UtcTime {
    int year;
    int month;  // 1 to 12
    int day;    // 1 to 31
    int hour;
    int minute;
    int second;
};

// Of so many seconds since 1970 began.
constexpr UtcTime utc_time(long long seconds)
{
    const int in_day = static_cast<int>(seconds % 86400);
    // Years are counted from March, in eras of 400 years, so that the leap day comes last.
    const long long days = seconds / 86400 + 719468;
    const int era = static_cast<int>(days / 146097);
    const int day_of_era = static_cast<int>(days % 146097);
    const int year_of_era = (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
    const int day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
    const int march_month = (5 * day_of_year + 2) / 153;
    const int day = day_of_year - (153 * march_month + 2) / 5 + 1;
    const int month = march_month < 10 ? march_month + 3 : march_month - 9;
    const int year = era * 400 + year_of_era + (month <= 2 ? 1 : 0);
    return {year, month, day, in_day / 3600, in_day / 60 % 60, in_day % 60};
}

}  // namespace mobile_ap

#endif
