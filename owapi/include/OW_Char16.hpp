#ifndef OW_CHAR16_HPP_INCLUDE_GUARD_
#define OW_CHAR16_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Types.hpp"
#include "OW_CommonFwd.hpp"

namespace OW_NAMESPACE
{

/// One UCS-2 character.
class Char16
{
public:
	Char16() : m_value(0) {}
	Char16(const Char16& arg) : m_value(arg.m_value) {}
	explicit Char16(char c) : m_value(UInt8(c)) {}
	explicit Char16(const String& x);
	Char16(UInt16 val) : m_value(val) {}
	explicit Char16(Int16 val) : m_value(UInt16(val)) {}
	explicit Char16(UInt8 val) : m_value(val) {}
	explicit Char16(Int8 val) : m_value(UInt8(val)) {}
	explicit Char16(UInt32 val) : m_value(UInt16(val)) {}
	explicit Char16(Int32 val) : m_value(UInt16(val)) {}
	explicit Char16(UInt64 val) : m_value(UInt16(val)) {}
	explicit Char16(Int64 val) : m_value(UInt16(val)) {}
	explicit Char16(Real32 val) : m_value(UInt16(val)) {}
	explicit Char16(Real64 val) : m_value(UInt16(val)) {}
	Char16& operator=(const Char16& arg) { m_value = arg.m_value; return *this; }
	UInt16 getValue() const { return m_value; }
	operator UInt16() const { return m_value; }
	/// The character in UTF-8.
	String toString() const;
private:
	UInt16 m_value;
};

} // end namespace OW_NAMESPACE

#endif
