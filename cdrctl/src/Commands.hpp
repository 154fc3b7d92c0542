// cdrctl's commands: show, set, call, refresh, clip.
#pragma once

namespace cdrctl {

// Exit codes, also listed in --help.
enum ExitCode {
    kSuccess = 0,
    kUsage = 2,          // bad command line
    kValueRefused = 3,   // a value failed cdrctl's checks; nothing was sent
    kNoAnswer = 4,       // connection, TLS, HTTP, credentials or a response that is not CIM-XML
    kCimError = 5,       // the object manager or the module answered with a CIM error
};

int run(int argc, char** argv);

}  // namespace cdrctl
