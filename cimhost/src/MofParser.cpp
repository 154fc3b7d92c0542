#include "MofParser.hpp"

#include <cctype>
#include <fstream>
#include <set>
#include <sstream>

namespace cimhost {
namespace {

enum class TokenKind { Identifier, String, Number, Punct, End };

struct Token {
    TokenKind kind;
    std::string text;
    int line;
};

const std::set<std::string>& dataTypes() {
    static const std::set<std::string> types{"uint8",  "sint8",  "uint16",  "sint16",  "uint32",
                                             "sint32", "uint64", "sint64",  "real32",  "real64",
                                             "string", "boolean", "datetime", "char16"};
    return types;
}

class Tokenizer {
public:
    Tokenizer(const std::string& text, const std::string& sourceName)
        : text_(text), sourceName_(sourceName) {}

    std::vector<Token> run() {
        std::vector<Token> tokens;
        while (true) {
            skipSpaceAndComments();
            if (pos_ >= text_.size()) break;
            char c = text_[pos_];
            if (std::isalpha(static_cast<unsigned char>(c)) || c == '_') {
                size_t start = pos_;
                while (pos_ < text_.size() &&
                       (std::isalnum(static_cast<unsigned char>(text_[pos_])) || text_[pos_] == '_')) {
                    ++pos_;
                }
                tokens.push_back({TokenKind::Identifier, text_.substr(start, pos_ - start), line_});
            } else if (std::isdigit(static_cast<unsigned char>(c)) || c == '-' || c == '+' || c == '.') {
                size_t start = pos_++;
                while (pos_ < text_.size() &&
                       (std::isalnum(static_cast<unsigned char>(text_[pos_])) || text_[pos_] == '.' ||
                        text_[pos_] == '+' || text_[pos_] == '-')) {
                    ++pos_;
                }
                tokens.push_back({TokenKind::Number, text_.substr(start, pos_ - start), line_});
            } else if (c == '"') {
                tokens.push_back({TokenKind::String, readString(), line_});
            } else if (std::string("[](){};,:=#").find(c) != std::string::npos) {
                tokens.push_back({TokenKind::Punct, std::string(1, c), line_});
                ++pos_;
            } else {
                fail(std::string("unexpected character '") + c + "'");
            }
        }
        tokens.push_back({TokenKind::End, "", line_});
        return tokens;
    }

private:
    [[noreturn]] void fail(const std::string& what) const {
        throw MofError(sourceName_ + ":" + std::to_string(line_) + ": " + what);
    }

    void skipSpaceAndComments() {
        while (pos_ < text_.size()) {
            char c = text_[pos_];
            if (c == '\n') {
                ++line_;
                ++pos_;
            } else if (std::isspace(static_cast<unsigned char>(c))) {
                ++pos_;
            } else if (text_.compare(pos_, 2, "//") == 0) {
                while (pos_ < text_.size() && text_[pos_] != '\n') ++pos_;
            } else if (text_.compare(pos_, 2, "/*") == 0) {
                size_t end = text_.find("*/", pos_ + 2);
                if (end == std::string::npos) fail("unterminated comment");
                for (size_t i = pos_; i < end; ++i) line_ += text_[i] == '\n';
                pos_ = end + 2;
            } else {
                break;
            }
        }
    }

    std::string readString() {
        std::string out;
        ++pos_;  // opening quote
        while (true) {
            if (pos_ >= text_.size() || text_[pos_] == '\n') fail("unterminated string");
            char c = text_[pos_++];
            if (c == '"') break;
            if (c != '\\') {
                out += c;
                continue;
            }
            if (pos_ >= text_.size()) fail("unterminated string");
            char e = text_[pos_++];
            switch (e) {
                case 'n': out += '\n'; break;
                case 't': out += '\t'; break;
                case 'r': out += '\r'; break;
                case 'b': out += '\b'; break;
                case 'f': out += '\f'; break;
                default: out += e; break;  // \" \' \\ and anything else literally
            }
        }
        return out;
    }

