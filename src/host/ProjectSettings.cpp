// SPDX-License-Identifier: MIT
#include <helvantine/host/ProjectSettings.h>

#include <helvantine/core/Report.h>
#include <helvantine/serialize/FxSerializer.h>

namespace helvantine
{

void ProjectSettings::setFrameRate(int frameRate)
{
    if (frameRate == 0) {
        reportProblem("project", "frame rate of 0 refused");
        return;
    }
    m_frameRate = frameRate;
}

void ProjectSettings::setTitle(const char* title)
{
    if (title)
        m_title = title;
}

void ProjectSettings::serialize(FxSerializer& serializer)
{
    if (serializer.m_writing) {
        OutStream& out = serializer.m_out;
        out.writeString(m_title);
        out.writeInt(m_frameRate);
        out.writeUInt(m_width);
        out.writeUInt(m_height);
        return;
    }

    InStream& in = serializer.m_in;
    in.readString(m_title);
    int32_t frameRate = 0;
    in.readInt(frameRate);
    if (!serializer.failed())
        setFrameRate(frameRate);
    if (serializer.m_version >= 2) {
        in.readUInt(m_width);
        in.readUInt(m_height);
    }
}

} // namespace helvantine
