#pragma once
// Runs the quorvel command as a user runs it: its exit code, standard output and standard error.
#include "support/TestSupport.h"

#include <array>
#include <cstdio>
#include <string>
#include <sys/wait.h>

namespace apptest {

struct Run {
    int exitCode = -1;
    std::string out; // with standard error as well when no file is named for it
    std::string err;
};

// Standard error goes to `errFile` when one is named; `environment` stands before the command,
// after the offscreen platform it may unset.
inline Run quorvel(const std::string& arguments, const std::string& errFile = "",
                   const std::string& environment = "") {
    Run run;
    const std::string command = "QT_QPA_PLATFORM=offscreen " + environment + " " + QUORVEL_EXE +
                                " " + arguments +
                                (errFile.empty() ? " 2>&1" : " 2>'" + errFile + "'");
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 4096> buffer{};
    while (pipe && std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe))
        run.out += buffer.data();
    const int status = pipe ? pclose(pipe) : -1;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (!errFile.empty())
        run.err = testsupport::readFile(errFile);
    return run;
}

} // namespace apptest