    const std::string& text_;
    const std::string& sourceName_;
    size_t pos_ = 0;
    int line_ = 1;
};

// A literal as read from MOF, before it is given a type.
struct Literal {
    enum Kind { Null, String, Number, Boolean } kind = Null;
    std::string text;
};

struct LiteralValue {
    bool isArray = false;
    std::vector<Literal> items;
};

class Parser {
public:
    Parser(std::vector<Token> tokens, const std::string& sourceName, ClassRepository& repository)
        : tokens_(std::move(tokens)), sourceName_(sourceName), repository_(repository) {}

    void run() {
        while (peek().kind != TokenKind::End) {
            if (isPunct("#")) {
                skipPragma();
            } else if (isKeyword("Qualifier")) {
                parseQualifierDeclaration();
            } else {
                parseClass();
            }
        }
    }

private:
    const Token& peek(size_t ahead = 0) const {
        size_t i = std::min(pos_ + ahead, tokens_.size() - 1);
        return tokens_[i];
    }
    const Token& next() {
        const Token& t = tokens_[pos_];
        if (pos_ + 1 < tokens_.size()) ++pos_;
        return t;
    }
    bool isPunct(const char* p, size_t ahead = 0) const {
        return peek(ahead).kind == TokenKind::Punct && peek(ahead).text == p;
    }
    bool isKeyword(const char* word, size_t ahead = 0) const {
        return peek(ahead).kind == TokenKind::Identifier && namesEqual(peek(ahead).text, word);
    }
    [[noreturn]] void fail(const std::string& what) const { failAt(peek().line, what); }
    [[noreturn]] void failAt(int line, const std::string& what) const {
        throw MofError(sourceName_ + ":" + std::to_string(line) + ": " + what);
    }
    void expectPunct(const char* p) {
        if (!isPunct(p)) fail(std::string("expected '") + p + "' but found '" + peek().text + "'");
        next();
    }
    std::string expectIdentifier(const char* what) {
        if (peek().kind != TokenKind::Identifier) fail(std::string("expected ") + what);
        return next().text;
    }

    void skipPragma() {
        expectPunct("#");
        if (!isKeyword("pragma")) fail("expected pragma");
        next();
        expectIdentifier("pragma name");
        expectPunct("(");
        while (!isPunct(")")) {
            if (peek().kind == TokenKind::End) fail("unterminated pragma");
            next();
        }
        expectPunct(")");
    }

    std::string parseDataType() {
        std::string type = lowerCase(expectIdentifier("a data type"));
        if (!dataTypes().count(type)) fail("unknown data type " + type);
        return type;
    }

    // "[" [digits] "]" after a name; returns true when present.
    bool parseArrayMarker() {
        if (!isPunct("[")) return false;
        next();
        if (peek().kind == TokenKind::Number) next();
        expectPunct("]");
        return true;
    }

    Literal parseLiteral() {
        const Token& t = peek();
        if (t.kind == TokenKind::String) {
            Literal lit{Literal::String, ""};
            while (peek().kind == TokenKind::String) lit.text += next().text;  // "a" "b" joins
            return lit;
        }
        if (t.kind == TokenKind::Number) return {Literal::Number, next().text};
        if (t.kind == TokenKind::Identifier) {
            if (namesEqual(t.text, "true") || namesEqual(t.text, "false")) {
                return {Literal::Boolean, lowerCase(next().text)};
            }
            if (namesEqual(t.text, "null")) {
                next();
                return {Literal::Null, ""};
            }
        }
        fail("expected a value but found '" + t.text + "'");
    }

    LiteralValue parseValue() {
        LiteralValue value;
        if (isPunct("{")) {
            next();
            value.isArray = true;
            while (!isPunct("}")) {
                value.items.push_back(parseLiteral());
                if (!isPunct(",")) break;
                next();
            }
            expectPunct("}");
        } else {
            value.items.push_back(parseLiteral());
        }
        return value;
    }

