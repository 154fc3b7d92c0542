// The idle unloader: a provider that allows it is unloaded once idle past
// the time-to-live and loaded and initialised anew by the next request, with
// its library's state rebuilt; requests meanwhile are all answered.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <thread>

#include "CimXmlRequest.hpp"
#include "HostProcess.hpp"
#include "MofParser.hpp"
#include "OperationDispatcher.hpp"

namespace cimhost {
namespace {

using test::readFile;

std::string request(const std::string& call, const std::string& params, bool intrinsic = true) {
    std::string body = "<?xml version=\"1.0\" encoding=\"utf-8\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">"
                       "<MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>";
    const std::string nameSpace =
        "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>";
    if (intrinsic) {
        body += "<IMETHODCALL NAME=\"" + call + "\">" + nameSpace + params + "</IMETHODCALL>";
    } else {
        body += "<METHODCALL NAME=\"" + call + "\"><LOCALINSTANCEPATH>" + nameSpace + params +
                "</LOCALINSTANCEPATH></METHODCALL>";
    }
    return body + "</SIMPLEREQ></MESSAGE></CIM>";
}

std::string widgetName(const std::string& id) {
    return "<INSTANCENAME CLASSNAME=\"Test_Widget\"><KEYBINDING NAME=\"Id\"><KEYVALUE VALUETYPE=\"string\">" + id +
           "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

const std::string kPing = request("Ping", widgetName("A1"), false);
const std::string kGetPings =
    request("GetInstance", "<IPARAMVALUE NAME=\"InstanceName\">" + widgetName("pings") + "</IPARAMVALUE>");
const std::string kEnumerate =
    request("EnumerateInstances", "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"Test_Widget\"/></IPARAMVALUE>");

// The Count the provider reports for "pings": its Ping calls since the
// library was loaded.
std::string pingsCount(const std::string& answer) {
    size_t at = answer.find("<PROPERTY NAME=\"Count\"");
    if (at == std::string::npos) return "(no Count in " + answer + ")";
    // Its value comes after its qualifiers' values.
    size_t value = answer.rfind("<VALUE>", answer.find("</PROPERTY>", at)) + 7;
    return answer.substr(value, answer.find("</VALUE>", value) - value);
}

class ProviderUnload : public ::testing::Test {
protected:
    void SetUp() override {
        loadMofFile(CIMHOST_TEST_MOF, classes);
        // A copy of its own: a handle another test of this process left open
        // on the built library would keep it, and its state, in memory.
        std::filesystem::create_directory(logDir.file("own"));
        std::filesystem::copy_file(CIMHOST_TEST_PROVIDER, logDir.file("own/TestProvider.so"));
        module = std::make_unique<ProviderModule>(logDir.file("own/TestProvider.so"), log);
        module->initialize(OpenWBEM::ProviderEnvironmentIFCRef(new HostProviderEnvironment(log, "")));
        dispatcher = std::make_unique<OperationDispatcher>(classes, module.get(), log, "root/cimv2", "127.0.0.1");
    }
    std::string run(const std::string& body) { return dispatcher->handle(parseCimRequest(body), ""); }
    size_t logged(const std::string& what) const {
        std::string text = readFile(logDir.file("host.log"));
        size_t count = 0;
        for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
        return count;
    }

    test::TempDir logDir;
    HostLog log{logDir.file("host.log")};
    ClassRepository classes;
    std::unique_ptr<ProviderModule> module;
    std::unique_ptr<OperationDispatcher> dispatcher;
    const time_t later = time(nullptr) + 3600;  // every access is long past then
};

TEST_F(ProviderUnload, IdleProviderIsUnloadedAndLoadedAgainWithItsStateRebuilt) {
    run(kPing);
    run(kPing);
    EXPECT_EQ(pingsCount(run(kGetPings)), "2");
    // Just used: not idle for a minute, and a negative TTL never unloads.
    EXPECT_FALSE(module->unloadIfIdle(1));
    EXPECT_FALSE(module->unloadIfIdle(-1, later));
    EXPECT_TRUE(module->loaded());

    ASSERT_TRUE(module->unloadIfIdle(30, later));
    EXPECT_FALSE(module->loaded());
    EXPECT_EQ(logged("Unloading Provider TestProvider"), 1u);
    EXPECT_FALSE(module->unloadIfIdle(0, later));  // nothing left to unload

    // The next request loads the library again and initialises the provider
    // before it is served; the library's state starts afresh.
    EXPECT_EQ(pingsCount(run(kGetPings)), "0");
    EXPECT_TRUE(module->loaded());
    EXPECT_EQ(logged("loaded provider TestProvider"), 2u);
    EXPECT_EQ(logged("[testprovider] initialize"), 2u);
    run(kPing);
    EXPECT_EQ(pingsCount(run(kGetPings)), "1");
}

TEST_F(ProviderUnload, PersistentProviderStays) {
    module->acquire(OpenWBEM::ProviderEnvironmentIFCRef(new HostProviderEnvironment(log, "")))
        ->provider()
        .setPersist(true);
    EXPECT_FALSE(module->unloadIfIdle(0, later));
    EXPECT_TRUE(module->loaded());
}

TEST_F(ProviderUnload, RequestsDuringUnloadsAreAllAnswered) {
    constexpr int kClients = 4;
    constexpr int kUnloads = 20;  // requests go on until so many unloads, 10 s at most
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    const std::string expectedEnumeration = run(kEnumerate);
    const std::string expectedPing = run(kPing);
    std::atomic<bool> clientsDone{false};
    std::atomic<int> wrong{0};
    std::atomic<int> unloads{0};
    std::thread unloader([&] {
        while (!clientsDone) {
            if (module->unloadIfIdle(0, later)) ++unloads;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
    std::vector<std::thread> clients;
    for (int c = 0; c < kClients; ++c) {
        clients.emplace_back([&, c] {
            for (int i = 0; unloads < kUnloads && std::chrono::steady_clock::now() < deadline; ++i) {
                bool ping = (i + c) % 2 == 0;
                std::string answer = run(ping ? kPing : kEnumerate);
                bool right = answer == (ping ? expectedPing : expectedEnumeration);
                if (!right && wrong++ == 0) ADD_FAILURE() << answer;
            }
        });
    }
    for (std::thread& client : clients) client.join();
    clientsDone = true;
    unloader.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_GE(unloads, kUnloads);
    EXPECT_EQ(logged("Unloading Provider TestProvider"), static_cast<size_t>(unloads.load()));
}

TEST_F(ProviderUnload, ALibraryThatCannotBeLoadedAgainFailsOnlyItsRequests) {
    std::filesystem::copy_file(CIMHOST_TEST_PROVIDER, logDir.file("TestProvider.so"));
    ProviderModule copy(logDir.file("TestProvider.so"), log);
    copy.initialize(OpenWBEM::ProviderEnvironmentIFCRef(new HostProviderEnvironment(log, "")));
    OperationDispatcher served(classes, &copy, log, "root/cimv2", "127.0.0.1");
    ASSERT_TRUE(copy.unloadIfIdle(0, later));
    std::filesystem::rename(logDir.file("TestProvider.so"), logDir.file("moved.so"));
    std::string failed = served.handle(parseCimRequest(kGetPings), "");
    EXPECT_NE(failed.find("<ERROR CODE=\"1\" DESCRIPTION=\"cannot load provider library"),
              std::string::npos) << failed;
    EXPECT_FALSE(copy.loaded());
    std::filesystem::rename(logDir.file("moved.so"), logDir.file("TestProvider.so"));
    EXPECT_EQ(pingsCount(served.handle(parseCimRequest(kGetPings), "")), "0");
}

// The host's own unloader: --provider-ttl and --unload-poll.
TEST(ProviderUnloadOptions, HostUnloadsAnIdleProviderOnItsPoll) {
    test::TempDir dir;
    test::HostProcess host(CIMHOST_BINARY,
                           {"--provider", CIMHOST_TEST_PROVIDER, "--mof", CIMHOST_TEST_MOF, "--provider-ttl", "0",
                            "--unload-poll", "1"},
                           dir.file("host.log"));
    ASSERT_TRUE(host.running()) << host.log();
    for (int i = 0; i < 100 && host.log().find("Unloading Provider TestProvider") == std::string::npos; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_NE(host.log().find("Unloading Provider TestProvider"), std::string::npos) << host.log();

    test::HostProcess never(CIMHOST_BINARY,
                            {"--provider", CIMHOST_TEST_PROVIDER, "--mof", CIMHOST_TEST_MOF, "--provider-ttl", "-1",
                             "--unload-poll", "1"},
                            dir.file("never.log"));
    ASSERT_TRUE(never.running()) << never.log();
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    EXPECT_EQ(never.log().find("Unloading Provider"), std::string::npos) << never.log();

    for (const char* wrong : {"--provider-ttl -2", "--provider-ttl soon", "--unload-poll 0"}) {
        test::CommandResult refused = test::runCommand(std::string(CIMHOST_BINARY) + " " + wrong, dir);
        EXPECT_EQ(refused.exitCode, 2) << wrong;
        EXPECT_NE(refused.err.find(std::string(wrong).substr(0, std::string(wrong).find(' ')) + " needs"),
                  std::string::npos) << refused.err;
    }
}

}  // namespace
}  // namespace cimhost
