// The per-class CIM provider skeleton shared by the six managed classes.
//
// A class provider is CDRClassProvider<Traits>, where Traits names the
// managed class, its CIM class name, the unit's source path and line numbers
// for CIM errors, its key properties, the properties an instance is built
// from, the writable properties, the methods, and the three instance-manager
// calls (lookup, create, destroy).
#ifndef CDR_CLASS_PROVIDER_HPP
#define CDR_CLASS_PROVIDER_HPP

#include <stdio.h>
#include <string>

#include "CDROWConfig.hpp"
#include "OW_Array.hpp"
#include "OW_Bool.hpp"
#include "OW_CIMClass.hpp"
#include "OW_CIMException.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMParamValue.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_CppMethodProviderIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"
#include "OW_String.hpp"

#include "CFG_Exception.h"
#include "CDRProviderLines.hpp"

typedef OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier> CDRQualifiers;

// ---- Property descriptors -------------------------------------------------

// A property an instance is built from: its getter's value as a CIMValue.
template <class C>
struct CDRPropertyReader {
  const char* name;
  // Calls the getter; on status 0 stores the converted value in `value`.
  int (*read)(const C& object, CDRQualifiers& qualifiers, OW_NAMESPACE::CIMValue& value);
};

// A writable property: converts the request's value and calls the setter.
// A value refused before the setter sets `invalidMessage` (CIM error 4).
template <class C>
struct CDRPropertyWriter {
  const char* name;
  int (*write)(C& object, const OW_NAMESPACE::CIMValue& value, const char*& invalidMessage);
};

// A key property and its getter.
template <class C>
struct CDRKeyProperty {
  const char* name;
  int (C::*getter)(std::string& value, CDRQualifiers& qualifiers) const;
};

// A CIM method and the managed object's operation behind it.
template <class C>
struct CDRMethod {
  const char* name;
  unsigned int (C::*operation)();
};

inline OW_NAMESPACE::CIMValue cdrToCIMValue(const std::string& v) {
  return OW_NAMESPACE::CIMValue(OW_NAMESPACE::String(v.c_str()));
}
inline OW_NAMESPACE::CIMValue cdrToCIMValue(bool v) { return OW_NAMESPACE::CIMValue(v); }
inline OW_NAMESPACE::CIMValue cdrToCIMValue(unsigned char v) {
  return OW_NAMESPACE::CIMValue(OW_NAMESPACE::UInt8(v));
}
inline OW_NAMESPACE::CIMValue cdrToCIMValue(unsigned short v) {
  return OW_NAMESPACE::CIMValue(OW_NAMESPACE::UInt16(v));
}
inline OW_NAMESPACE::CIMValue cdrToCIMValue(unsigned int v) {
  return OW_NAMESPACE::CIMValue(OW_NAMESPACE::UInt32(v));
}

// Reader of a property whose getter is `Getter`, value type T.
template <class C, class T, int (C::*Getter)(T&, CDRQualifiers&) const>
int cdrReadProperty(const C& object, CDRQualifiers& qualifiers, OW_NAMESPACE::CIMValue& value) {
  T local = T();
  int status = (object.*Getter)(local, qualifiers);
  if (status == 0) value = cdrToCIMValue(local);
  return status;
}

// Request values taken as the setter's type.
inline void cdrFromCIMValue(const OW_NAMESPACE::CIMValue& v, std::string& out) {
  out = v.toString().c_str();
}
inline void cdrFromCIMValue(const OW_NAMESPACE::CIMValue& v, bool& out) { out = v.toBool(); }
inline void cdrFromCIMValue(const OW_NAMESPACE::CIMValue& v, unsigned char& out) { out = v.toUInt8(); }
inline void cdrFromCIMValue(const OW_NAMESPACE::CIMValue& v, unsigned short& out) { out = v.toUInt16(); }
inline void cdrFromCIMValue(const OW_NAMESPACE::CIMValue& v, unsigned int& out) { out = v.toUInt32(); }

// Writer of a property whose setter is `Setter`, value type T, no check.
template <class C, class T, int (C::*Setter)(T)>
int cdrWriteProperty(C& object, const OW_NAMESPACE::CIMValue& value, const char*&) {
  T converted;
  cdrFromCIMValue(value, converted);
  return (object.*Setter)(converted);
}