    static TextValue toTextValue(const LiteralValue& value) {
        if (!value.isArray && (value.items.empty() || value.items.front().kind == Literal::Null)) {
            return TextValue::null();
        }
        std::vector<std::string> texts;
        for (const Literal& l : value.items) texts.push_back(l.text);
        return value.isArray ? TextValue::array(std::move(texts)) : TextValue::scalar(texts.front());
    }

    static std::string literalType(const LiteralValue& value) {
        for (const Literal& l : value.items) {
            if (l.kind == Literal::String) return "string";
            if (l.kind == Literal::Boolean) return "boolean";
            if (l.kind == Literal::Number) {
                return l.text.find_first_of(".eE") != std::string::npos ? "real64" : "sint64";
            }
        }
        return "string";
    }

    // Flavors are comma-separated inside "Flavor(...)" and blank-separated
    // after a qualifier's ":".
    QualifierFlavors parseFlavorList(QualifierFlavors flavors, bool commaSeparated) {
        while (peek().kind == TokenKind::Identifier) {
            std::string f = lowerCase(next().text);
            if (f == "enableoverride") flavors.overridable = true;
            else if (f == "disableoverride") flavors.overridable = false;
            else if (f == "tosubclass") flavors.toSubclass = true;
            else if (f == "restricted") flavors.toSubclass = false;
            else if (f == "translatable") flavors.translatable = true;
            else if (f != "toinstance") fail("unknown flavor " + f);
            if (commaSeparated) {
                if (!isPunct(",")) break;
                next();
            }
        }
        return flavors;
    }

    void parseQualifierDeclaration() {
        next();  // Qualifier
        QualifierDeclaration decl;
        decl.name = expectIdentifier("a qualifier name");
        expectPunct(":");
        decl.type = parseDataType();
        decl.isArray = parseArrayMarker();
        if (isPunct("=")) {
            next();
            decl.defaultValue = toTextValue(parseValue());
        }
        while (isPunct(",")) {
            next();
            std::string section = lowerCase(expectIdentifier("Scope or Flavor"));
            expectPunct("(");
            if (section == "flavor") {
                decl.flavors = parseFlavorList(decl.flavors, true);
            } else if (section == "scope") {
                while (!isPunct(")")) {
                    expectIdentifier("a scope");
                    if (isPunct(",")) next();
                }
            } else {
                fail("expected Scope or Flavor");
            }
            expectPunct(")");
        }
        expectPunct(";");
        repository_.addQualifierDeclaration(std::move(decl));
    }

    std::vector<Qualifier> parseQualifierList() {
        std::vector<Qualifier> qualifiers;
        if (!isPunct("[")) return qualifiers;
        next();
        while (true) {
            Qualifier q;
            q.name = expectIdentifier("a qualifier name");
            const QualifierDeclaration* decl = repository_.findQualifierDeclaration(q.name);
            LiteralValue literal;
            bool hasValue = false;
            if (isPunct("(")) {
                next();
                literal = parseValue();
                expectPunct(")");
                hasValue = true;
            } else if (isPunct("{")) {
                literal = parseValue();
                hasValue = true;
            }
            if (decl) {
                q.type = decl->type;
                q.isArray = decl->isArray;
                q.flavors = decl->flavors;
            } else {
                q.type = hasValue ? literalType(literal) : "boolean";
                q.isArray = literal.isArray;
            }
            if (hasValue) {
                q.value = toTextValue(literal);
            } else if (q.type == "boolean") {
                q.value = TextValue::scalar("true");  // [Key] means Key(true)
            } else if (decl) {
                q.value = decl->defaultValue;
            }
            if (isPunct(":")) {
                next();
                q.flavors = parseFlavorList(q.flavors, false);
            }
            if (findQualifier(qualifiers, q.name)) fail("qualifier " + q.name + " given twice");
            qualifiers.push_back(std::move(q));
            if (isPunct("]")) break;
            expectPunct(",");
        }
        expectPunct("]");
        return qualifiers;
    }

    ParameterDefinition parseParameter() {
        ParameterDefinition p;
        p.qualifiers = parseQualifierList();
        if (isKeyword("REF", 1)) {
            p.referenceClass = expectIdentifier("a class name");
            next();  // REF
            p.type = "reference";
        } else {
            p.type = parseDataType();
        }
        p.name = expectIdentifier("a parameter name");
        p.isArray = parseArrayMarker();
        return p;
    }

