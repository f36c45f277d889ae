// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

namespace helvantine::tool
{

/// Tells which files of a folder were written: at once what was renamed into it, as careful editors do, and what was
/// written in place when nobody has touched it for a moment, since that may happen in several goes.
class FolderWatch
{
public:
    static constexpr double s_calm = 0.015;   ///< seconds
    static constexpr double s_lookPace = 0.1; ///< seconds between two looks for another folder of that name

    FolderWatch() = default;
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// What lies in the folder counts as just written, and so does what lies in one that takes its place later.
    /// Returns a sentence for the user, empty for success.
    std::string open(const std::string& folder);

    /// Gives the name of one file that was written. now: the time in seconds. False if there is none.
    bool take(double now, std::string& name);

private:
    void follow(double now);
    void noteAll();
    void readEvents(double now);

    std::string m_folder;
    int m_events = -1;                        ///< where the system tells what happens
    int m_watch = -1;                         ///< of the folder that has the name now; -1: there is none
    double m_nextLook = 0.0;                  ///< when
    std::map<std::string, double> m_calmFrom; ///< what was written, and when it may be taken
};

} // namespace helvantine::tool
