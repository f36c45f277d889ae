// SPDX-License-Identifier: MIT
#pragma once

namespace helvantine::tool
{

/// How far the rendering is, on standard error: one line that is written over on a terminal, else a line every
/// few seconds. Says nothing during work that is done in a moment.
class Progress
{
public:
    enum class Mode
    {
        Quiet,
        Terminal,
        Lines
    };

    /// Quiet unless standard error is a terminal or `wanted`.
    static Mode chooseMode(bool wanted);

    Progress(Mode mode, int total);

    void show(int done);
    /// Leaves the line, so that other text can follow.
    void finish();

private:
    Mode m_mode;
    int m_total;
    double m_started;
    double m_shown;
    bool m_lineOpen = false;
};

} // namespace helvantine::tool