// ---- The skeleton ---------------------------------------------------------

template <class Traits>
class CDRClassProvider : public OW_NAMESPACE::CppMethodProviderIFC,
                         public OW_NAMESPACE::CppInstanceProviderIFC {
 public:
  typedef typename Traits::Object Object;
  typedef OW_NAMESPACE::CIMException CIMException;
  typedef OW_NAMESPACE::String String;
  typedef OW_NAMESPACE::CIMInstance CIMInstance;
  typedef OW_NAMESPACE::CIMObjectPath CIMObjectPath;
  typedef OW_NAMESPACE::CIMValue CIMValue;
  typedef OW_NAMESPACE::CIMProperty CIMProperty;
  typedef OW_NAMESPACE::ProviderEnvironmentIFCRef ProviderEnvironmentIFCRef;

  virtual ~CDRClassProvider() {}

  // Runs the named method of the object the path names; the status comes
  // back as a uint32. An unknown name is CIM error 17.
  virtual CIMValue invokeMethod(const ProviderEnvironmentIFCRef&, const String&,
                                const CIMObjectPath& path, const String& methodName,
                                const OW_NAMESPACE::CIMParamValueArray&,
                                OW_NAMESPACE::CIMParamValueArray&) {
    for (size_t i = 0; i < Traits::methodCount; ++i) {
      if (methodName.equals(Traits::methods[i].name)) {
        Object* object = getWithCIMObjectPath(path);
        return CIMValue(OW_NAMESPACE::UInt32((object->*Traits::methods[i].operation)()));
      }
    }
    raise(Traits::lines.methodNotFound, CIMException::METHOD_NOT_FOUND);
  }

  // Installs a new implementation instance manager for the class.
  virtual void initialize(const ProviderEnvironmentIFCRef&) {
    Object::SetInstanceManager(new typename Traits::ImplManager);
  }

  virtual void enumInstanceNames(const ProviderEnvironmentIFCRef&, const String& ns,
                                 const String& className,
                                 OW_NAMESPACE::CIMObjectPathResultHandlerIFC& result,
                                 const OW_NAMESPACE::CIMClass&) {
    CIMObjectPath path(className, ns);
    Object::getInstanceManager()->startIteration();
    while (Object::getInstanceManager()->hasNext()) {
      Object* object = Object::getInstanceManager()->next();
      toCIMObjectPath(*object, path);
      result.handle(path);
    }
    Object::getInstanceManager()->endIteration();
  }

  // One instance is filled object after object; a property whose getter
  // fails keeps what the previous object put there.
  virtual void enumInstances(const ProviderEnvironmentIFCRef&, const String& ns, const String&,
                             OW_NAMESPACE::CIMInstanceResultHandlerIFC& result,
                             OW_NAMESPACE::WBEMFlags::ELocalOnlyFlag,
                             OW_NAMESPACE::WBEMFlags::EDeepFlag,
                             OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag,
                             OW_NAMESPACE::WBEMFlags::EIncludeClassOriginFlag,
                             const OW_NAMESPACE::StringArray*, const OW_NAMESPACE::CIMClass&,
                             const OW_NAMESPACE::CIMClass&) {
    CIMInstance instance(Traits::className);
    Object::getInstanceManager()->startIteration();
    while (Object::getInstanceManager()->hasNext()) {
      Object* object = Object::getInstanceManager()->next();
      toCIMInstance(ns, *object, instance);
      result.handle(instance);
    }
    Object::getInstanceManager()->endIteration();
  }

  virtual CIMInstance getInstance(const ProviderEnvironmentIFCRef&, const String& ns,
                                  const CIMObjectPath& instanceName,
                                  OW_NAMESPACE::WBEMFlags::ELocalOnlyFlag,
                                  OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag,
                                  OW_NAMESPACE::WBEMFlags::EIncludeClassOriginFlag,
                                  const OW_NAMESPACE::StringArray*, const OW_NAMESPACE::CIMClass&) {
    Object* object = getWithCIMObjectPath(instanceName);
    CIMInstance instance(Traits::className);
    toCIMInstance(ns, *object, instance);
    return instance;
  }

  // No instance manager can create, so this ends with CIM error 7.
  virtual CIMObjectPath createInstance(const ProviderEnvironmentIFCRef&, const String& ns,
                                       const CIMInstance& cimInstance) {
    std::string keys[Traits::keyCount];
    for (size_t i = 0; i < Traits::keyCount; ++i) {
      CIMProperty property = cimInstance.getProperty(Traits::keys[i].name);
      if (property && property.getValue()) keys[i] = property.getValue().toString().c_str();
    }
    Object* object = 0;
    try {
      object = Traits::create(keys);
    } catch (CFG_InstanceCreationFailed&) {
      raise(Traits::lines.createNotSupported, CIMException::NOT_SUPPORTED);
    }
    try {
      modifyInstance(*object, cimInstance);
    } catch (CIMException& e) {
      Traits::destroy(object);
      throw CIMException(e);
    }
    CIMObjectPath path(Traits::className, ns);
    toCIMObjectPath(*object, path);
    return path;
  }

  // Finds the object (CIM error 6), then the manager refuses (CIM error 7).
  virtual void deleteInstance(const ProviderEnvironmentIFCRef&, const String&,
                              const CIMObjectPath& cop) {
    Object* object = getWithCIMObjectPath(cop);
    try {
      Traits::destroy(object);
    } catch (CFG_InstanceDeletionFailed&) {
      raise(Traits::lines.deleteNotSupported, CIMException::NOT_SUPPORTED);
    }
  }

  virtual void modifyInstance(const ProviderEnvironmentIFCRef&, const String&,
                              const CIMInstance& modifiedInstance, const CIMInstance&,
                              OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag,
                              const OW_NAMESPACE::StringArray*, const OW_NAMESPACE::CIMClass&) {
    Object* object = getWithCIMInstance(modifiedInstance);
    modifyInstance(*object, modifiedInstance);
  }

  // Nothing to release: the objects belong to the instance holder.
  void cleanup() {}

  // Applies the instance's writable properties in the instance's own order
  // between startChange and endChange. The first refusal ends the request;
  // what was applied before it stays applied.
  void modifyInstance(Object& object, const CIMInstance& instance) {
    int status = object.startChange();
    if (status != 0) raiseStatus(Traits::lines.startChangeFailed, status);
    OW_NAMESPACE::CIMPropertyArray properties = instance.getProperties();
    for (size_t p = 0; p < properties.size(); ++p) {
      String name = properties[p].getName();
      for (size_t w = 0; w < Traits::writableCount; ++w) {
        if (!name.equals(Traits::writable[w].name)) continue;
        CIMValue value = properties[p].getValue();
        if (!value) break;
        const char* invalidMessage = 0;
        status = Traits::writable[w].write(object, value, invalidMessage);
        if (invalidMessage != 0) {
          raise(Traits::lines.invalidValue, CIMException::INVALID_PARAMETER, invalidMessage);
        }
        if (status != 0) raiseStatus(Traits::lines.setterFailed, status);
        break;
      }
    }
    status = object.endChange();
    if (status != 0) raiseStatus(Traits::lines.endChangeFailed, status);
  }

  // Fills `instance` from the getters in property order; a property whose
  // getter fails is left as it is.
  void toCIMInstance(const String&, const Object& object, CIMInstance& instance) {
    CDRQualifiers qualifiers;
    for (size_t i = 0; i < Traits::propertyCount; ++i) {
      qualifiers.clear();
      CIMValue value(OW_NAMESPACE::CIMNULL);
      if (Traits::properties[i].read(object, qualifiers, value) != 0) continue;
      CIMProperty property(Traits::properties[i].name, value);
      property.setQualifiers(qualifiers);
      instance.setProperty(property);
    }
  }

  // Replaces the path's keys with the object's key values.
  void toCIMObjectPath(const Object& object, CIMObjectPath& path) {
    OW_NAMESPACE::CIMPropertyArray keys;
    CDRQualifiers qualifiers;
    for (size_t i = 0; i < Traits::keyCount; ++i) {
      std::string value;
      qualifiers.clear();
      if ((object.*Traits::keys[i].getter)(value, qualifiers) != 0) {
        raise(Traits::lines.keyGetterFailed, CIMException::NOT_FOUND);
      }
      keys.push_back(CIMProperty(Traits::keys[i].name, cdrToCIMValue(value)));
    }
    path.setKeys(keys);
  }

  Object* getWithCIMObjectPath(const CIMObjectPath& path) {
    std::string keys[Traits::keyCount];
    for (size_t i = 0; i < Traits::keyCount; ++i) {
      keys[i] = keyText(path.getKey(Traits::keys[i].name), Traits::lines.pathKeyMissing);
    }
    return lookup(keys, Traits::lines.pathNoInstance);
  }

  Object* getWithCIMInstance(const CIMInstance& instance) {
    std::string keys[Traits::keyCount];
    for (size_t i = 0; i < Traits::keyCount; ++i) {
      keys[i] = keyText(instance.getProperty(Traits::keys[i].name), Traits::lines.instanceKeyMissing);
    }
    return lookup(keys, Traits::lines.instanceNoInstance);
  }

 protected:
  [[noreturn]] static void raise(int line, CIMException::ErrNoType code, const char* message = 0) {
    throw CIMException(Traits::sourcePath, line, code, message);
  }

  // CIM error 1 whose message is the status in decimal.
  [[noreturn]] static void raiseStatus(int line, int status) {
    char text[16];
    snprintf(text, sizeof text, "%d", status);
    raise(line, CIMException::FAILED, text);
  }

 private:
  static std::string keyText(const CIMProperty& key, int line) {
    if (!key) raise(line, CIMException::NOT_FOUND);
    CIMValue value = key.getValue();
    if (!value) raise(line, CIMException::NOT_FOUND);
    return value.toString().c_str();
  }

  static Object* lookup(const std::string* keys, int line) {
    try {
      return Traits::lookup(keys);
    } catch (CFG_NoInstance&) {
      raise(line, CIMException::NOT_FOUND);
    }
  }
};

