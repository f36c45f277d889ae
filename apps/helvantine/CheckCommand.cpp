// SPDX-License-Identifier: MIT
#include "CheckCommand.h"

#include "DocumentCheck.h"
#include "DocumentReader.h"
#include "Json.h"
#include "Warnings.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace helvantine::tool
{

namespace
{

constexpr const char* footer =
    R"(A finding is a line with its code, where it is and what was found, and one with what to do. With --json:
  {"document": …, "findings": [{"code": …, "path": …, "found": …, "advice": …}, …]}

Exit codes: 0 nothing found, 1 something found, 2 wrong arguments, or a file that can't be judged.
)";

void printText(const std::vector<Finding>& findings)
{
    for (const Finding& finding : findings) {
        const std::string path = finding.path.empty() ? std::string("document") : finding.path;
        std::printf("%s: %s: %s\n    %s\n", finding.code, printable(path).c_str(),
                    printable(finding.found).c_str(), printable(finding.advice).c_str());
    }
    if (findings.empty())
        std::puts("nothing found");
    else
        std::printf("%zu found\n", findings.size());
}

void printJson(const std::string& document, const std::vector<Finding>& findings)
{
    Json list = Json::array();
    for (const Finding& finding : findings)
        list.push_back({{"code", finding.code},
                        {"path", finding.path},
                        {"found", finding.found},
                        {"advice", finding.advice}});
    std::puts(toText({{"document", document}, {"findings", list}}).c_str());
}

} // namespace

void addCheckCommand(CLI::App& app, CheckOptions& options)
{
    CLI::App* check = app.add_subcommand("check", "Tells what is wrong with a document. Needs no GPU.");
    check->footer(footer);
    check->add_option("document", options.document, "The document")->required()->type_name("DOCUMENT");
    check->add_flag("--json", options.json, "As JSON");
}

int runCheck(const CheckOptions& options)
{
    DocumentReader reader;
    Warnings(options.document).show(nullptr); // of the plugin libraries
    if (const std::string error = reader.read(options.document); !error.empty())
        return fail(ExitUnchecked, error);
    const std::vector<Finding> findings = checkDocument(reader.document());
    if (options.json)
        printJson(options.document, findings);
    else
        printText(findings);
    return findings.empty() ? ExitDone : ExitFindings;
}

} // namespace helvantine::tool
