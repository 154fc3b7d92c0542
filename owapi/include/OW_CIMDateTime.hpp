#ifndef OW_CIMDATETIME_HPP_INCLUDE_GUARD_
#define OW_CIMDATETIME_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Types.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_CIMFwd.hpp"
#include "OW_CIMNULL.hpp"
#include "OW_SafeBool.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_Exception.hpp"
#include "OW_CIMException.hpp"
#include "OW_String.hpp"
#include <iosfwd>

namespace OW_NAMESPACE
{

OW_DECLARE_APIEXCEPTION(CIMDateTime, OW_COMMON_API)

/// A CIM datetime: an absolute time with a UTC offset in minutes, or an
/// interval of days, hours, minutes, seconds and microseconds.
class CIMDateTime
{
public:
	struct DateTimeData;

	enum
	{
		/// Error code of the CIMDateTimeException for an unparsable text.
		E_INVALID_DATE_TIME_FORMAT
	};

	/// An all-zero interval (tests false).
	CIMDateTime();
	explicit CIMDateTime(CIMNULL_t);
	CIMDateTime(const CIMDateTime& arg);
	/// Parses "yyyymmddhhmmss.mmmmmmsutc" or "ddddddddhhmmss.mmmmmm:000";
	/// "" gives the all-zero interval; other texts throw CIMDateTimeException.
	explicit CIMDateTime(const String& arg);
	/// The time in the local zone.
	CIMDateTime(const DateTime& arg);
	/// An interval of that many microseconds.
	explicit CIMDateTime(UInt64 microSeconds);
	~CIMDateTime();
	CIMDateTime& operator=(const CIMDateTime& arg);

	void setNull();
	typedef COWIntrusiveReference<DateTimeData> CIMDateTime::*safe_bool;
	/// False when null or when every date and time field is zero.
	operator safe_bool() const;
	bool operator!() const;

	UInt16 getYear() const;
	UInt8 getMonth() const;
	UInt32 getDays() const;
	UInt32 getDay() const;
	UInt8 getHours() const;
	UInt8 getMinutes() const;
	UInt8 getSeconds() const;
	UInt32 getMicroSeconds() const;
	Int16 getUtc() const;
	bool isInterval() const;
	void setInterval(bool val);
	CIMDateTime& setYear(UInt16 arg);
	CIMDateTime& setMonth(UInt8 arg);
	CIMDateTime& setDays(UInt32 arg);
	CIMDateTime& setDay(UInt32 arg);
	CIMDateTime& setHours(UInt8 arg);
	CIMDateTime& setMinutes(UInt8 arg);
	CIMDateTime& setSeconds(UInt8 arg);
	CIMDateTime& setMicroSeconds(UInt32 arg);
	CIMDateTime& setUtc(Int16 arg);
	/// All fields equal.
	bool equal(const CIMDateTime& arg) const;
	/// "%08u%02u%02u%02u.%06u:000" or "%04u%02u%02u%02u%02u%02u.%06u%+04d".
	String toString() const;
	DateTime toDateTime() const;
private:
	COWIntrusiveReference<DateTimeData> m_dptr;
	friend bool operator<(const CIMDateTime& x, const CIMDateTime& y);
};

std::ostream& operator<<(std::ostream& ostr, const CIMDateTime& arg);
bool operator==(const CIMDateTime& x, const CIMDateTime& y);
bool operator<(const CIMDateTime& x, const CIMDateTime& y);
inline bool operator!=(const CIMDateTime& x, const CIMDateTime& y) { return !(x == y); }
inline bool operator>(const CIMDateTime& x, const CIMDateTime& y) { return y < x; }
inline bool operator<=(const CIMDateTime& x, const CIMDateTime& y) { return !(y < x); }
inline bool operator>=(const CIMDateTime& x, const CIMDateTime& y) { return !(x < y); }

} // end namespace OW_NAMESPACE

#endif
