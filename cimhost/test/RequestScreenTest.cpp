// What is checked before a body is parsed, and the credentials.
#include <crypt.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <vector>

#include "Authenticator.hpp"
#include "HostProcess.hpp"
#include "HttpServer.hpp"
#include "RequestScreen.hpp"

namespace cimhost {
namespace {

TEST(RequestScreen, RefusesTextThatIsNotUtf8OrNotXmlCharacters) {
    const std::string bad[] = {
        "<V>\xC3</V>",              // truncated sequence
        "<V>\xC0\xAF</V>",          // overlong '/'
        "<V>\xED\xA0\x80</V>",      // a surrogate
        "<V>\xF4\x90\x80\x80</V>",  // beyond U+10FFFF
        std::string("<V>a\0b</V>", 9),
        "<V>\x01</V>",
    };
    for (const std::string& body : bad) EXPECT_THROW(screenRequestBody(body, {}), MalformedRequest) << body;
    EXPECT_NO_THROW(screenRequestBody("\xEF\xBB\xBF<V A=\"caf\xC3\xA9\">\xF0\x9F\x93\x9E\t\r\n</V>", {}));
}

TEST(RequestScreen, AllowsOnlyPredefinedEntitiesAndLegalCharacterReferences) {
    EXPECT_NO_THROW(screenRequestBody("<V A=\"&quot;&#x3C;\">&lt;&gt;&amp;&apos;&#65;<![CDATA[a & b]]><!-- & --></V>", {}));
    const std::string bad[] = {"<V>&foo;</V>", "<V A=\"&nbsp;\"></V>", "<V>a & b</V>", "<V>&#0;</V>",
                               "<V>&#xD800;</V>", "<V>&#x110000;</V>", "<V>&#12a;</V>"};
    for (const std::string& body : bad) EXPECT_THROW(screenRequestBody(body, {}), MalformedRequest) << body;
    EXPECT_THROW(screenRequestBody("<!DOCTYPE CIM [<!ENTITY a \"b\">]><CIM>&a;</CIM>", {}), MalformedRequest);
}

TEST(RequestScreen, CountsElementsAndNestingAgainstTheBudget) {
    XmlBudget budget{4, 3};
    // Self-closed elements and '>' inside attribute values do not nest.
    EXPECT_NO_THROW(screenRequestBody("<A><B X=\"/>\"><C/></B><D/></A>", budget));
    EXPECT_THROW(screenRequestBody("<A><B/><C/><D/><E/></A>", budget), OverBudget);
    EXPECT_THROW(screenRequestBody("<A><B><C><D></D></C></B></A>", budget), OverBudget);
}

TEST(CimXmlVersions, OnlyTheMajorVersionsServedAreAccepted) {
    const std::string call = "<SIMPLEREQ><IMETHODCALL NAME=\"X\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
                             "</LOCALNAMESPACEPATH></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
    auto body = [&](const char* cim, const char* dtd, const char* protocol) {
        return std::string("<CIM CIMVERSION=\"") + cim + "\" DTDVERSION=\"" + dtd + "\"><MESSAGE ID=\"1\" "
               "PROTOCOLVERSION=\"" + protocol + "\">" + call;
    };
    EXPECT_NO_THROW(parseCimRequest(body("2.6.0", "2.4", "1.4")));
    const std::pair<std::string, std::string> refused[] = {
        {body("3.0", "2.0", "1.0"), "unsupported-cim-version"},
        {body("2.0", "20.0", "1.0"), "unsupported-dtd-version"},
        {body("2.0", "2.0", "2.0"), "unsupported-protocol-version"},
    };
    for (const auto& [text, cimError] : refused) {
        try {
            parseCimRequest(text);
            ADD_FAILURE() << text;
        } catch (const UnsupportedVersion& e) {
            EXPECT_EQ(e.what(), cimError);
        }
    }
}

class Credentials : public ::testing::Test {
protected:
    Authenticator load(const std::string& lines) {
        std::ofstream(dir.file("users")) << lines;
        return Authenticator::fromFile(dir.file("users"));
    }
    static std::string basic(const std::string& scheme, const std::string& userPassword) {
        static const char* digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string out;
        for (size_t i = 0; i < userPassword.size(); i += 3) {
            unsigned n = static_cast<unsigned char>(userPassword[i]) << 16;
            if (i + 1 < userPassword.size()) n |= static_cast<unsigned char>(userPassword[i + 1]) << 8;
            if (i + 2 < userPassword.size()) n |= static_cast<unsigned char>(userPassword[i + 2]);
            out += digits[n >> 18 & 63];
            out += digits[n >> 12 & 63];
            out += i + 1 < userPassword.size() ? digits[n >> 6 & 63] : '=';
            out += i + 2 < userPassword.size() ? digits[n & 63] : '=';
        }
        return scheme + " " + out;
    }
    test::TempDir dir;
};

TEST_F(Credentials, SchemeInAnyCaseButNoNulInThePassword) {
    crypt_data data{};
    Authenticator auth = load(std::string("alice:") + crypt_r("s3cret", "$6$testsalt$", &data) + "\n");
    EXPECT_EQ(auth.check(basic("Basic", "alice:s3cret")), "alice");
    EXPECT_EQ(auth.check(basic("bASIC", "alice:s3cret")), "alice");
    EXPECT_FALSE(auth.check(basic("Basic", std::string("alice:s3cret\0more", 17))));
    EXPECT_FALSE(auth.check(basic("Basic", "bob:s3cret")));
    EXPECT_FALSE(auth.check(basic("Bearer", "alice:s3cret")));
}

// Median microseconds of `runs` checks of one header value.
double medianCheckMicros(const Authenticator& auth, const std::string& header, int runs) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        auto start = std::chrono::steady_clock::now();
        auth.check(header);
        times.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// A verified header value is remembered and passes without hashing; a
// wrong password is still checked in full and refused, and an unknown user
// still costs what a wrong password costs. The memory is bounded in number
// and age.
TEST_F(Credentials, RemembersVerifiedCredentialsOnly) {
    crypt_data data{};
    std::string users = std::string("alice:") + crypt_r("s3cret", "$6$testsalt$", &data) + "\n";
    users += std::string("bob:") + crypt_r("hunter2", "$6$othersalt$", &data) + "\n";
    Authenticator auth = load(users);
    const std::string alice = basic("Basic", "alice:s3cret"), bob = basic("Basic", "bob:hunter2");
    double verifying = medianCheckMicros(auth, basic("Basic", "alice:wrong"), 5);
    EXPECT_EQ(auth.check(alice), "alice");
    double remembered = medianCheckMicros(auth, alice, 21);
    EXPECT_LT(remembered * 10, verifying) << remembered << " µs remembered, " << verifying << " µs verifying";
    EXPECT_FALSE(auth.check(basic("Basic", "alice:wrong")));
    EXPECT_FALSE(auth.check(basic("Basic", "alice:s3cret ")));
    double unknown = medianCheckMicros(auth, basic("Basic", "carol:s3cret"), 5);
    EXPECT_GT(unknown * 3, verifying) << unknown << " µs for an unknown user, " << verifying << " µs";
    EXPECT_LT(unknown, verifying * 3) << unknown << " µs for an unknown user, " << verifying << " µs";

    // One entry: bob's verification pushes alice's out.
    auth.rememberVerified(1, std::chrono::hours(1));
    EXPECT_EQ(auth.check(alice), "alice");
    EXPECT_EQ(auth.check(bob), "bob");
    EXPECT_GT(medianCheckMicros(auth, alice, 1) * 10, verifying);
    // No age: nothing is remembered.
    auth.rememberVerified(256, std::chrono::seconds(0));
    EXPECT_EQ(auth.check(alice), "alice");
    EXPECT_GT(medianCheckMicros(auth, alice, 3) * 10, verifying);
}

TEST_F(Credentials, LinesThatAreNotCryptHashesAreRefusedAtLoad) {
    crypt_data data{};
    std::string good = std::string("alice:") + crypt_r("x", "$5$testsalt$", &data) + "\n";
    for (const char* line : {"bob:s3cret\n", "bob:$6$saltonly$\n", "bob:$6$testsalt$tooshort\n"}) {
        try {
            load(good + line);
            ADD_FAILURE() << line;
        } catch (const std::runtime_error& e) {
            EXPECT_NE(std::string(e.what()).find(":2: the entry of bob is not a crypt(3) hash"), std::string::npos)
                << e.what();
        }
    }
}

}  // namespace
}  // namespace cimhost
