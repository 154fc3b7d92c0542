#ifndef OW_CIMOBJECTPATH_HPP_INCLUDE_GUARD_
#define OW_CIMOBJECTPATH_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMBase.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_CIMNULL.hpp"

namespace OW_NAMESPACE
{

/// The name of a class or instance: host, namespace, class name and keys.
class CIMObjectPath : public CIMBase
{
public:
	struct OPData;

	CIMObjectPath();
	explicit CIMObjectPath(CIMNULL_t);
	explicit CIMObjectPath(const CIMName& className);
	explicit CIMObjectPath(const char* className);
	/// Class first, then namespace.
	CIMObjectPath(const CIMName& className, const String& nspace);
	CIMObjectPath(const CIMName& className, const CIMPropertyArray& keys);
	/// Namespace first; class and keys from the instance.
	CIMObjectPath(const String& ns, const CIMInstance& inst);
	CIMObjectPath(const CIMObjectPath& arg);
	virtual ~CIMObjectPath();
	CIMObjectPath& operator=(const CIMObjectPath& arg);

	virtual void setNull();
	OW_SAFE_BOOL_IMPL(CIMObjectPath, COWIntrusiveReference<OPData>, m_pdata, !m_pdata.isNull())

	/// Deprecated; use setKeyValue.
	CIMObjectPath& addKey(const CIMName& keyname, const CIMValue& value) OW_DEPRECATED;
	CIMObjectPath& addKey(const CIMProperty& key) OW_DEPRECATED;
	/// Keys in insertion order.
	CIMPropertyArray getKeys() const;
	/// Null when absent; the name is matched ignoring case.
	CIMProperty getKey(const CIMName& keyName) const;
	/// Throws NoSuchPropertyException when absent.
	CIMProperty getKeyT(const CIMName& keyName) const;
	CIMValue getKeyValue(const CIMName& name) const;
	bool keyHasValue(const CIMName& name) const;
	/// Replaces the keys; their qualifiers are dropped.
	CIMObjectPath& setKeys(const CIMPropertyArray& newKeys);
	CIMObjectPath& setKeys(const CIMInstance& instance);
	/// Updates an existing key (converting the value) or appends one.
	CIMObjectPath& setKeyValue(const CIMName& name, const CIMValue& value);
	String getNameSpace() const;
	String getHost() const;
	String getClassName() const;
	String getObjectName() const OW_DEPRECATED;
	CIMObjectPath& setHost(const String& host);
	/// Trims white space and strips leading '/'.
	CIMObjectPath& setNameSpace(const String& ns);
	CIMObjectPath& setClassName(const CIMName& className);
	CIMObjectPath& setObjectName(const CIMName& className) OW_DEPRECATED;
	CIMObjectPath& syncWithClass(const CIMClass& theClass);
	/// Namespace and class ignoring case, same key set with equal values.
	bool equals(const CIMObjectPath& op) const;
	bool operator==(const CIMObjectPath& op) const { return equals(op); }
	bool operator!=(const CIMObjectPath& op) const { return !equals(op); }
	bool isClassPath() const;
	bool isInstancePath() const;

	/// "/<ns>:<modelPath>", with a "<protocol>://<host>" prefix for a remote host.
	virtual String toString() const;
	virtual String toMOF() const;
	/// "<Class>" or "<Class>.<k1>="<v1>",...".
	virtual String modelPath() const;

	/// Escapes '\\', '"' and newline for a quoted key value.
	static String escape(const String& inString);
	static String unEscape(const String& inString);
	/// Parses the text form; "" gives a null path, a bad path throws
	/// CIMException(INVALID_PARAMETER).
	static CIMObjectPath parse(const String& instanceName);

private:
	COWIntrusiveReference<OPData> m_pdata;
	friend bool operator<(const CIMObjectPath& lhs, const CIMObjectPath& rhs);
};

bool operator<(const CIMObjectPath& lhs, const CIMObjectPath& rhs);

} // end namespace OW_NAMESPACE

#endif
