#include "OW_CIMObjectPath.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMClass.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMException.hpp"
#include "OW_Bool.hpp"
#include "OW_NoSuchPropertyException.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"
#include "OW_ElementLists.hpp"
#include <cctype>

namespace OW_NAMESPACE
{

struct CIMObjectPath::OPData : public COWIntrusiveCountableBase
{
	virtual COWIntrusiveCountableBase* cloneBase() const { return new OPData(*this); }
	String m_host;
	String m_protocol;
	UInt32 m_port = 5988;
	String m_nameSpace;
	String m_objectName;
	CIMPropertyArray m_keys;
};

namespace
{
String normalizeNameSpace(const String& ns)
{
	String s(ns);
	s.trim();
	size_t i = 0;
	while (i < s.length() && s.charAt(i) == '/')
	{
		++i;
	}
	return s.substring(i);
}

bool isLocalHost(const String& host)
{
	return host.empty() || host.equalsIgnoreCase("localhost") || host.equals("127.0.0.1");
}

[[noreturn]] void throwBadPath(const String& path)
{
	String msg = String("Invalid object path: ") + path;
	throw CIMException(__FILE__, __LINE__, CIMException::INVALID_PARAMETER, msg.c_str());
}

// The value of an unquoted key: a boolean or a number.
CIMValue parseBareValue(const String& text, const String& path)
{
	if (text.equalsIgnoreCase("true"))
	{
		return CIMValue(true);
	}
	if (text.equalsIgnoreCase("false"))
	{
		return CIMValue(false);
	}
	try
	{
		if (text.indexOf('.') != String::npos || text.indexOf('e') != String::npos
			|| text.indexOf('E') != String::npos)
		{
			return CIMValue(text.toReal64());
		}
		if (text.startsWith('-'))
		{
			return CIMValue(text.toInt64());
		}
		return CIMValue(text.toUInt64());
	}
	catch (const StringConversionException&)
	{
		throwBadPath(path);
	}
}

// Parses "k1=\"v1\",k2=5" into key properties.
CIMPropertyArray parseKeys(const String& text, const String& path)
{
	CIMPropertyArray keys;
	const char* p = text.c_str();
	size_t n = text.length();
	size_t i = 0;
	while (i < n)
	{
		size_t eq = text.indexOf('=', i);
		if (eq == String::npos || eq == i)
		{
			throwBadPath(path);
		}
		String name = text.substring(i, eq - i);
		name.trim();
		i = eq + 1;
		CIMValue value(CIMNULL);
		if (i < n && p[i] == '"')
		{
			String raw;
			++i;
			bool closed = false;
			while (i < n)
			{
				if (p[i] == '\\' && i + 1 < n)
				{
					raw += p[i];
					raw += p[i + 1];
					i += 2;
					continue;
				}
				if (p[i] == '"')
				{
					closed = true;
					++i;
					break;
				}
				raw += p[i++];
			}
			if (!closed)
			{
				throwBadPath(path);
			}
			value = CIMValue(CIMObjectPath::unEscape(raw));
		}
		else
		{
			size_t comma = text.indexOf(',', i);
			String bare = text.substring(i, comma == String::npos ? String::npos : comma - i);
			bare.trim();
			if (bare.empty())
			{
				throwBadPath(path);
			}
			value = parseBareValue(bare, path);
			i = comma == String::npos ? n : comma;
		}
		keys.push_back(CIMProperty(name, value));
		if (i < n)
		{
			if (p[i] != ',')
			{
				throwBadPath(path);
			}
			++i;
		}
	}
	return keys;
}
} // end unnamed namespace

CIMObjectPath::CIMObjectPath() : m_pdata(new OPData) {}
CIMObjectPath::CIMObjectPath(CIMNULL_t) {}

CIMObjectPath::CIMObjectPath(const CIMName& className) : m_pdata(new OPData)
{
	m_pdata->m_objectName = className.toString();
}

CIMObjectPath::CIMObjectPath(const char* className) : m_pdata(new OPData)
{
	m_pdata->m_objectName = String(className);
}

CIMObjectPath::CIMObjectPath(const CIMName& className, const String& nspace) : m_pdata(new OPData)
{
	m_pdata->m_objectName = className.toString();
	m_pdata->m_nameSpace = normalizeNameSpace(nspace);
}

CIMObjectPath::CIMObjectPath(const CIMName& className, const CIMPropertyArray& keys) : m_pdata(new OPData)
{
	m_pdata->m_objectName = className.toString();
	setKeys(keys);
}

CIMObjectPath::CIMObjectPath(const String& ns, const CIMInstance& inst) : m_pdata(new OPData)
{
	m_pdata->m_nameSpace = normalizeNameSpace(ns);
	m_pdata->m_objectName = inst.getClassName();
	setKeys(inst.getKeyValuePairs());
}

CIMObjectPath::CIMObjectPath(const CIMObjectPath& arg) : CIMBase(), m_pdata(arg.m_pdata) {}
CIMObjectPath::~CIMObjectPath() {}
CIMObjectPath& CIMObjectPath::operator=(const CIMObjectPath& arg) { m_pdata = arg.m_pdata; return *this; }
void CIMObjectPath::setNull() { m_pdata = COWIntrusiveReference<OPData>(); }

CIMObjectPath& CIMObjectPath::addKey(const CIMName& keyname, const CIMValue& value)
{
	if (value)
	{
		m_pdata->m_keys.push_back(CIMProperty(keyname, value));
	}
	return *this;
}

CIMObjectPath& CIMObjectPath::addKey(const CIMProperty& key)
{
	if (key)
	{
		m_pdata->m_keys.push_back(key);
	}
	return *this;
}

CIMPropertyArray CIMObjectPath::getKeys() const { return m_pdata->m_keys; }

CIMProperty CIMObjectPath::getKey(const CIMName& keyName) const
{
	return ElementLists::get(m_pdata->m_keys, keyName);
}

CIMProperty CIMObjectPath::getKeyT(const CIMName& keyName) const
{
	CIMProperty p = getKey(keyName);
	if (!p)
	{
		throw NoSuchPropertyException(__FILE__, __LINE__, keyName.toString().c_str());
	}
	return p;
}

CIMValue CIMObjectPath::getKeyValue(const CIMName& name) const
{
	CIMProperty p = getKey(name);
	return p ? p.getValue() : CIMValue(CIMNULL);
}

bool CIMObjectPath::keyHasValue(const CIMName& name) const { return bool(getKeyValue(name)); }

CIMObjectPath& CIMObjectPath::setKeys(const CIMPropertyArray& newKeys)
{
	CIMPropertyArray keys;
	for (size_t i = 0; i < newKeys.size(); ++i)
	{
		CIMProperty key(newKeys[i]);
		key.clearQualifiers();
		keys.push_back(key);
	}
	m_pdata->m_keys = keys;
	return *this;
}

CIMObjectPath& CIMObjectPath::setKeys(const CIMInstance& instance)
{
	return setKeys(instance.getKeyValuePairs());
}

CIMObjectPath& CIMObjectPath::setKeyValue(const CIMName& name, const CIMValue& value)
{
	size_t i = ElementLists::find(getKeys(), name);
	if (i != String::npos)
	{
		m_pdata->m_keys[i].setValue(value);
	}
	else
	{
		m_pdata->m_keys.push_back(CIMProperty(name, value));
	}
	return *this;
}

String CIMObjectPath::getNameSpace() const { return m_pdata->m_nameSpace; }
String CIMObjectPath::getHost() const { return m_pdata->m_host; }
String CIMObjectPath::getClassName() const { return m_pdata->m_objectName; }
String CIMObjectPath::getObjectName() const { return m_pdata->m_objectName; }

CIMObjectPath& CIMObjectPath::setHost(const String& host)
{
	m_pdata->m_host = host;
	return *this;
}

CIMObjectPath& CIMObjectPath::setNameSpace(const String& ns)
{
	m_pdata->m_nameSpace = normalizeNameSpace(ns);
	return *this;
}

CIMObjectPath& CIMObjectPath::setClassName(const CIMName& className)
{
	m_pdata->m_objectName = className.toString();
	return *this;
}

CIMObjectPath& CIMObjectPath::setObjectName(const CIMName& className) { return setClassName(className); }

CIMObjectPath& CIMObjectPath::syncWithClass(const CIMClass& theClass)
{
	if (!theClass)
	{
		return *this;
	}
	CIMPropertyArray classKeys = theClass.getKeys();
	CIMPropertyArray keys = getKeys();
	for (size_t i = 0; i < keys.size(); ++i)
	{
		size_t k = ElementLists::find(classKeys, keys[i].getName());
		if (k != String::npos)
		{
			CIMProperty key = classKeys[k].clone();
			key.clearQualifiers();
			key.setValue(keys[i].getValue());
			keys[i] = key;
		}
	}
	m_pdata->m_keys = keys;
	return *this;
}

bool CIMObjectPath::equals(const CIMObjectPath& op) const
{
	if (m_pdata.isNull() || op.m_pdata.isNull())
	{
		return m_pdata.isNull() && op.m_pdata.isNull();
	}
	const OPData& a = *m_pdata;
	const OPData& b = *op.m_pdata;
	if (!a.m_nameSpace.equalsIgnoreCase(b.m_nameSpace)
		|| !a.m_objectName.equalsIgnoreCase(b.m_objectName)
		|| a.m_keys.size() != b.m_keys.size())
	{
		return false;
	}
	for (size_t i = 0; i < a.m_keys.size(); ++i)
	{
		CIMProperty other = ElementLists::get(b.m_keys, a.m_keys[i].getName());
		if (!other || !other.getValue().equal(a.m_keys[i].getValue()))
		{
			return false;
		}
	}
	return true;
}

bool CIMObjectPath::isClassPath() const { return m_pdata->m_keys.empty(); }
bool CIMObjectPath::isInstancePath() const { return !m_pdata->m_keys.empty(); }

String CIMObjectPath::modelPath() const
{
	const OPData& d = *m_pdata;
	String out = d.m_objectName;
	for (size_t i = 0; i < d.m_keys.size(); ++i)
	{
		out += (i == 0) ? '.' : ',';
		CIMValue v = d.m_keys[i].getValue();
		// Every value is quoted, numbers and booleans included.
		out += d.m_keys[i].getName() + "=\"" + escape(v ? v.toString() : String("null")) + "\"";
	}
	return out;
}

String CIMObjectPath::toString() const
{
	const OPData& d = *m_pdata;
	String out;
	if (!isLocalHost(d.m_host))
	{
		out += (d.m_protocol.empty() ? String("HTTP") : d.m_protocol) + "://" + d.m_host;
		if (d.m_port != 5988)
		{
			out += ":" + String(d.m_port);
		}
	}
	out += "/" + d.m_nameSpace + ":" + modelPath();
	return out;
}

String CIMObjectPath::toMOF() const
{
	return escape(modelPath());
}

String CIMObjectPath::escape(const String& inString)
{
	String out;
	for (const char* p = inString.c_str(); *p; ++p)
	{
		switch (*p)
		{
			case '\\': out += "\\\\"; break;
			case '"': out += "\\\""; break;
			case '\n': out += "\\n"; break;
			default: out += *p; break;
		}
	}
	return out;
}

String CIMObjectPath::unEscape(const String& inString)
{
	String out;
	const char* p = inString.c_str();
	for (; *p; ++p)
	{
		if (*p == '\\' && p[1] != '\0')
		{
			++p;
			out += (*p == 'n') ? '\n' : *p;
		}
		else
		{
			out += *p;
		}
	}
	return out;
}

CIMObjectPath CIMObjectPath::parse(const String& instanceName)
{
	String text(instanceName);
	text.trim();
	if (text.empty())
	{
		return CIMObjectPath(CIMNULL);
	}
	CIMObjectPath op;
	String rest = text;
	// Optional "<protocol>://host[:port]" or "//host" prefix.
	size_t scheme = rest.indexOf("://");
	size_t firstQuote = rest.indexOf('"');
	if (scheme != String::npos && (firstQuote == String::npos || scheme < firstQuote))
	{
		op.m_pdata->m_protocol = rest.substring(0, scheme);
		rest = rest.substring(scheme + 1);
	}
	if (rest.startsWith("//"))
	{
		size_t slash = rest.indexOf('/', 2);
		if (slash == String::npos)
		{
			throwBadPath(instanceName);
		}
		String host = rest.substring(2, slash - 2);
		size_t colon = host.indexOf(':');
		if (colon != String::npos)
		{
			try
			{
				op.m_pdata->m_port = host.substring(colon + 1).toUInt32();
			}
			catch (const StringConversionException&)
			{
				throwBadPath(instanceName);
			}
			host = host.substring(0, colon);
		}
		op.m_pdata->m_host = host;
		rest = rest.substring(slash);
	}
	// "<namespace>:" ends at the first ':' before any key text.
	size_t dot = rest.indexOf('.');
	size_t colon = rest.indexOf(':');
	if (colon != String::npos && (dot == String::npos || colon < dot))
	{
		op.setNameSpace(rest.substring(0, colon));
		rest = rest.substring(colon + 1);
		dot = rest.indexOf('.');
	}
	String className = dot == String::npos ? rest : rest.substring(0, dot);
	className.trim();
	if (className.empty())
	{
		throwBadPath(instanceName);
	}
	for (const char* p = className.c_str(); *p; ++p)
	{
		if (!(std::isalnum(static_cast<unsigned char>(*p)) || *p == '_'))
		{
			throwBadPath(instanceName);
		}
	}
	op.setClassName(className);
	if (dot != String::npos)
	{
		String keyText = rest.substring(dot + 1);
		if (keyText.empty())
		{
			throwBadPath(instanceName);
		}
		op.m_pdata->m_keys = parseKeys(keyText, instanceName);
	}
	return op;
}

bool operator<(const CIMObjectPath& lhs, const CIMObjectPath& rhs)
{
	if (lhs.m_pdata.isNull() || rhs.m_pdata.isNull())
	{
		return lhs.m_pdata.isNull() && !rhs.m_pdata.isNull();
	}
	return lhs.toString().compareToIgnoreCase(rhs.toString()) < 0;
}

} // end namespace OW_NAMESPACE
