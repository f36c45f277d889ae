// SPDX-License-Identifier: MIT
#include "Rehearsal.h"

#include "RehearseCommand.h"

#include <helvantine/core/Text.h>

#include <nlohmann/json.hpp>

#include <utility>

namespace helvantine::tool
{

std::string encodeScene(const Scene& scene)
{
    nlohmann::json texts = nlohmann::json::array();
    for (const NodeText& text : scene.texts)
        texts.push_back({{"node", uniqueIdToString(text.node)}, {"text", text.text}});
    const nlohmann::json all = {{"frame", scene.frame}, {"texts", texts}};
    return all.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

bool decodeScene(const std::string& bytes, Scene& scene)
{
    try {
        const auto all = nlohmann::json::parse(bytes);
        scene.frame = all.at("frame");
        for (const auto& text : all.at("texts"))
            scene.texts.push_back(
                {stringToUniqueId(text.at("node").get<std::string>().c_str()), text.at("text")});
        return true;
    } catch (const nlohmann::json::exception&) {
        return false;
    }
}

bool Rehearsal::start()
{
    const std::string size = formatString("%ux%u", m_stage.size.width, m_stage.size.height);
    return m_process.start(m_stage.program,
                           {rehearseCommandName, m_stage.document, "--composition", m_stage.composition,
                            "--folder", m_stage.folder, "--size", size},
                           m_reason);
}

void Rehearsal::prepare()
{
    if (m_state == State::Idle && !m_process.isStarted())
        start(); // one that can't be had is told when it is needed
}

void Rehearsal::begin(const Scene& scene)
{
    const bool stands = m_state == State::Idle && m_process.isStarted() &&
                        m_process.channel().getState() == MessageChannel::State::Quiet;
    m_reason.clear();
    m_state = State::Impossible;
    if (!stands && !start())
        return;
    constexpr auto longestSend = std::chrono::milliseconds(50); // a frame is waiting
    const auto now = MessageChannel::Clock::now();
    const auto sent = m_process.channel().send(encodeScene(scene), now + longestSend);
    m_deadline = now + m_stage.patience;
    m_state = State::Running;
    if (sent != MessageChannel::Result::Done && sent != MessageChannel::Result::Closed) {
        m_process.kill();
        m_reason = "takes no texts";
        m_state = State::Failed;
    }
}

Rehearsal::State Rehearsal::look()
{
    if (m_state == State::Running)
        m_state = conclude();
    if (m_state == State::Running || m_state == State::Idle)
        return m_state;
    const State told = std::exchange(m_state, State::Idle);
    if (told == State::Drawn)
        prepare();
    return told;
}

Rehearsal::State Rehearsal::conclude()
{
    MessageChannel& channel = m_process.channel();
    switch (channel.getState()) {
    case MessageChannel::State::Quiet:
        if (MessageChannel::Clock::now() < m_deadline)
            return State::Running;
        m_process.kill();
        m_reason = formatString("took the driver more than %.1f s",
                                std::chrono::duration<double>(m_stage.patience).count());
        return State::Failed;
    case MessageChannel::State::Pending:
        if (channel.receive(m_reason, maxRehearsalReason, MessageChannel::Clock::now()) !=
            MessageChannel::Result::Done)
            m_reason = "ended in the middle of a word";
        m_process.kill();
        return State::Failed;
    case MessageChannel::State::Closed:
        break;
    }
    const ProcessEnd end = m_process.wait();
    if (end.kind == ProcessEnd::Kind::Exited && end.code == 0)
        return State::Drawn;
    m_reason = end.kind == ProcessEnd::Kind::Signalled ? formatString("crashed (signal %d)", end.code)
                                                       : formatString("ended with exit code %d", end.code);
    return State::Failed;
}

void Rehearsal::stop()
{
    m_process.kill();
    m_state = State::Idle;
}

} // namespace helvantine::tool
