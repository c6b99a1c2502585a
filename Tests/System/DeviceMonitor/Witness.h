// Receives what the device monitor sends, as one line per message in order of arrival. With a board it replaces the
// remote indicator: the board's sound plays as requested.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "Bench/Board/Board.h"
#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/ThreadControl.h"
#include "System/Messages/PeriodicHardwareTestMessage.h"
#include "System/Messages/RemoteIndicatorAudioControlMessage.h"
#include "System/Messages/RemoteIndicatorControlMessage.h"

using Texts = std::vector<std::string>;

class Witness final : public ThreadControl {
public:
    Witness(const StdString& name, std::vector<DataMessageType> types, Bench::Board* board = nullptr)
        : m_types(std::move(types)), m_board(board) {
        SetThreadName(name);
    }

    bool Init() override { return ThreadControl::Init() && DoRegistration(); }
    bool DoRegistration() override {
        RegisterForCommand(KILLING_SYSTEM);  // enters the name
        for (const DataMessageType type : m_types) {
            RegisterForDataMessage(type);
        }
        m_listens = true;
        return true;
    }
    bool ProcessDataMessage(DataMessage* message) override {
        const std::string text = TextOf(*message);
        const std::lock_guard lock(m_mutex);
        m_texts.push_back(text);
        return true;
    }

    bool Listens() const { return m_listens; }

    Texts Heard() {
        const std::lock_guard lock(m_mutex);
        return m_texts;
    }

    void Forget() {
        const std::lock_guard lock(m_mutex);
        m_texts.clear();
    }

private:
    static std::string Number(std::int32_t number) { return std::to_string(number); }

    std::string TextOf(const DataMessage& message) {
        const std::string sender = " from " + message.GetSource()->GetThreadName().Text();
        const std::string role = message.GetSubType() == REQUEST_SUB_TYPE ? "" : " as " + Number(message.GetSubType());
        switch (message.GetDataType()) {
            case LOGGING_DATA_MESSAGE: {
                const LogInfo& info = static_cast<const LogInfoMessage&>(message).GetLogInfo();
                return "log " + Number(info.GetLogLevel()) + " " + info.GetText().Text() + sender;
            }
            case REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE: {
                const auto& colors = static_cast<const RemoteIndicatorControlMessage&>(message);
                return "colors " + Number(colors.GetAnalyzerStatus()) + " " + Number(colors.GetWaterStatus()) +
                       " select " + Number(colors.GetStatusSelect()) + role + sender;
            }
            case REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE: {
                const auto& audio = static_cast<const RemoteIndicatorAudioControlMessage&>(message);
                Act(audio.GetAction());
                return "audio " + Number(audio.GetAction()) + " [" + audio.GetFileName().Text() + "]" + role + sender;
            }
            default: {
                const auto& test = static_cast<const PeriodicHardwareTestMessage&>(message);
                return "test " + Number(test.GetTestSelector()) + " verdict " + Number(test.GetVerdict()) + role +
                       sender;
            }
        }
    }

    void Act(std::int32_t action) {
        if (m_board != nullptr) {
            m_board->SetAudioPlaying(action == PLAY_AUDIO);
        }
    }

    const std::vector<DataMessageType> m_types;
    Bench::Board* m_board;
    std::mutex m_mutex;
    Texts m_texts;
    std::atomic<bool> m_listens{false};
};
