#ifndef OW_CIMEXCEPTION_HPP_INCLUDE_GUARD_
#define OW_CIMEXCEPTION_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Exception.hpp"

namespace OW_NAMESPACE
{

/// A CIM error: a CIM status code and an optional message. getMessage()
/// and what() give the long message: the code's description, followed by
/// " (<msg>)" unless msg is empty or already starts with it.
class CIMException : public Exception
{
public:
	enum ErrNoType
	{
		SUCCESS = 0,
		FAILED = 1,
		ACCESS_DENIED = 2,
		INVALID_NAMESPACE = 3,
		INVALID_PARAMETER = 4,
		INVALID_CLASS = 5,
		NOT_FOUND = 6,
		NOT_SUPPORTED = 7,
		CLASS_HAS_CHILDREN = 8,
		CLASS_HAS_INSTANCES = 9,
		INVALID_SUPERCLASS = 10,
		ALREADY_EXISTS = 11,
		NO_SUCH_PROPERTY = 12,
		TYPE_MISMATCH = 13,
		QUERY_LANGUAGE_NOT_SUPPORTED = 14,
		INVALID_QUERY = 15,
		METHOD_NOT_AVAILABLE = 16,
		METHOD_NOT_FOUND = 17
	};

	CIMException(const char* file, int line, ErrNoType errval,
		const char* msg = 0, const Exception* otherException = 0);
	virtual ~CIMException() throw();
	CIMException(const CIMException& x);
	CIMException& operator=(const CIMException& x);
	void swap(CIMException& x);

	ErrNoType getErrNo() const { return static_cast<ErrNoType>(getErrorCode()); }
	void setErrNo(ErrNoType e) { setErrorCode(e); }
#ifndef OWAPI_SERIES_3_0
	/// The message as given; a NULL pointer when none was given.
	const char* getDescription() const;
#endif
	virtual const char* type() const;
	virtual CIMException* clone() const throw();
#ifndef OWAPI_SERIES_3_0
	/// The fixed text of a code; "unknown error" out of range.
	static const char* getCodeDescription(ErrNoType errCode);
#endif
private:
	char* m_description;
};

} // end namespace OW_NAMESPACE

#define OW_THROWCIM(errval) \
	throw CIMException(__FILE__, __LINE__, (errval))
#define OW_THROWCIM_SUBEX(errval, subex) \
	throw CIMException(__FILE__, __LINE__, (errval), (subex).getMessage(), &(subex))
#define OW_THROWCIMMSG(errval, msg) \
	throw CIMException(__FILE__, __LINE__, (errval), (msg))
#define OW_THROWCIMMSG_SUBEX(errval, msg, subex) \
	throw CIMException(__FILE__, __LINE__, (errval), (msg), &(subex))

#endif
