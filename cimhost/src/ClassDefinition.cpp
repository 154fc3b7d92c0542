#include "ClassDefinition.hpp"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace cimhost {

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// CIM names compare ASCII letters without case (the host never sets a
// locale, so this is what tolower does, without a call per character).
bool namesEqual(std::string_view a, std::string_view b) {
    auto lower = [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c | 0x20 : c; };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [&](unsigned char x, unsigned char y) {
               return x == y || lower(x) == lower(y);
           });
}

const Qualifier* findQualifier(const std::vector<Qualifier>& qualifiers, const std::string& name) {
    for (const Qualifier& q : qualifiers) {
        if (namesEqual(q.name, name)) return &q;
    }
    return nullptr;
}

static bool booleanQualifier(const std::vector<Qualifier>& qualifiers, const std::string& name,
                             bool absentValue) {
    const Qualifier* q = findQualifier(qualifiers, name);
    if (!q) return absentValue;
    if (q->value.isNull || q->value.isArray || q->value.elements.empty()) return absentValue;
    return namesEqual(q->value.elements.front(), "true");
}

bool PropertyDefinition::isKey() const { return booleanQualifier(qualifiers, "Key", false); }
bool ParameterDefinition::isInput() const { return booleanQualifier(qualifiers, "In", true); }
bool ParameterDefinition::isOutput() const { return booleanQualifier(qualifiers, "Out", false); }

const ParameterDefinition* MethodDefinition::findParameter(const std::string& wanted) const {
    for (const ParameterDefinition& p : parameters) {
        if (namesEqual(p.name, wanted)) return &p;
    }
    return nullptr;
}

const PropertyDefinition* ClassDefinition::findProperty(const std::string& wanted) const {
    for (const PropertyDefinition& p : properties) {
        if (namesEqual(p.name, wanted)) return &p;
    }
    return nullptr;
}

const MethodDefinition* ClassDefinition::findMethod(const std::string& wanted) const {
    for (const MethodDefinition& m : methods) {
        if (namesEqual(m.name, wanted)) return &m;
    }
    return nullptr;
}

std::vector<const PropertyDefinition*> ClassDefinition::keyProperties() const {
    std::vector<const PropertyDefinition*> keys;
    for (const PropertyDefinition& p : properties) {
        if (p.isKey()) keys.push_back(&p);
    }
    return keys;
}

std::optional<ProviderBinding> parseProviderQualifier(const std::vector<Qualifier>& qualifiers) {
    const Qualifier* q = findQualifier(qualifiers, "Provider");
    if (!q || q->value.isNull || q->value.isArray || q->value.elements.empty()) return std::nullopt;
    const std::string& text = q->value.elements.front();
    // "c++::Id" is the usual form; a single colon is accepted as well.
    size_t split = text.find("::");
    size_t idStart = split + 2;
    if (split == std::string::npos) {
        split = text.find(':');
        idStart = split + 1;
    }
    if (split == std::string::npos) return std::nullopt;
    ProviderBinding binding{text.substr(0, split), text.substr(idStart)};
    if (binding.providerId.empty()) return std::nullopt;
    return binding;
}

void ClassRepository::addQualifierDeclaration(QualifierDeclaration declaration) {
    std::string key = lowerCase(declaration.name);
    qualifierDeclarations_[key] = std::move(declaration);
}

void ClassRepository::addClass(ClassDefinition definition) {
    if (findClass(definition.name)) {
        throw std::runtime_error("class " + definition.name + " is defined twice");
    }
    classes_.push_back(std::move(definition));
}

const ClassDefinition* ClassRepository::findClass(const std::string& name) const {
    for (const ClassDefinition& c : classes_) {
        if (namesEqual(c.name, name)) return &c;
    }
    return nullptr;
}

const QualifierDeclaration* ClassRepository::findQualifierDeclaration(const std::string& name) const {
    auto it = qualifierDeclarations_.find(lowerCase(name));
    return it == qualifierDeclarations_.end() ? nullptr : &it->second;
}

}  // namespace cimhost
