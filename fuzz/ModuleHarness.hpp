// The request path of cimhost with the real module behind it, for the
// fuzzers: a temporary ZPO_ROOT seeded like a configured device, the class
// definitions, the module loaded as the host loads it, and the dispatcher.
#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "CimXmlRequest.hpp"
#include "HostLog.hpp"
#include "MofParser.hpp"
#include "OperationDispatcher.hpp"
#include "ProviderModule.hpp"
#include "RequestScreen.hpp"

namespace cimhost::fuzz {

class ModuleHarness {
public:
    ModuleHarness() {
        char pattern[] = "/tmp/cdr-fuzz-XXXXXX";
        if (!mkdtemp(pattern)) std::abort();
        root_ = pattern;
        setenv("ZPO_ROOT", root_.c_str(), 1);
        const char* seed[] = {
            "set-binary CDR CDRService FORMAT 01",   "set-binary CDR CDRService 'FEATURE CODE' f912",
            "set-binary CDR CDRService DIGITSLIMIT 0010", "set-binary CDR CDRService DIGITSSUPP 00",
            "set-int CDR CDRService DISKLIMIT 100",  "set-binary CDR CDRPush TransferType 02",
        };
        for (const char* entry : seed) {
            std::string command = std::string(ZPO_BINARY) + " reg " + entry + " >/dev/null 2>&1";
            if (std::system(command.c_str()) != 0) std::abort();
        }
        // The module traces its progress on standard output.
        std::freopen("/dev/null", "w", stdout);
        log_ = std::make_unique<HostLog>(root_ + "/host.log");
        loadMofFile(CDR_MOF, classes_);
        module_ = std::make_unique<ProviderModule>(CDR_PROVIDER, *log_);
        module_->initialize(OpenWBEM::ProviderEnvironmentIFCRef(new HostProviderEnvironment(*log_, "")));
        dispatcher_ = std::make_unique<OperationDispatcher>(classes_, module_.get(), *log_, "root/cimv2", "127.0.0.1");
    }
    ~ModuleHarness() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }

    // Parses and answers one request body as the HTTP side does; the
    // refusals the HTTP side turns into 400, 413 and 501 are expected here.
    void serve(const std::string& body) {
        try {
            screenRequestBody(body, XmlBudget{});
            CimRequest request = parseCimRequest(body);
            dispatcher_->handle(request, "fuzz");
        } catch (const MalformedRequest&) {
        } catch (const InvalidRequest&) {
        } catch (const OverBudget&) {
        } catch (const UnsupportedVersion&) {
        } catch (const MultipleRequestsUnsupported&) {
        }
    }

private:
    std::string root_;
    std::unique_ptr<HostLog> log_;
    ClassRepository classes_;
    std::unique_ptr<ProviderModule> module_;
    std::unique_ptr<OperationDispatcher> dispatcher_;
};

// One harness for the whole run; created on first use.
inline ModuleHarness& harness() {
    static ModuleHarness* instance = new ModuleHarness();
    return *instance;
}

}  // namespace cimhost::fuzz
