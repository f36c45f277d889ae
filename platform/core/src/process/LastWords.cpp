// SPDX-License-Identifier: MIT
#include <helvantine/core/LastWords.h>

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>

namespace helvantine
{

/// Has the signals for as long as there are words.
class LastWordsSpeaker
{
public:
    static const LastWords* begin(const LastWords* words, bool& speaks);
    static void end(const LastWords* outer);

private:
    static void say(const char* piece);
    static void speak(int signal, siginfo_t* info, void*);
    static void takeSignals();
    static void giveSignalsBack();

    static constexpr std::array<int, 5> s_faults = {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL};
    static inline const LastWords* volatile s_innermost = nullptr;
    static inline pthread_t s_thread;
    static inline std::array<struct sigaction, s_faults.size()> s_before;
};

const LastWords* LastWordsSpeaker::begin(const LastWords* words, bool& speaks)
{
    const LastWords* outer = s_innermost;
    speaks = !outer || pthread_equal(s_thread, pthread_self());
    if (!speaks)
        return nullptr;
    s_thread = pthread_self();
    s_innermost = words;
    if (!outer)
        takeSignals();
    return outer;
}

void LastWordsSpeaker::end(const LastWords* outer)
{
    if (!outer)
        giveSignalsBack();
    s_innermost = outer;
}

void LastWordsSpeaker::say(const char* piece)
{
    if (piece && write(STDERR_FILENO, piece, std::strlen(piece)) < 0)
        return; // there is nobody left to tell
}

/// Calls nothing that a signal may not call.
void LastWordsSpeaker::speak(int signal, siginfo_t* info, void*)
{
    const int error = errno;
    if (s_innermost && pthread_equal(s_thread, pthread_self())) {
        for (const char* piece : s_innermost->m_pieces)
            say(piece);
        char number[16] = {};
        std::to_chars(number, number + sizeof number - 1, signal);
        say(" (signal ");
        say(number);
        say(")\n");
    }
    giveSignalsBack();
    // A fault of the processor comes again where it came from, with all that a handler may want to know of it.
    if (info->si_code <= 0)
        raise(signal);
    errno = error;
}

void LastWordsSpeaker::takeSignals()
{
    struct sigaction action
    {
    };
    action.sa_sigaction = speak;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    for (std::size_t i = 0; i < s_faults.size(); ++i)
        sigaction(s_faults[i], &action, &s_before[i]);
}

/// One that somebody else has taken meanwhile stays theirs.
void LastWordsSpeaker::giveSignalsBack()
{
    for (std::size_t i = 0; i < s_faults.size(); ++i) {
        struct sigaction now;
        sigaction(s_faults[i], nullptr, &now);
        if ((now.sa_flags & SA_SIGINFO) && now.sa_sigaction == speak)
            sigaction(s_faults[i], &s_before[i], nullptr);
    }
}

LastWords::LastWords(const std::array<const char*, s_pieceCount>& pieces) : m_pieces(pieces)
{
    m_outer = LastWordsSpeaker::begin(this, m_speaks);
}

LastWords::~LastWords()
{
    if (m_speaks)
        LastWordsSpeaker::end(m_outer);
}

} // namespace helvantine
