#ifndef OW_BOOL_HPP_INCLUDE_GUARD_
#define OW_BOOL_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CommonFwd.hpp"
#include <iosfwd>

namespace OW_NAMESPACE
{

/// A boolean that cannot be built from a pointer by accident.
class Bool
{
public:
	Bool() : m_val(false) {}
	Bool(bool val) : m_val(val) {}
	Bool(const Bool& arg) : m_val(arg.m_val) {}
	Bool& operator=(const Bool& arg) { m_val = arg.m_val; return *this; }
	bool operator==(const Bool& arg) const { return m_val == arg.m_val; }
	bool operator==(bool val) const { return m_val == val; }
	bool operator!=(const Bool& arg) const { return m_val != arg.m_val; }
	bool operator!=(bool val) const { return m_val != val; }
	operator bool() const { return m_val; }
	bool operator!() const { return !m_val; }
	/// "true" or "false".
	String toString() const;
private:
	Bool(const void*);
	Bool(void*);
	Bool(volatile const void*);
	Bool(volatile void*);
	bool m_val;
};

inline bool operator<(const Bool& b1, const Bool& b2) { return bool(b1) < bool(b2); }
std::ostream& operator<<(std::ostream& ostrm, const Bool& arg);

} // end namespace OW_NAMESPACE

#endif
