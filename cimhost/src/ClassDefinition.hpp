// The host's own model of the CIM classes it serves, read from MOF. It is
// independent of the provider API so that the class side of the host (MOF,
// GetClass, EnumerateClasses) needs no provider.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cimhost {

// A CIM value as text: null, one scalar, or an array of element texts.
struct TextValue {
    bool isNull = true;
    bool isArray = false;
    std::vector<std::string> elements;  // one element for a scalar

    static TextValue null() { return {}; }
    static TextValue scalar(std::string text) { return {false, false, {std::move(text)}}; }
    static TextValue array(std::vector<std::string> items) { return {false, true, std::move(items)}; }
};

struct QualifierFlavors {
    bool overridable = true;
    bool toSubclass = true;
    bool translatable = false;
};

struct QualifierDeclaration {
    std::string name;
    std::string type;  // CIM type name, e.g. "string", "boolean"
    bool isArray = false;
    TextValue defaultValue;
    QualifierFlavors flavors;
};

struct Qualifier {
    std::string name;
    std::string type;
    bool isArray = false;
    TextValue value;
    QualifierFlavors flavors;
};

// Case-insensitive comparison, as CIM names are compared.
bool namesEqual(std::string_view a, std::string_view b);
std::string lowerCase(std::string text);

const Qualifier* findQualifier(const std::vector<Qualifier>& qualifiers, const std::string& name);

struct PropertyDefinition {
    std::string name;
    std::string type;  // CIM type name; "reference" for a REF property
    bool isArray = false;
    std::string referenceClass;
    TextValue defaultValue;
    std::vector<Qualifier> qualifiers;
    std::string classOrigin;

    // True when the property carries Key(true).
    bool isKey() const;
};

struct ParameterDefinition {
    std::string name;
    std::string type;
    bool isArray = false;
    std::string referenceClass;
    std::vector<Qualifier> qualifiers;

    // In defaults to true, Out to false, as the qualifier declarations say.
    bool isInput() const;
    bool isOutput() const;
};

struct MethodDefinition {
    std::string name;
    std::string returnType;
    std::vector<ParameterDefinition> parameters;
    std::vector<Qualifier> qualifiers;
    std::string classOrigin;

    const ParameterDefinition* findParameter(const std::string& name) const;
};

struct ClassDefinition {
    std::string name;
    std::string superClass;
    std::vector<Qualifier> qualifiers;
    std::vector<PropertyDefinition> properties;
    std::vector<MethodDefinition> methods;

    const PropertyDefinition* findProperty(const std::string& name) const;
    const MethodDefinition* findMethod(const std::string& name) const;
    std::vector<const PropertyDefinition*> keyProperties() const;
};

// Where the Provider qualifier of a class or method points: interface
// ("c++") and provider id ("CDRProvider"). Empty when there is none or it is
// malformed.
struct ProviderBinding {
    std::string interfaceName;
    std::string providerId;
};
std::optional<ProviderBinding> parseProviderQualifier(const std::vector<Qualifier>& qualifiers);

// The classes of one namespace, looked up ignoring case, kept in MOF order.
class ClassRepository {
public:
    void addQualifierDeclaration(QualifierDeclaration declaration);
    // Throws std::runtime_error when the class exists already.
    void addClass(ClassDefinition definition);

    const ClassDefinition* findClass(const std::string& name) const;
    const QualifierDeclaration* findQualifierDeclaration(const std::string& name) const;
    const std::vector<ClassDefinition>& classes() const { return classes_; }

private:
    std::vector<ClassDefinition> classes_;
    std::map<std::string, QualifierDeclaration> qualifierDeclarations_;  // by lower-case name
};

}  // namespace cimhost
