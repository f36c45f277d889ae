// SPDX-License-Identifier: MIT
#include "Runtime.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>

namespace testplugin
{

using namespace helvantine;

std::string getProgramFolder()
{
    return getExecutableFolder() + '/';
}

std::string takeWords()
{
    std::string words;
    for (const Problem& problem : takeProblems())
        words += (words.empty() ? "" : "\n") + problem.module + ": " + problem.text;
    return words;
}

Runtime::Runtime() : application(getProgramFolder().c_str(), false)
{
    const std::string path = getProgramFolder() + "test-plugins/HelvantineTestPlugin.dll";
    application.getPluginManager()->m_factories.emplace_back(createPluginFactory(path.c_str()));
    application.newDocument(nullptr);
    takeLog();
}

RecordingEffect* addEffect(Effect& parent, const char* name, int start, int end)
{
    auto* effect = new RecordingEffect;
    parent.addObject(effect, -1);
    effect->onInit();
    effect->setName(name);
    effect->setStart(start);
    effect->setEnd(end);
    return effect;
}

} // namespace testplugin
