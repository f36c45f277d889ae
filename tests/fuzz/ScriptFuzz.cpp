// SPDX-License-Identifier: MIT
// The stream of a document, read into a new one, which then runs for some frames.
#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/FxContext.h>

#include <cstdint>

using namespace helvantine;

namespace
{

void tick(Composition& composition)
{
    for (const int frame : {0, 10}) {
        FxUpdateContext context;
        context.frame = frame;
        composition.update(context);
    }
    for (const SmartRef<Composition>& child : composition.m_compositions)
        tick(*child);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The runtime's own library lies beside the program: documents can name its classes.
    static Application application(getExecutableFolder().c_str(), false);
    application.newDocument(nullptr);
    MemoryBuffer buffer({data, data + size});
    FxSerializer serializer("fuzz", &buffer, false, nullptr);
    application.getDocument()->serialize(serializer);
    tick(*application.getDocument()->getCompositionManager()->getRoot());
    takeProblems();
    return 0;
}