// Declares the traits of class C's provider (KEY_COUNT key properties), the
// provider class CProvider, and the module-level
// provider object CProv and class name CName (both defined with the
// provider entry).
#define CDR_DECLARE_CLASS_PROVIDER(C, KEY_COUNT)                              \
  struct C##ProviderTraits {                                                 \
    typedef C Object;                                                        \
    typedef C##ImplInstanceManager ImplManager;                              \
    static const char* const className;                                      \
    static const char* const sourcePath;                                     \
    static const CDRProviderLines& lines;                                    \
    static const size_t keyCount = KEY_COUNT;                                \
    static const CDRKeyProperty<Object> keys[keyCount];                      \
    static const size_t propertyCount;                                       \
    static const CDRPropertyReader<Object>* const properties;                \
    static const size_t writableCount;                                       \
    static const CDRPropertyWriter<Object>* const writable;                  \
    static const size_t methodCount;                                         \
    static const CDRMethod<Object>* const methods;                           \
    static Object* lookup(const std::string* keys);                          \
    static Object* create(const std::string* keys);                          \
    static void destroy(Object* object);                                     \
  };                                                                         \
  class C##Provider : public CDRClassProvider<C##ProviderTraits> {};        \
  extern C##Provider C##Prov;                                                \
  extern const char* const C##Name;

