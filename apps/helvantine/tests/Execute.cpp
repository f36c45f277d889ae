// SPDX-License-Identifier: MIT
#include "Execute.h"

#include <cstdio>
#include <sys/wait.h>

namespace helvantine::test
{

int execute(const std::string& command, std::string& output)
{
    output.clear();
    std::FILE* pipe = popen(("(" + command + ") 2>&1").c_str(), "r");
    if (!pipe)
        return -1;
    char bytes[4096];
    while (const std::size_t count = std::fread(bytes, 1, sizeof(bytes), pipe))
        output.append(bytes, count);
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int executeForErrors(const std::string& command, std::string& errors)
{
    return execute("(" + command + ") 2>&1 > /dev/null", errors);
}

} // namespace helvantine::test
