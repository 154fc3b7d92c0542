#ifndef OW_DATETIME_HPP_INCLUDE_GUARD_
#define OW_DATETIME_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Types.hpp"
#include "OW_CommonFwd.hpp"
#include <ctime>

namespace OW_NAMESPACE
{

/// A point in time: seconds since the epoch (UTC) and microseconds.
class DateTime
{
public:
	enum ETimeOffset { E_LOCAL_TIME, E_UTC_TIME };

	/// The epoch.
	DateTime();
	explicit DateTime(time_t t, UInt32 microseconds = 0);
	/// Fields in the given zone.
	DateTime(int year, int month, int day, int hour = 0, int minute = 0,
		int second = 0, UInt32 microseconds = 0, ETimeOffset timeOffset = E_LOCAL_TIME);

	int getHour(ETimeOffset timeOffset = E_LOCAL_TIME) const;
	int getMinute(ETimeOffset timeOffset = E_LOCAL_TIME) const;
	int getSecond(ETimeOffset timeOffset = E_LOCAL_TIME) const;
	UInt32 getMicrosecond() const { return m_microseconds; }
	int getDay(ETimeOffset timeOffset = E_LOCAL_TIME) const;
	int getDayOfWeek(ETimeOffset timeOffset = E_LOCAL_TIME) const;
	int getMonth(ETimeOffset timeOffset = E_LOCAL_TIME) const;
	int getYear(ETimeOffset timeOffset = E_LOCAL_TIME) const;
	time_t get() const { return m_time; }
	void set(time_t t, UInt32 microseconds = 0) { m_time = t; m_microseconds = microseconds; }
	/// Sets this to the current time.
	void setToCurrent();
	/// The local zone's offset from UTC at this time, in minutes.
	Int16 toLocalOffsetMinutes() const;
	/// "%c" style text in the given zone.
	String toString(ETimeOffset timeOffset = E_LOCAL_TIME) const;

	static DateTime getCurrent();

	bool operator<(const DateTime& tm) const
	{ return m_time < tm.m_time || (m_time == tm.m_time && m_microseconds < tm.m_microseconds); }
	bool operator>(const DateTime& tm) const { return tm < *this; }
	bool operator<=(const DateTime& tm) const { return !(tm < *this); }
	bool operator>=(const DateTime& tm) const { return !(*this < tm); }
	bool operator==(const DateTime& tm) const
	{ return m_time == tm.m_time && m_microseconds == tm.m_microseconds; }
	bool operator!=(const DateTime& tm) const { return !(*this == tm); }
private:
	struct tm getTm(ETimeOffset timeOffset) const;
	time_t m_time;
	UInt32 m_microseconds;
};

} // end namespace OW_NAMESPACE

#endif
