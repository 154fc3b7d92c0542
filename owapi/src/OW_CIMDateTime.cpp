#include "OW_CIMDateTime.hpp"
#include "OW_DateTime.hpp"
#include "OW_String.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <sys/time.h>

namespace OW_NAMESPACE
{

struct CIMDateTime::DateTimeData : public COWIntrusiveCountableBase
{
	virtual COWIntrusiveCountableBase* cloneBase() const { return new DateTimeData(*this); }
	UInt16 m_year = 0;
	UInt8 m_month = 0;
	UInt32 m_days = 0;
	UInt8 m_hours = 0;
	UInt8 m_minutes = 0;
	UInt8 m_seconds = 0;
	UInt32 m_microSeconds = 0;
	Int16 m_utc = 0;
	bool m_isInterval = true;
};

namespace
{
// atoi of the characters [begin, begin+len) of text.
int field(const char* text, size_t begin, size_t len)
{
	char buf[16];
	size_t n = 0;
	while (n < len && n < sizeof(buf) - 1 && text[begin + n] != '\0')
	{
		buf[n] = text[begin + n];
		++n;
	}
	buf[n] = '\0';
	return std::atoi(buf);
}

[[noreturn]] void throwInvalidFormat()
{
	throw CIMDateTimeException(__FILE__, __LINE__, "Invalid format for date time",
		CIMDateTime::E_INVALID_DATE_TIME_FORMAT);
}
} // end unnamed namespace

CIMDateTime::CIMDateTime() : m_dptr(new DateTimeData) {}
CIMDateTime::CIMDateTime(CIMNULL_t) {}
CIMDateTime::CIMDateTime(const CIMDateTime& arg) : m_dptr(arg.m_dptr) {}

CIMDateTime::CIMDateTime(const String& arg) : m_dptr(new DateTimeData)
{
	if (arg.empty())
	{
		return;
	}
	char text[35];
	std::memset(text, 0, sizeof(text));
	std::strncpy(text, arg.c_str(), 34);
	DateTimeData& d = *m_dptr;
	if (text[21] == ':')
	{
		// ddddddddhhmmss.mmmmmm:000
		d.m_isInterval = true;
		d.m_days = UInt32(field(text, 0, 8));
		d.m_hours = UInt8(field(text, 8, 2));
		d.m_minutes = UInt8(field(text, 10, 2));
		d.m_seconds = UInt8(field(text, 12, 2));
		d.m_microSeconds = UInt32(field(text, 15, 6));
	}
	else if (text[21] == '+' || text[21] == '-')
	{
		// yyyymmddhhmmss.mmmmmmsutc
		d.m_isInterval = false;
		d.m_year = UInt16(field(text, 0, 4));
		d.m_month = UInt8(field(text, 4, 2));
		d.m_days = UInt32(field(text, 6, 2));
		d.m_hours = UInt8(field(text, 8, 2));
		d.m_minutes = UInt8(field(text, 10, 2));
		d.m_seconds = UInt8(field(text, 12, 2));
		d.m_microSeconds = UInt32(field(text, 15, 6));
		d.m_utc = Int16(std::atoi(text + 21));
	}
	else
	{
		throwInvalidFormat();
	}
}

CIMDateTime::CIMDateTime(const DateTime& arg) : m_dptr(new DateTimeData)
{
	DateTimeData& d = *m_dptr;
	d.m_isInterval = false;
	d.m_year = UInt16(arg.getYear());
	d.m_month = UInt8(arg.getMonth());
	d.m_days = UInt32(arg.getDay());
	d.m_hours = UInt8(arg.getHour());
	d.m_minutes = UInt8(arg.getMinute());
	d.m_seconds = UInt8(arg.getSecond());
	d.m_microSeconds = arg.getMicrosecond();
	d.m_utc = arg.toLocalOffsetMinutes();
}

CIMDateTime::CIMDateTime(UInt64 microSeconds) : m_dptr(new DateTimeData)
{
	DateTimeData& d = *m_dptr;
	d.m_isInterval = true;
	d.m_microSeconds = UInt32(microSeconds % 1000000);
	UInt64 secs = microSeconds / 1000000;
	d.m_seconds = UInt8(secs % 60);
	d.m_minutes = UInt8((secs / 60) % 60);
	d.m_hours = UInt8((secs / 3600) % 24);
	d.m_days = UInt32(secs / 86400);
}

CIMDateTime::~CIMDateTime() {}
CIMDateTime& CIMDateTime::operator=(const CIMDateTime& arg) { m_dptr = arg.m_dptr; return *this; }
void CIMDateTime::setNull() { m_dptr = COWIntrusiveReference<DateTimeData>(); }

namespace
{
bool allZero(const CIMDateTime::DateTimeData& d)
{
	return d.m_year == 0 && d.m_month == 0 && d.m_days == 0 && d.m_hours == 0
		&& d.m_minutes == 0 && d.m_seconds == 0 && d.m_microSeconds == 0;
}
} // end unnamed namespace

CIMDateTime::operator safe_bool() const
{
	return (!m_dptr.isNull() && !allZero(*m_dptr)) ? &CIMDateTime::m_dptr : 0;
}

bool CIMDateTime::operator!() const { return m_dptr.isNull() || allZero(*m_dptr); }

UInt16 CIMDateTime::getYear() const { return m_dptr->m_year; }
UInt8 CIMDateTime::getMonth() const { return m_dptr->m_month; }
UInt32 CIMDateTime::getDays() const { return m_dptr->m_days; }
UInt32 CIMDateTime::getDay() const { return m_dptr->m_days; }
UInt8 CIMDateTime::getHours() const { return m_dptr->m_hours; }
UInt8 CIMDateTime::getMinutes() const { return m_dptr->m_minutes; }
UInt8 CIMDateTime::getSeconds() const { return m_dptr->m_seconds; }
UInt32 CIMDateTime::getMicroSeconds() const { return m_dptr->m_microSeconds; }
Int16 CIMDateTime::getUtc() const { return m_dptr->m_utc; }
bool CIMDateTime::isInterval() const { return m_dptr->m_isInterval; }
void CIMDateTime::setInterval(bool val) { m_dptr->m_isInterval = val; }
CIMDateTime& CIMDateTime::setYear(UInt16 arg) { m_dptr->m_year = arg; return *this; }
CIMDateTime& CIMDateTime::setMonth(UInt8 arg) { m_dptr->m_month = arg; return *this; }
CIMDateTime& CIMDateTime::setDays(UInt32 arg) { m_dptr->m_days = arg; return *this; }
CIMDateTime& CIMDateTime::setDay(UInt32 arg) { m_dptr->m_days = arg; return *this; }
CIMDateTime& CIMDateTime::setHours(UInt8 arg) { m_dptr->m_hours = arg; return *this; }
CIMDateTime& CIMDateTime::setMinutes(UInt8 arg) { m_dptr->m_minutes = arg; return *this; }
CIMDateTime& CIMDateTime::setSeconds(UInt8 arg) { m_dptr->m_seconds = arg; return *this; }
CIMDateTime& CIMDateTime::setMicroSeconds(UInt32 arg) { m_dptr->m_microSeconds = arg; return *this; }
CIMDateTime& CIMDateTime::setUtc(Int16 arg) { m_dptr->m_utc = arg; return *this; }

bool CIMDateTime::equal(const CIMDateTime& arg) const
{
	if (m_dptr.isNull() || arg.m_dptr.isNull())
	{
		return m_dptr.isNull() && arg.m_dptr.isNull();
	}
	const DateTimeData& a = *m_dptr;
	const DateTimeData& b = *arg.m_dptr;
	return a.m_year == b.m_year && a.m_month == b.m_month && a.m_days == b.m_days
		&& a.m_hours == b.m_hours && a.m_minutes == b.m_minutes && a.m_seconds == b.m_seconds
		&& a.m_microSeconds == b.m_microSeconds && a.m_utc == b.m_utc
		&& a.m_isInterval == b.m_isInterval;
}

String CIMDateTime::toString() const
{
	const DateTimeData& d = *m_dptr;
	char buf[64];
	if (d.m_isInterval)
	{
		std::snprintf(buf, sizeof(buf), "%08u%02u%02u%02u.%06u:000",
			unsigned(d.m_days), unsigned(d.m_hours), unsigned(d.m_minutes),
			unsigned(d.m_seconds), unsigned(d.m_microSeconds));
	}
	else
	{
		std::snprintf(buf, sizeof(buf), "%04u%02u%02u%02u%02u%02u.%06u%+04d",
			unsigned(d.m_year), unsigned(d.m_month), unsigned(d.m_days),
			unsigned(d.m_hours), unsigned(d.m_minutes), unsigned(d.m_seconds),
			unsigned(d.m_microSeconds), int(d.m_utc));
	}
	return String(buf);
}

DateTime CIMDateTime::toDateTime() const
{
	const DateTimeData& d = *m_dptr;
	if (d.m_isInterval)
	{
		time_t secs = time_t(d.m_days) * 86400 + time_t(d.m_hours) * 3600
			+ time_t(d.m_minutes) * 60 + d.m_seconds;
		return DateTime(secs, d.m_microSeconds);
	}
	DateTime utc(d.m_year, d.m_month, int(d.m_days), d.m_hours, d.m_minutes, d.m_seconds,
		d.m_microSeconds, DateTime::E_UTC_TIME);
	return DateTime(utc.get() - time_t(d.m_utc) * 60, d.m_microSeconds);
}

std::ostream& operator<<(std::ostream& ostr, const CIMDateTime& arg)
{
	ostr << arg.toString();
	return ostr;
}

bool operator==(const CIMDateTime& x, const CIMDateTime& y) { return x.equal(y); }

bool operator<(const CIMDateTime& x, const CIMDateTime& y)
{
	if (x.m_dptr.isNull() || y.m_dptr.isNull())
	{
		return x.m_dptr.isNull() && !y.m_dptr.isNull();
	}
	return x.toString() < y.toString();
}

// ---- DateTime

DateTime::DateTime() : m_time(0), m_microseconds(0) {}
DateTime::DateTime(time_t t, UInt32 microseconds) : m_time(t), m_microseconds(microseconds) {}

DateTime::DateTime(int year, int month, int day, int hour, int minute, int second,
	UInt32 microseconds, ETimeOffset timeOffset)
	: m_time(0)
	, m_microseconds(microseconds)
{
	struct tm t;
	std::memset(&t, 0, sizeof(t));
	t.tm_year = year - 1900;
	t.tm_mon = month - 1;
	t.tm_mday = day;
	t.tm_hour = hour;
	t.tm_min = minute;
	t.tm_sec = second;
	t.tm_isdst = -1;
	m_time = timeOffset == E_UTC_TIME ? timegm(&t) : mktime(&t);
}

struct tm DateTime::getTm(ETimeOffset timeOffset) const
{
	struct tm t;
	if (timeOffset == E_UTC_TIME)
	{
		gmtime_r(&m_time, &t);
	}
	else
	{
		localtime_r(&m_time, &t);
	}
	return t;
}

int DateTime::getHour(ETimeOffset o) const { return getTm(o).tm_hour; }
int DateTime::getMinute(ETimeOffset o) const { return getTm(o).tm_min; }
int DateTime::getSecond(ETimeOffset o) const { return getTm(o).tm_sec; }
int DateTime::getDay(ETimeOffset o) const { return getTm(o).tm_mday; }
int DateTime::getDayOfWeek(ETimeOffset o) const { return getTm(o).tm_wday; }
int DateTime::getMonth(ETimeOffset o) const { return getTm(o).tm_mon + 1; }
int DateTime::getYear(ETimeOffset o) const { return getTm(o).tm_year + 1900; }

void DateTime::setToCurrent()
{
	struct timeval tv;
	gettimeofday(&tv, 0);
	m_time = tv.tv_sec;
	m_microseconds = UInt32(tv.tv_usec);
}

Int16 DateTime::toLocalOffsetMinutes() const
{
	struct tm t = getTm(E_LOCAL_TIME);
	return Int16(t.tm_gmtoff / 60);
}

String DateTime::toString(ETimeOffset timeOffset) const
{
	struct tm t = getTm(timeOffset);
	char buf[128];
	std::strftime(buf, sizeof(buf), "%c", &t);
	return String(buf);
}

DateTime DateTime::getCurrent()
{
	DateTime dt;
	dt.setToCurrent();
	return dt;
}

} // end namespace OW_NAMESPACE
