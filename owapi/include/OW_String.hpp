#ifndef OW_STRING_HPP_INCLUDE_GUARD_
#define OW_STRING_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Types.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_CIMFwd.hpp"
#include "OW_Exception.hpp"
#include <iosfwd>

namespace OW_NAMESPACE
{

OW_DECLARE_APIEXCEPTION(StringConversion, OW_COMMON_API)

/// Copy-on-write 8-bit (UTF-8) text. A default String is empty; there is
/// no null state. Comparisons and equals() are case-sensitive.
class String
{
public:
	class ByteBuf;

	String();
	explicit String(Int32 val);
	explicit String(UInt32 val);
#if defined(OW_INT32_IS_INT) && defined(OW_INT64_IS_LONG_LONG)
	// Where neither Int32 nor Int64 is long (32-bit long), long and unsigned
	// long get constructors of their own.
	explicit String(long val);
	explicit String(unsigned long val);
#endif
	explicit String(Int64 val);
	explicit String(UInt64 val);
	explicit String(Real32 val);
	explicit String(Real64 val);
	/// A NULL pointer gives "".
	String(const char* str);
	enum ETakeOwnershipFlag { E_TAKE_OWNERSHIP };
	/// Takes a buffer allocated with new[] holding len bytes plus a NUL.
	explicit String(ETakeOwnershipFlag, char* allocatedMemory, size_t len);
	/// The first len bytes of str; a NULL pointer gives "".
	explicit String(const char* str, size_t len);
	String(const String& arg);
	/// One character; '\0' gives "".
	explicit String(char c);
	~String();

	void swap(String& x);
	size_t length() const;
	bool empty() const { return length() == 0; }
	/// Number of UTF-8 characters.
	size_t UTF8Length() const;

	/// Never NULL.
	const char* c_str() const;
	/// No range check; "" gives '\0'.
	char charAt(size_t ndx) const;
	int compareTo(const String& arg) const;
	int compareTo(const char* arg) const;
	int compareToIgnoreCase(const String& arg) const;
	int compareToIgnoreCase(const char* arg) const;
	String& concat(const char* arg);
	String& concat(const String& arg) { return concat(arg.c_str()); }
	String& concat(char arg);

	enum EIgnoreCaseFlag
	{
		E_CASE_SENSITIVE,
		E_CASE_INSENSITIVE
	};
	bool endsWith(const char* arg, EIgnoreCaseFlag ignoreCase = E_CASE_SENSITIVE) const;
	bool endsWith(const String& arg, EIgnoreCaseFlag ignoreCase = E_CASE_SENSITIVE) const
	{
		return endsWith(arg.c_str(), ignoreCase);
	}
	bool endsWith(char arg) const;
	/// Case-sensitive.
	bool equals(const String& arg) const;
	bool equals(const char* arg) const;
	bool equalsIgnoreCase(const String& arg) const;
	bool equalsIgnoreCase(const char* arg) const;
	size_t indexOf(char ch, size_t fromIndex = 0) const;
	size_t indexOf(const char* arg, size_t fromIndex = 0) const;
	size_t indexOf(const String& arg, size_t fromIndex = 0) const
	{
		return indexOf(arg.c_str(), fromIndex);
	}
	size_t lastIndexOf(char ch, size_t fromIndex = npos) const;
	size_t lastIndexOf(const char* arg, size_t fromIndex = npos) const;
	size_t lastIndexOf(const String& arg, size_t fromIndex = npos) const
	{
		return lastIndexOf(arg.c_str(), fromIndex);
	}
	bool startsWith(const char* arg, EIgnoreCaseFlag ignoreCase = E_CASE_SENSITIVE) const;
	bool startsWith(const String& arg, EIgnoreCaseFlag ignoreCase = E_CASE_SENSITIVE) const
	{
		return startsWith(arg.c_str(), ignoreCase);
	}
	bool startsWith(char arg) const;
	/// beginIndex past the end, or len 0, gives ""; len is clipped to the end.
	String substring(size_t beginIndex, size_t length = npos) const;
	/// True when empty or all white space.
	/// These modify *this and return it.
	String& toLowerCase();
	String& toUpperCase();
	String& ltrim();
	String& rtrim();
	String& trim();
	String& erase();
	String& erase(size_t idx, size_t len = npos);

	String& operator=(const String& arg);
	/// ndx == length() gives the terminator; beyond it a static '\0'.
	const char& operator[](size_t ndx) const;
	char& operator[](size_t ndx);
	String& operator+=(const String& arg) { return concat(arg); }
	String& operator+=(const char* arg) { return concat(arg); }
	String& operator+=(char arg) { return concat(arg); }

	String toString() const;

	/// Numeric conversions: the whole text must parse and fit the type,
	/// otherwise StringConversionException 'Unable to convert "<text>" into <T>'.
	Char16 toChar16() const;
	Real32 toReal32() const;
	Real64 toReal64() const;
	/// Exactly "true" or "false", ignoring case.
	bool toBool() const;
	UInt8 toUInt8(int base = 10) const;
	Int8 toInt8(int base = 10) const;
	UInt16 toUInt16(int base = 10) const;
	Int16 toInt16(int base = 10) const;
	UInt32 toUInt32(int base = 10) const;
	Int32 toInt32(int base = 10) const;
	UInt64 toUInt64(int base = 10) const;
	Int64 toInt64(int base = 10) const;
#ifndef OWAPI_SERIES_3_0
#endif

	static const size_t npos = size_t(~0);

private:
	COWIntrusiveReference<ByteBuf> m_buf;
};

std::ostream& operator<<(std::ostream& ostr, const String& arg);
String operator+(const String& s1, const String& s2);
String operator+(const char* p, const String& s);
String operator+(const String& s, const char* p);
String operator+(char c, const String& s);
String operator+(const String& s, char c);

inline bool operator<(const String& s1, const String& s2) { return s1.compareTo(s2) < 0; }
inline bool operator<(const String& s1, const char* p2) { return s1.compareTo(p2) < 0; }
inline bool operator<(const char* p1, const String& s2) { return String(p1).compareTo(s2) < 0; }
inline bool operator==(const String& s1, const String& s2) { return s1.compareTo(s2) == 0; }
inline bool operator==(const String& s1, const char* p2) { return s1.compareTo(p2) == 0; }
inline bool operator==(const char* p1, const String& s2) { return s2.compareTo(p1) == 0; }
inline bool operator!=(const String& s1, const String& s2) { return s1.compareTo(s2) != 0; }
inline bool operator!=(const String& s1, const char* p2) { return s1.compareTo(p2) != 0; }
inline bool operator!=(const char* p1, const String& s2) { return s2.compareTo(p1) != 0; }
inline bool operator<=(const String& s1, const String& s2) { return s1.compareTo(s2) <= 0; }
inline bool operator<=(const String& s1, const char* p2) { return s1.compareTo(p2) <= 0; }
inline bool operator<=(const char* p1, const String& s2) { return String(p1).compareTo(s2) <= 0; }
inline bool operator>(const String& s1, const String& s2) { return s1.compareTo(s2) > 0; }
inline bool operator>(const String& s1, const char* p2) { return s1.compareTo(p2) > 0; }
inline bool operator>(const char* p1, const String& s2) { return String(p1).compareTo(s2) > 0; }
inline bool operator>=(const String& s1, const String& s2) { return s1.compareTo(s2) >= 0; }
inline bool operator>=(const String& s1, const char* p2) { return s1.compareTo(p2) >= 0; }
inline bool operator>=(const char* p1, const String& s2) { return String(p1).compareTo(s2) >= 0; }

} // end namespace OW_NAMESPACE

#endif
