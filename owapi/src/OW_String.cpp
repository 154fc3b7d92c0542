#include "OW_String.hpp"
#include "OW_Array.hpp"
#include "OW_Bool.hpp"
#include "OW_Char16.hpp"
#include "OW_UTF8Utils.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"
#include <string>
#include <cstring>
#include <cstdlib>
#include <cstdio>
#include <cctype>
#include <cerrno>
#include <climits>
#include <ostream>

namespace OW_NAMESPACE
{

/// The shared bytes of a String.
class String::ByteBuf : public COWIntrusiveCountableBase
{
public:
	ByteBuf() {}
	explicit ByteBuf(const std::string& s) : text(s) {}
	virtual COWIntrusiveCountableBase* cloneBase() const { return new ByteBuf(*this); }
	std::string text;
};

namespace
{
static char nullChar = '\0';

String fromStd(const std::string& s)
{
	return String(s.data(), s.size());
}

[[noreturn]] void throwConversion(const String& text, const char* typeName)
{
	String msg = String("Unable to convert \"") + text + "\" into " + typeName;
	throw StringConversionException(__FILE__, __LINE__, msg.c_str());
}

// Parses the whole text as a signed integer.
long long parseSigned(const String& s, int base, const char* typeName)
{
	const char* p = s.c_str();
	if (*p == '\0')
	{
		throwConversion(s, typeName);
	}
	char* end = 0;
	errno = 0;
	long long v = std::strtoll(p, &end, base);
	if (*end != '\0' || errno == ERANGE || end == p)
	{
		throwConversion(s, typeName);
	}
	return v;
}

// Parses the whole text as an unsigned integer (strtoull accepts a '-').
unsigned long long parseUnsigned(const String& s, int base, const char* typeName)
{
	const char* p = s.c_str();
	if (*p == '\0')
	{
		throwConversion(s, typeName);
	}
	char* end = 0;
	errno = 0;
	unsigned long long v = std::strtoull(p, &end, base);
	if (*end != '\0' || errno == ERANGE || end == p)
	{
		throwConversion(s, typeName);
	}
	return v;
}

template <class T> T checkedSigned(const String& s, int base, const char* typeName)
{
	long long v = parseSigned(s, base, typeName);
	T r = static_cast<T>(v);
	if (static_cast<long long>(r) != v)
	{
		throwConversion(s, typeName);
	}
	return r;
}

template <class T> T checkedUnsigned(const String& s, int base, const char* typeName)
{
	unsigned long long v = parseUnsigned(s, base, typeName);
	T r = static_cast<T>(v);
	if (static_cast<unsigned long long>(r) != v)
	{
		throwConversion(s, typeName);
	}
	return r;
}

// An integer in decimal, as printf's %d and %u give it.
String decimal(UInt64 magnitude, bool negative)
{
	char buf[24];
	char* p = buf + sizeof(buf);
	*--p = '\0';
	do
	{
		*--p = char('0' + magnitude % 10);
		magnitude /= 10;
	} while (magnitude != 0);
	if (negative)
	{
		*--p = '-';
	}
	return String(p);
}

UInt64 magnitude(Int64 val) { return val < 0 ? UInt64(0) - UInt64(val) : UInt64(val); }
} // end unnamed namespace

String::String() {}

String::String(Int32 val)
{
	*this = decimal(magnitude(val), val < 0);
}

String::String(UInt32 val)
{
	*this = decimal(val, false);
}

#if defined(OW_INT32_IS_INT) && defined(OW_INT64_IS_LONG_LONG)
String::String(long val)
{
	*this = decimal(magnitude(val), val < 0);
}

String::String(unsigned long val)
{
	*this = decimal(val, false);
}
#endif

String::String(Int64 val)
{
	*this = decimal(magnitude(val), val < 0);
}

String::String(UInt64 val)
{
	*this = decimal(val, false);
}

String::String(Real32 val)
{
	char buf[64];
	std::snprintf(buf, sizeof(buf), "%.*g", 8, static_cast<double>(val));
	*this = String(buf);
}

String::String(Real64 val)
{
	char buf[64];
	std::snprintf(buf, sizeof(buf), "%.*g", 16, val);
	*this = String(buf);
}

String::String(const char* str)
{
	if (str != 0 && *str != '\0')
	{
		m_buf = COWIntrusiveReference<ByteBuf>(new ByteBuf(std::string(str)));
	}
}

String::String(ETakeOwnershipFlag, char* allocatedMemory, size_t len)
{
	if (allocatedMemory != 0)
	{
		if (len > 0)
		{
			m_buf = COWIntrusiveReference<ByteBuf>(new ByteBuf(std::string(allocatedMemory, len)));
		}
		delete[] allocatedMemory;
	}
}

String::String(const char* str, size_t len)
{
	if (str != 0 && len > 0)
	{
		m_buf = COWIntrusiveReference<ByteBuf>(new ByteBuf(std::string(str, len)));
	}
}

String::String(const String& arg) : m_buf(arg.m_buf) {}

String::String(char c)
{
	if (c != '\0')
	{
		m_buf = COWIntrusiveReference<ByteBuf>(new ByteBuf(std::string(1, c)));
	}
}

String::~String() {}

void String::swap(String& x) { m_buf.swap(x.m_buf); }

size_t String::length() const { return m_buf.isNull() ? 0 : m_buf->text.size(); }

size_t String::UTF8Length() const { return UTF8Utils::charCount(c_str()); }

const char* String::c_str() const { return m_buf.isNull() ? "" : m_buf->text.c_str(); }

char String::charAt(size_t ndx) const { return c_str()[ndx]; }

int String::compareTo(const String& arg) const { return std::strcmp(c_str(), arg.c_str()); }
int String::compareTo(const char* arg) const { return std::strcmp(c_str(), arg); }
int String::compareToIgnoreCase(const String& arg) const
{
	return UTF8Utils::compareToIgnoreCase(c_str(), arg.c_str());
}
int String::compareToIgnoreCase(const char* arg) const
{
	return UTF8Utils::compareToIgnoreCase(c_str(), arg);
}

String& String::concat(const char* arg)
{
	if (arg != 0 && *arg != '\0')
	{
		if (m_buf.isNull())
		{
			m_buf = COWIntrusiveReference<ByteBuf>(new ByteBuf(std::string(arg)));
		}
		else
		{
			m_buf->text.append(arg);
		}
	}
	return *this;
}

String& String::concat(char arg)
{
	if (m_buf.isNull())
	{
		m_buf = COWIntrusiveReference<ByteBuf>(new ByteBuf(std::string(1, arg)));
	}
	else
	{
		m_buf->text.push_back(arg);
	}
	return *this;
}

bool String::endsWith(const char* arg, EIgnoreCaseFlag ignoreCase) const
{
	if (arg == 0 || *arg == '\0')
	{
		return empty();
	}
	size_t alen = std::strlen(arg);
	size_t len = length();
	if (alen > len)
	{
		return false;
	}
	const char* tail = c_str() + (len - alen);
	return ignoreCase == E_CASE_INSENSITIVE
		? UTF8Utils::compareToIgnoreCase(tail, arg) == 0
		: std::strcmp(tail, arg) == 0;
}

bool String::endsWith(char arg) const
{
	size_t len = length();
	return arg != '\0' && len > 0 && c_str()[len - 1] == arg;
}

bool String::equals(const String& arg) const { return compareTo(arg) == 0; }
bool String::equals(const char* arg) const { return compareTo(arg) == 0; }
// Case is folded for ASCII letters only, so texts of different lengths
// never match.
bool String::equalsIgnoreCase(const String& arg) const
{
	return length() == arg.length() && compareToIgnoreCase(arg) == 0;
}
bool String::equalsIgnoreCase(const char* arg) const { return compareToIgnoreCase(arg) == 0; }

size_t String::indexOf(char ch, size_t fromIndex) const
{
	if (m_buf.isNull())
	{
		return npos;
	}
	std::string::size_type r = m_buf->text.find(ch, fromIndex);
	return r == std::string::npos ? npos : r;
}

size_t String::indexOf(const char* arg, size_t fromIndex) const
{
	if (arg == 0)
	{
		return npos;
	}
	if (m_buf.isNull())
	{
		return (*arg == '\0' && fromIndex == 0) ? 0 : npos;
	}
	std::string::size_type r = m_buf->text.find(arg, fromIndex);
	return r == std::string::npos ? npos : r;
}

size_t String::lastIndexOf(char ch, size_t fromIndex) const
{
	if (m_buf.isNull())
	{
		return npos;
	}
	std::string::size_type r = m_buf->text.rfind(ch, fromIndex);
	return r == std::string::npos ? npos : r;
}

size_t String::lastIndexOf(const char* arg, size_t fromIndex) const
{
	if (m_buf.isNull() || arg == 0)
	{
		return npos;
	}
	std::string::size_type r = m_buf->text.rfind(arg, fromIndex);
	return r == std::string::npos ? npos : r;
}

bool String::startsWith(const char* arg, EIgnoreCaseFlag ignoreCase) const
{
	if (arg == 0 || *arg == '\0')
	{
		return empty();
	}
	size_t alen = std::strlen(arg);
	if (alen > length())
	{
		return false;
	}
	if (ignoreCase == E_CASE_INSENSITIVE)
	{
		return substring(0, alen).equalsIgnoreCase(arg);
	}
	return std::strncmp(c_str(), arg, alen) == 0;
}

bool String::startsWith(char arg) const
{
	return arg != '\0' && length() > 0 && c_str()[0] == arg;
}

String String::substring(size_t beginIndex, size_t len) const
{
	size_t total = length();
	if (beginIndex >= total || len == 0)
	{
		return String();
	}
	if (len == npos || len > total - beginIndex)
	{
		len = total - beginIndex;
	}
	return String(c_str() + beginIndex, len);
}

String& String::toLowerCase()
{
	if (!m_buf.isNull())
	{
		*this = UTF8Utils::toLowerCase(c_str());
	}
	return *this;
}

String& String::toUpperCase()
{
	if (!m_buf.isNull())
	{
		*this = UTF8Utils::toUpperCase(c_str());
	}
	return *this;
}

String& String::ltrim()
{
	const char* p = c_str();
	size_t i = 0;
	while (p[i] != '\0' && std::isspace(static_cast<unsigned char>(p[i])))
	{
		++i;
	}
	if (i > 0)
	{
		*this = substring(i);
	}
	return *this;
}

String& String::rtrim()
{
	size_t len = length();
	const char* p = c_str();
	while (len > 0 && std::isspace(static_cast<unsigned char>(p[len - 1])))
	{
		--len;
	}
	if (len != length())
	{
		*this = substring(0, len);
	}
	return *this;
}

String& String::trim()
{
	return ltrim().rtrim();
}

String& String::erase()
{
	m_buf = COWIntrusiveReference<ByteBuf>();
	return *this;
}

String& String::erase(size_t idx, size_t len)
{
	if (idx < length())
	{
		if (len == npos || len > length() - idx)
		{
			len = length() - idx;
		}
		std::string s(c_str(), length());
		s.erase(idx, len);
		*this = fromStd(s);
	}
	return *this;
}

String& String::operator=(const String& arg)
{
	m_buf = arg.m_buf;
	return *this;
}

const char& String::operator[](size_t ndx) const
{
	const ByteBuf& b = *m_buf;
	if (ndx <= b.text.size())
	{
		return b.text.c_str()[ndx];
	}
	return nullChar;
}

char& String::operator[](size_t ndx)
{
	ByteBuf& b = *m_buf;
	if (ndx < b.text.size())
	{
		return b.text[ndx];
	}
	nullChar = '\0';
	return nullChar;
}

String String::toString() const { return *this; }

Char16 String::toChar16() const
{
	// One character, as OpenWBEM reads a CHAR16.
	if (UTF8Length() != 1)
	{
		throwConversion(*this, "Char16");
	}
	return Char16(*this);
}

Real32 String::toReal32() const
{
	const char* p = c_str();
	if (*p == '\0')
	{
		throwConversion(*this, "Real32");
	}
	char* end = 0;
	errno = 0;
	float v = std::strtof(p, &end);
	if (*end != '\0' || errno == ERANGE)
	{
		throwConversion(*this, "Real32");
	}
	return v;
}

Real64 String::toReal64() const
{
	const char* p = c_str();
	if (*p == '\0')
	{
		throwConversion(*this, "Real64");
	}
	char* end = 0;
	errno = 0;
	double v = std::strtod(p, &end);
	if (*end != '\0' || errno == ERANGE)
	{
		throwConversion(*this, "Real64");
	}
	return v;
}

bool String::toBool() const
{
	if (equalsIgnoreCase("true"))
	{
		return true;
	}
	if (equalsIgnoreCase("false"))
	{
		return false;
	}
	throwConversion(*this, "bool");
}

UInt8 String::toUInt8(int base) const { return checkedUnsigned<UInt8>(*this, base, "UInt8"); }
Int8 String::toInt8(int base) const { return checkedSigned<Int8>(*this, base, "Int8"); }
UInt16 String::toUInt16(int base) const { return checkedUnsigned<UInt16>(*this, base, "UInt16"); }
Int16 String::toInt16(int base) const { return checkedSigned<Int16>(*this, base, "Int16"); }
UInt32 String::toUInt32(int base) const { return checkedUnsigned<UInt32>(*this, base, "UInt32"); }
Int32 String::toInt32(int base) const { return checkedSigned<Int32>(*this, base, "Int32"); }
UInt64 String::toUInt64(int base) const
{
	// "-1" wraps around instead of failing, as strtoull does.
	return static_cast<UInt64>(parseUnsigned(*this, base, "UInt64"));
}
Int64 String::toInt64(int base) const { return checkedSigned<Int64>(*this, base, "Int64"); }

std::ostream& operator<<(std::ostream& ostr, const String& arg)
{
	ostr.write(arg.c_str(), static_cast<std::streamsize>(arg.length()));
	return ostr;
}

String operator+(const String& s1, const String& s2)
{
	String rv(s1);
	rv.concat(s2);
	return rv;
}

String operator+(const char* p, const String& s)
{
	String rv(p);
	rv.concat(s);
	return rv;
}

String operator+(const String& s, const char* p)
{
	String rv(s);
	rv.concat(p);
	return rv;
}

String operator+(char c, const String& s)
{
	String rv(c);
	rv.concat(s);
	return rv;
}

String operator+(const String& s, char c)
{
	String rv(s);
	rv.concat(c);
	return rv;
}

// ---- Bool, Char16

String Bool::toString() const { return m_val ? String("true") : String("false"); }

std::ostream& operator<<(std::ostream& ostrm, const Bool& arg)
{
	ostrm << (bool(arg) ? "true" : "false");
	return ostrm;
}

Char16::Char16(const String& x) : m_value(UTF8Utils::UTF8toUCS2(x.c_str())) {}

String Char16::toString() const { return UTF8Utils::UCS2toUTF8(m_value); }

} // end namespace OW_NAMESPACE
