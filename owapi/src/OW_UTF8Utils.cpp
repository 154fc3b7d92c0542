#include "OW_UTF8Utils.hpp"
#include "OW_String.hpp"
#include <cstring>
#include <string>

namespace OW_NAMESPACE
{

namespace UTF8Utils
{

size_t charCount(const char* utf8str)
{
	size_t count = 0;
	for (const unsigned char* p = reinterpret_cast<const unsigned char*>(utf8str); *p; ++p)
	{
		if (*p < 0x80 || *p > 0xBF)
		{
			++count;
		}
	}
	return count;
}

UInt32 UTF8toUCS4(const char* utf8char)
{
	const unsigned char* p = reinterpret_cast<const unsigned char*>(utf8char);
	unsigned char c = p[0];
	if (c < 0x80)
	{
		return c;
	}
	if ((c & 0xE0) == 0xC0 && p[1] != 0)
	{
		return (UInt32(c & 0x1F) << 6) | (p[1] & 0x3F);
	}
	if ((c & 0xF0) == 0xE0 && p[1] != 0 && p[2] != 0)
	{
		return (UInt32(c & 0x0F) << 12) | (UInt32(p[1] & 0x3F) << 6) | (p[2] & 0x3F);
	}
	if ((c & 0xF8) == 0xF0 && p[1] != 0 && p[2] != 0 && p[3] != 0)
	{
		return (UInt32(c & 0x07) << 18) | (UInt32(p[1] & 0x3F) << 12)
			| (UInt32(p[2] & 0x3F) << 6) | (p[3] & 0x3F);
	}
	return 0xFFFFFFFFu;
}

UInt16 UTF8toUCS2(const char* utf8char)
{
	UInt32 c = UTF8toUCS4(utf8char);
	return c > 0xFFFF ? UInt16(0xFFFF) : UInt16(c);
}

String UCS4toUTF8(UInt32 c)
{
	char buf[5] = { 0, 0, 0, 0, 0 };
	if (c < 0x80)
	{
		buf[0] = char(c);
	}
	else if (c < 0x800)
	{
		buf[0] = char(0xC0 | (c >> 6));
		buf[1] = char(0x80 | (c & 0x3F));
	}
	else if (c < 0x10000)
	{
		buf[0] = char(0xE0 | (c >> 12));
		buf[1] = char(0x80 | ((c >> 6) & 0x3F));
		buf[2] = char(0x80 | (c & 0x3F));
	}
	else
	{
		buf[0] = char(0xF0 | ((c >> 18) & 0x07));
		buf[1] = char(0x80 | ((c >> 12) & 0x3F));
		buf[2] = char(0x80 | ((c >> 6) & 0x3F));
		buf[3] = char(0x80 | (c & 0x3F));
	}
	return String(buf);
}

String UCS2toUTF8(UInt16 ucs2char)
{
	return UCS4toUTF8(ucs2char);
}

int compareToIgnoreCase(const char* str1, const char* str2)
{
	const unsigned char* a = reinterpret_cast<const unsigned char*>(str1);
	const unsigned char* b = reinterpret_cast<const unsigned char*>(str2);
	for (;; ++a, ++b)
	{
		unsigned char ca = *a;
		unsigned char cb = *b;
		if (ca >= 'A' && ca <= 'Z') ca = static_cast<unsigned char>(ca - 'A' + 'a');
		if (cb >= 'A' && cb <= 'Z') cb = static_cast<unsigned char>(cb - 'A' + 'a');
		if (ca != cb || ca == 0)
		{
			return int(ca) - int(cb);
		}
	}
}

bool toUpperCaseInPlace(char* input)
{
	for (char* p = input; *p; ++p)
	{
		if (*p >= 'a' && *p <= 'z') *p = char(*p - 'a' + 'A');
	}
	return true;
}

String toUpperCase(const char* input)
{
	std::string s(input);
	toUpperCaseInPlace(&s[0]);
	return String(s.c_str(), s.size());
}

bool toLowerCaseInPlace(char* input)
{
	for (char* p = input; *p; ++p)
	{
		if (*p >= 'A' && *p <= 'Z') *p = char(*p - 'A' + 'a');
	}
	return true;
}

String toLowerCase(const char* input)
{
	std::string s(input);
	toLowerCaseInPlace(&s[0]);
	return String(s.c_str(), s.size());
}

size_t ISO8859ToUTF8(const char* input, char* output, size_t outputSize)
{
	if (output == 0 || outputSize == 0)
	{
		return 0;
	}
	size_t written = 0;
	// One byte stays reserved for the terminating NUL.
	const size_t limit = outputSize - 1;
	if (input != 0)
	{
		for (const unsigned char* p = reinterpret_cast<const unsigned char*>(input); *p; ++p)
		{
			unsigned char c = *p;
			if (c < 0x80)
			{
				if (written + 1 > limit)
				{
					break;
				}
				output[written++] = char(c);
			}
			else
			{
				if (written + 2 > limit)
				{
					break;
				}
				output[written++] = char(0xC0 | (c >> 6));
				output[written++] = char(0x80 | (c & 0x3F));
			}
		}
	}
	output[written] = '\0';
	return written;
}

} // end namespace UTF8Utils

} // end namespace OW_NAMESPACE
