// What the differential run established, guarded on every run: the recorded
// sample of its requests, with owcimomd 3.0.2's answers and, where the two
// differ (accepted or still open), cimhost's, is replayed against cimhost
// on a device state seeded as the run seeds it. Also the run's own parts:
// the same seed gives the same requests, the canonical answer hides exactly
// what a client cannot see, and accepted differences match by kind, aspect
// and series.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "Differences.hpp"
#include "Exchange.hpp"
#include "HostProcess.hpp"
#include "MofParser.hpp"

namespace cimhost::test {
namespace {

std::string httpAnswer(const std::string& body) {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/xml\r\nCIMOperation: MethodResponse\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string instanceAnswer(const std::string& host, const std::string& properties) {
    return httpAnswer("<?xml version=\"1.0\" encoding=\"utf-8\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE "
                      "ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP><IMETHODRESPONSE NAME=\"GetInstance\"><IRETURNVALUE>"
                      "<HOST>" + host + "</HOST><INSTANCE CLASSNAME=\"C\">" + properties +
                      "</INSTANCE></IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>");
}

TEST(Differential, CanonicalAnswersHideOnlyWhatAClientCannotSee) {
    const std::string a = "<PROPERTY NAME=\"A\" TYPE=\"uint8\"><VALUE>1</VALUE></PROPERTY>";
    const std::string b = "<PROPERTY NAME=\"b\" TYPE=\"string\"><VALUE>x &amp; y</VALUE></PROPERTY>";
    // The server's name and the order of properties do not matter ...
    EXPECT_EQ(cimdiff::canonicalAnswer(instanceAnswer("one", a + b)),
              cimdiff::canonicalAnswer(instanceAnswer("two", b + a)));
    // ... a value, a type, a name's case and a missing property do.
    std::string reference = cimdiff::canonicalAnswer(instanceAnswer("one", a + b));
    for (const std::string& other : {a + "<PROPERTY NAME=\"b\" TYPE=\"string\"><VALUE>x &amp;  y</VALUE></PROPERTY>",
                                     a + "<PROPERTY NAME=\"b\" TYPE=\"char16\"><VALUE>x &amp; y</VALUE></PROPERTY>",
                                     a + "<PROPERTY NAME=\"B\" TYPE=\"string\"><VALUE>x &amp; y</VALUE></PROPERTY>", a}) {
        EXPECT_NE(cimdiff::canonicalAnswer(instanceAnswer("one", other)), reference) << other;
    }
    // An error is its code and description; an answer without status line
    // (owcimomd's HTTP fault) is not a 200.
    const std::string error = "<?xml version=\"1.0\"?><CIM><MESSAGE><SIMPLERSP><IMETHODRESPONSE NAME=\"X\"><ERROR "
                              "CODE=\"4\" DESCRIPTION=\"bad &quot;x&quot;\"/></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
    EXPECT_EQ(cimdiff::canonicalAnswer(httpAnswer(error)),
              "status 200\nheader CIMOperation: MethodResponse\nerror 4\ndescription bad \"x\"\n");
    EXPECT_EQ(cimdiff::canonicalAnswer(error).rfind("status none\nerror 4\n", 0), 0u);
    EXPECT_EQ(cimdiff::canonicalAnswer(""), "no answer\n");
}

TEST(Differential, TheSameSeedGivesTheSameRequestsAndAnotherSeedOthers) {
    ClassRepository classes;
    loadMofFile(CDR_MOF, classes);
    auto text = [&](uint32_t seed) {
        std::ostringstream out;
        for (const cimdiff::Request& request : cimdiff::generateRequests(classes, seed, 300)) {
            cimdiff::writeRequest(out, request);
        }
        return out.str();
    };
    const std::string first = text(7);
    EXPECT_EQ(first, text(7));
    EXPECT_NE(first, text(8));
    // What is written reads back the same, bytes a request may hold included.
    std::istringstream in(first);
    cimdiff::Request request;
    std::size_t count = 0;
    std::ostringstream again;
    while (cimdiff::readRequest(in, request)) {
        cimdiff::writeRequest(again, request);
        ++count;
    }
    EXPECT_EQ(count, 300u);
    EXPECT_EQ(again.str(), first);
}

TEST(Differential, AcceptedDifferencesMatchByKindAspectSeriesAndAnswer) {
    TempDir scratch;
    std::ofstream(scratch.file("accepted")) << "# why\nprotocol/truncated-xml * | status | * | * | owcimomd's HTTP fault\n"
                                               "ModifyInstance* | description | 3.2 | * | 3.2 words it otherwise\n"
                                               "* | status | 3.2 | status none*error 1* | 3.2's HTTP fault\n";
    const std::string answer = "status 200\nerror 4\n", cut = "status none\nerror 1\ndescription x\n";
    auto list30 = cimdiff::AcceptedList::load(scratch.file("accepted"), "3.0");
    ASSERT_NE(list30.reasonFor("protocol/truncated-xml GetClass", "status", answer), nullptr);
    EXPECT_EQ(*list30.reasonFor("protocol/truncated-xml GetClass", "status", answer), "owcimomd's HTTP fault");
    EXPECT_EQ(list30.reasonFor("protocol/truncated-xml GetClass", "result", answer), nullptr);
    EXPECT_EQ(list30.reasonFor("ModifyInstance/null", "description", answer), nullptr);
    EXPECT_EQ(list30.reasonFor("CreateInstance", "status", cut), nullptr);
    auto list32 = cimdiff::AcceptedList::load(scratch.file("accepted"), "3.2");
    EXPECT_NE(list32.reasonFor("ModifyInstance/null", "description", answer), nullptr);
    EXPECT_EQ(*list32.reasonFor("CreateInstance", "status", cut), "3.2's HTTP fault");
    EXPECT_EQ(list32.reasonFor("CreateInstance", "status", answer), nullptr);
    std::ofstream(scratch.file("broken")) << "ModifyInstance | description | * | reason\n";
    EXPECT_THROW(cimdiff::AcceptedList::load(scratch.file("broken"), "3.0"), std::runtime_error);
}

// The recorded sample, replayed against cimhost with the credentials and
// device state of the run that recorded it.
TEST(Differential, CimhostAnswersTheRecordedSampleAsRecorded) {
    TempDir state;
    const std::string seed = "bash -c 'source \"$0\" && seed_device_state \"$1\"' " CDR_SOURCE_DIR
                             "/scripts/common.sh " ZPO_BINARY;
    ASSERT_EQ(runCommand("ZPO_ROOT=" + state.path() + " " + seed, state).exitCode, 0);
    std::ofstream(state.file("auth")) << "owuser:" << runCommand("openssl passwd -6 owpass", state).out;
    setenv("ZPO_ROOT", state.path().c_str(), 1);
    HostProcess host(CIMHOST_BINARY, {"--provider", CDR_PROVIDER, "--mof", CDR_MOF, "--auth-file", state.file("auth")},
                     state.file("host.log"));
    ASSERT_TRUE(host.running()) << host.log();
    std::ifstream sample(CDR_SOURCE_DIR "/cimhost/differential/sample-3.0.txt", std::ios::binary);
    ASSERT_TRUE(sample.good());
    cimdiff::Target cimhost{"cimhost", host.port(), ZPO_BINARY, state.path()};
    std::ostringstream report;
    EXPECT_EQ(cimdiff::replaySample(sample, cimhost, report), 0) << report.str();
    EXPECT_NE(report.str().find(" recorded requests replayed, 0 answered otherwise"), std::string::npos) << report.str();
    runCommand(std::string(ZPO_BINARY) + " queue remove CDRService", state);
}

}  // namespace
}  // namespace cimhost::test
