// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <array>
#include <cstddef>

namespace helvantine
{

/// What this process writes to standard error when it is ended by a fault in this thread meanwhile: an abort, a bad
/// access, an illegal instruction.
///
/// Lives on the stack around code that isn't ours. The innermost one speaks; then the signal takes the course that it
/// would have taken. In another thread than that of the outermost one it does nothing.
class HELVANTINE_CORE_API LastWords
{
public:
    static constexpr std::size_t s_pieceCount = 6;

    /// The pieces of one line, borrowed; null ones are left out. The number of the signal follows.
    explicit LastWords(const std::array<const char*, s_pieceCount>& pieces);
    ~LastWords();

    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;

private:
    friend class LastWordsSpeaker;

    std::array<const char*, s_pieceCount> m_pieces;
    const LastWords* m_outer = nullptr;
    bool m_speaks = false;
};

} // namespace helvantine
