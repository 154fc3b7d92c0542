#include "OW_Exception.hpp"
#include "OW_CIMException.hpp"
#include "OW_Array.hpp"
#include "OW_String.hpp"
#include "OW_CIMValueCast.hpp"
#include "OW_CIMDateTime.hpp"
#include "OW_UTF8Utils.hpp"
#include "OW_Logger.hpp"
#include "OW_NULLValueException.hpp"
#include "OW_NoSuchPropertyException.hpp"
#include "OW_NoSuchQualifierException.hpp"
#include "OW_NULLCOWIntrusiveReferenceException.hpp"
#include <cstring>
#include <cstdlib>
#include <cstdio>
#include <ostream>
#include <algorithm>

namespace OW_NAMESPACE
{

namespace
{
char* dupString(const char* s)
{
	if (s == 0)
	{
		return 0;
	}
	size_t len = std::strlen(s);
	char* p = new (std::nothrow) char[len + 1];
	if (p != 0)
	{
		std::memcpy(p, s, len + 1);
	}
	return p;
}
} // end unnamed namespace

Exception::Exception(const char* file, int line, const char* msg, int errorCode,
	const Exception* otherException, int subClassId)
	: std::exception()
	, m_file(dupString(file))
	, m_line(line)
	, m_msg(dupString(msg))
	, m_subClassId(subClassId)
	, m_subException(otherException ? otherException->clone() : 0)
	, m_errorCode(errorCode)
{
}

Exception::Exception(const Exception& e)
	: std::exception(e)
	, m_file(dupString(e.m_file))
	, m_line(e.m_line)
	, m_msg(dupString(e.m_msg))
	, m_subClassId(e.m_subClassId)
	, m_subException(e.m_subException ? e.m_subException->clone() : 0)
	, m_errorCode(e.m_errorCode)
{
}

Exception::~Exception() throw()
{
	delete[] m_file;
	delete[] m_msg;
	delete m_subException;
}

Exception& Exception::operator=(const Exception& rhs)
{
	Exception(rhs).swap(*this);
	return *this;
}

void Exception::swap(Exception& x)
{
	std::swap(m_file, x.m_file);
	std::swap(m_line, x.m_line);
	std::swap(m_msg, x.m_msg);
	std::swap(m_subClassId, x.m_subClassId);
	std::swap(m_subException, x.m_subException);
	std::swap(m_errorCode, x.m_errorCode);
}

void Exception::setSubClassId(int subClassId) { m_subClassId = subClassId; }
void Exception::setErrorCode(int errorCode) { m_errorCode = errorCode; }
const char* Exception::type() const { return "Exception"; }
const char* Exception::getMessage() const { return m_msg != 0 ? m_msg : ""; }
const char* Exception::getFile() const { return m_file != 0 ? m_file : ""; }
int Exception::getLine() const { return m_line; }
int Exception::getSubClassId() const { return m_subClassId; }
const Exception* Exception::getSubException() const { return m_subException; }
int Exception::getErrorCode() const { return m_errorCode; }
const char* Exception::what() const throw() { return getMessage(); }
Exception* Exception::clone() const { return new (std::nothrow) Exception(*this); }

std::ostream& operator<<(std::ostream& os, const Exception& e)
{
	if (*e.getFile() == '\0')
	{
		os << "[no file]: ";
	}
	else
	{
		os << e.getFile() << ": ";
	}
	if (e.getLine() == 0)
	{
		os << "[no line] ";
	}
	else
	{
		os << e.getLine() << ' ';
	}
	os << e.type() << ": ";
	if (*e.getMessage() == '\0')
	{
		os << "[no message]";
	}
	else
	{
		os << e.getMessage();
	}
	if (e.getSubException() != 0)
	{
		os << " <" << *e.getSubException() << '>';
	}
	return os;
}

// ---- CIMException

namespace
{
const char* const codeDescriptions[] =
{
	"no error",
	"general error",
	"Access to CIM resource unavailable to client",
	"namespace does not exist",
	"invalid parameter passed to method",
	"class does not exist",
	"requested object could not be found",
	"requested operation is not supported",
	"operation cannot be done on class with subclasses",
	"operator cannot be done on class with instances",
	"specified superclass does not exist",
	"object already exists",
	"specified property does not exist",
	"value supplied is incompatible with type",
	"query language is not recognized or supported",
	"query is not valid for the specified query language",
	"extrinsic method could not be executed",
	"extrinsic method does not exist"
};
const int CIMExceptionId = 1;

// The long message: the description of the code, with the caller's text in
// parentheses unless the text already begins with the description.
String buildLongMessage(CIMException::ErrNoType errval, const char* msg)
{
	const char* desc = CIMException::getCodeDescription(errval);
	const char* m = msg != 0 ? msg : "";
	if (std::strncmp(m, desc, std::strlen(desc)) == 0)
	{
		return String(m);
	}
	if (*m != '\0')
	{
		return String(desc) + " (" + m + ")";
	}
	return String(desc);
}
} // end unnamed namespace

CIMException::CIMException(const char* file, int line, ErrNoType errval,
	const char* msg, const Exception* otherException)
	: Exception(file, line, buildLongMessage(errval, msg).c_str(), errval, otherException, CIMExceptionId)
	, m_description(dupString(msg))
{
}

CIMException::~CIMException() throw()
{
	delete[] m_description;
}

CIMException::CIMException(const CIMException& x)
	: Exception(x)
	, m_description(dupString(x.m_description))
{
}

CIMException& CIMException::operator=(const CIMException& x)
{
	CIMException(x).swap(*this);
	return *this;
}

void CIMException::swap(CIMException& x)
{
	Exception::swap(x);
	std::swap(m_description, x.m_description);
}

const char* CIMException::getDescription() const { return m_description; }
const char* CIMException::type() const { return "CIMException"; }
CIMException* CIMException::clone() const throw() { return new (std::nothrow) CIMException(*this); }

const char* CIMException::getCodeDescription(ErrNoType errCode)
{
	int code = static_cast<int>(errCode);
	if (code >= 0 && code < int(sizeof(codeDescriptions) / sizeof(codeDescriptions[0])))
	{
		return codeDescriptions[code];
	}
	return "unknown error";
}

// ---- the other exceptions of the API

OW_DEFINE_EXCEPTION(OutOfBounds)
OW_DEFINE_EXCEPTION(StringConversion)
OW_DEFINE_EXCEPTION(ValueCast)
OW_DEFINE_EXCEPTION(CIMDateTime)
OW_DEFINE_EXCEPTION(InvalidUTF8)
OW_DEFINE_EXCEPTION(Logger)
OW_DEFINE_EXCEPTION(NULLValue)
OW_DEFINE_EXCEPTION(NoSuchProperty)
OW_DEFINE_EXCEPTION(NoSuchQualifier)
OW_DEFINE_EXCEPTION(NULLCOWIntrusiveReference)

void throwArrayOutOfBoundsException(size_t size, size_t idx)
{
	char buf[128];
	std::snprintf(buf, sizeof(buf), "Array Index out of bounds. size = %lu, index = %lu",
		static_cast<unsigned long>(size), static_cast<unsigned long>(idx));
	throw OutOfBoundsException(__FILE__, __LINE__, buf);
}

void COWIntrusiveReferenceThrowNullException()
{
	throw NULLCOWIntrusiveReferenceException(__FILE__, __LINE__, "NULL COWReference dereferenced");
}

} // end namespace OW_NAMESPACE
