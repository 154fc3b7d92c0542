#ifndef OW_EXCEPTION_HPP_INCLUDE_GUARD_
#define OW_EXCEPTION_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include <iosfwd>
#include <exception>
#include <new>

namespace OW_NAMESPACE
{

/// Base of every exception the API throws. Only subclasses are constructed.
/// The file and message are copied; a sub-exception is cloned.
class Exception : public std::exception
{
protected:
	Exception(const char* file, int line, const char* msg, int errorCode,
		const Exception* otherException = 0, int subClassId = UNKNOWN_SUBCLASS_ID);
public:
	Exception(const Exception& e);
	Exception& operator=(const Exception& rhs);
	virtual ~Exception() throw();
protected:
	void swap(Exception& x);
	void setSubClassId(int subClassId);
	void setErrorCode(int errorCode);
public:
	static const int UNKNOWN_SUBCLASS_ID = -1;
	static const int UNKNOWN_ERROR_CODE = -1;

	/// The concrete type's name, e.g. "Exception". Never 0.
	virtual const char* type() const;
	/// The message; "" when there is none.
	virtual const char* getMessage() const;
	/// The source file; "" when there is none.
	const char* getFile() const;
	int getLine() const;
	int getSubClassId() const;
	/// The chained exception, or 0.
	const Exception* getSubException() const;
	int getErrorCode() const;
	/// Returns getMessage().
	virtual const char* what() const throw();
	/// A heap copy of this exception, or 0 when memory is short.
	virtual Exception* clone() const;
private:
	char* m_file;
	int m_line;
	char* m_msg;
	int m_subClassId;
	const Exception* m_subException;
	int m_errorCode;
};

/// Writes "<file>: <line> <type>: <message>" and the sub-exception, if any.
std::ostream& operator<<(std::ostream& os, const Exception& e);

#define OW_THROW(exType, msg) throw exType(__FILE__, __LINE__, (msg))
#define OW_THROWL(exType, line, msg) throw exType(__FILE__, (line), (msg))
#define OW_THROW_SUBEX(exType, msg, subex) \
throw exType(__FILE__, __LINE__, (msg), ::OW_NAMESPACE::Exception::UNKNOWN_ERROR_CODE, &(subex))
#define OW_THROW_ERR(exType, msg, err) throw exType(__FILE__, __LINE__, (msg), (err))
#define OW_THROW_ERR_SUBEX(exType, msg, err, subex) \
throw exType(__FILE__, __LINE__, (msg), (err), &(subex))

#define OW_DECLARE_EXCEPTION2(NAME, BASE) \
class NAME##Exception : public BASE \
{ \
public: \
	NAME##Exception(const char* file, int line, const char* msg, int errorCode = ::OW_NAMESPACE::Exception::UNKNOWN_ERROR_CODE, const ::OW_NAMESPACE::Exception* otherException = 0, int subClassId = ::OW_NAMESPACE::Exception::UNKNOWN_SUBCLASS_ID); \
	virtual ~NAME##Exception() throw(); \
	virtual const char* type() const; \
	virtual NAME##Exception* clone() const; \
};
#define OW_DECLARE_APIEXCEPTION2(NAME, BASE, LINKAGE_SPEC) OW_DECLARE_EXCEPTION2(NAME, BASE)
#define OW_DECLARE_EXCEPTION(NAME) OW_DECLARE_EXCEPTION2(NAME, ::OW_NAMESPACE::Exception)
#define OW_DECLARE_APIEXCEPTION(NAME, LINKAGE_SPEC) OW_DECLARE_EXCEPTION2(NAME, ::OW_NAMESPACE::Exception)

#define OW_DEFINE_EXCEPTION_WITH_BASE_AND_ID_AUX(NAME, BASE, SUB_CLASS_ID) \
NAME##Exception::NAME##Exception(const char* file, int line, const char* msg, int errorCode, const ::OW_NAMESPACE::Exception* otherException, int subClassId) \
	: BASE(file, line, msg, errorCode, otherException, subClassId == ::OW_NAMESPACE::Exception::UNKNOWN_SUBCLASS_ID ? (SUB_CLASS_ID) : subClassId) {} \
NAME##Exception::~NAME##Exception() throw() { } \
NAME##Exception* NAME##Exception::clone() const { return new(std::nothrow) NAME##Exception(*this); } \
const char* NAME##Exception::type() const { return #NAME "Exception"; }
#define OW_DEFINE_EXCEPTION2(NAME, BASE) \
	OW_DEFINE_EXCEPTION_WITH_BASE_AND_ID_AUX(NAME, BASE, ::OW_NAMESPACE::Exception::UNKNOWN_SUBCLASS_ID)
#define OW_DEFINE_EXCEPTION(NAME) OW_DEFINE_EXCEPTION2(NAME, ::OW_NAMESPACE::Exception)

} // end namespace OW_NAMESPACE

#endif
