// SPDX-License-Identifier: MIT
#pragma once

namespace helvantine::tool
{

/// The context of a frame: time follows from the number alone, since adding up frame times would drift.
template <class Context>
Context makeFrameContext(int frame, int frameRate)
{
    Context context;
    context.frame = frame;
    context.time = static_cast<float>(static_cast<double>(frame) / frameRate);
    context.isPlaying = true;
    return context;
}

} // namespace helvantine::tool
