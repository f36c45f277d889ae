// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>

#include <cstdint>

namespace helvantine
{

/// Counts the samples that pass the tests between begin and end, exactly.
///
/// The answer comes frames later; off-line it is there in the very next frame.
class HELVANTINE_RENDERER_API Query : public IRefCount
{
public:
    virtual void begin() = 0;
    virtual void end() = 0;

    virtual bool dataAvailable() = 0; ///< doesn't wait
    /// The samples counted by the latest finished begin and end; -1 if there is no answer. Doesn't wait.
    virtual int64_t getOcclusionQueryData() = 0;
};

/// Null without a renderer. Its count is 0.
HELVANTINE_RENDERER_API Query* createQuery();

} // namespace helvantine