// Defines a traits table member and its count from a local array, or as
// empty with CDR_EMPTY_TABLE.
#define CDR_DEFINE_PROVIDER_TABLE(C, MEMBER, COUNT, TYPE, ARRAY)             \
  const TYPE<C>* const C##ProviderTraits::MEMBER = ARRAY;                    \
  const size_t C##ProviderTraits::COUNT = sizeof(ARRAY) / sizeof(TYPE<C>);
#define CDR_DEFINE_EMPTY_PROVIDER_TABLE(C, MEMBER, COUNT, TYPE)              \
  const TYPE<C>* const C##ProviderTraits::MEMBER = 0;                        \
  const size_t C##ProviderTraits::COUNT = 0;

// The instance-manager calls of a class with one key.
#define CDR_DEFINE_SINGLE_KEY_MANAGER_CALLS(C)                               \
  C* C##ProviderTraits::lookup(const std::string* k) {                       \
    return C::getInstanceManager()->get(k[0]);                               \
  }                                                                          \
  C* C##ProviderTraits::create(const std::string* k) {                       \
    return C::getInstanceManager()->create##C(k[0]);                         \
  }                                                                          \
  void C##ProviderTraits::destroy(C* object) {                               \
    C::getInstanceManager()->destroy##C(object);                             \
  }

#endif