    void parseFeature(ClassDefinition& cls) {
        std::vector<Qualifier> qualifiers = parseQualifierList();
        std::string type;
        std::string referenceClass;
        if (isKeyword("REF", 1)) {
            referenceClass = expectIdentifier("a class name");
            next();
            type = "reference";
        } else {
            type = parseDataType();
        }
        int nameLine = peek().line;
        std::string name = expectIdentifier("a property or method name");
        if (isPunct("(")) {
            next();
            MethodDefinition m;
            m.name = name;
            m.returnType = type;
            m.qualifiers = std::move(qualifiers);
            m.classOrigin = cls.name;
            while (!isPunct(")")) {
                m.parameters.push_back(parseParameter());
                if (!isPunct(",")) break;
                next();
            }
            expectPunct(")");
            expectPunct(";");
            if (cls.findMethod(m.name)) failAt(nameLine, "method " + m.name + " defined twice");
            cls.methods.push_back(std::move(m));
            return;
        }
        PropertyDefinition p;
        p.name = name;
        p.type = type;
        p.referenceClass = referenceClass;
        p.qualifiers = std::move(qualifiers);
        p.classOrigin = cls.name;
        p.isArray = parseArrayMarker();
        if (isPunct("=")) {
            next();
            p.defaultValue = toTextValue(parseValue());
        }
        expectPunct(";");
        if (cls.findProperty(p.name)) failAt(nameLine, "property " + p.name + " defined twice");
        cls.properties.push_back(std::move(p));
    }

    void parseClass() {
        ClassDefinition cls;
        cls.qualifiers = parseQualifierList();
        if (!isKeyword("class")) fail("expected class, Qualifier or #pragma but found '" + peek().text + "'");
        next();
        int nameLine = peek().line;
        cls.name = expectIdentifier("a class name");
        if (isPunct(":")) {
            next();
            cls.superClass = expectIdentifier("a superclass name");
            if (!repository_.findClass(cls.superClass)) fail("unknown superclass " + cls.superClass);
        }
        expectPunct("{");
        while (!isPunct("}")) {
            if (peek().kind == TokenKind::End) fail("unterminated class " + cls.name);
            parseFeature(cls);
        }
        expectPunct("}");
        expectPunct(";");
        if (!cls.superClass.empty()) inheritFeatures(cls);
        if (repository_.findClass(cls.name)) failAt(nameLine, "class " + cls.name + " defined twice");
        repository_.addClass(std::move(cls));
    }

    // A subclass shows its superclass's properties and methods first, unless
    // it overrides them.
    void inheritFeatures(ClassDefinition& cls) {
        const ClassDefinition* parent = repository_.findClass(cls.superClass);
        std::vector<PropertyDefinition> properties;
        for (const PropertyDefinition& p : parent->properties) {
            if (!cls.findProperty(p.name)) properties.push_back(p);
        }
        for (PropertyDefinition& p : cls.properties) properties.push_back(std::move(p));
        cls.properties = std::move(properties);
        std::vector<MethodDefinition> methods;
        for (const MethodDefinition& m : parent->methods) {
            if (!cls.findMethod(m.name)) methods.push_back(m);
        }
        for (MethodDefinition& m : cls.methods) methods.push_back(std::move(m));
        cls.methods = std::move(methods);
    }

    std::vector<Token> tokens_;
    size_t pos_ = 0;
    const std::string& sourceName_;
    ClassRepository& repository_;
};

}  // namespace

void parseMof(const std::string& text, const std::string& sourceName, ClassRepository& repository) {
    Parser parser(Tokenizer(text, sourceName).run(), sourceName, repository);
    parser.run();
}

void loadMofFile(const std::string& path, ClassRepository& repository) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw MofError("cannot read MOF file " + path);
    std::ostringstream text;
    text << in.rdbuf();
    parseMof(text.str(), path, repository);
}

}  // namespace cimhost
