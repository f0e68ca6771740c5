#pragma once

#include <CImgDecodeNotify.h>

#include <array>
#include <functional>
#include <utility>
#include <vector>

/// Records the notifications of a decoder as (status, id, alpha), and may act from within one.
class DecodeRecorder : public CImgDecodeNotify
{
public:
    using Notifications = std::vector<std::array<int, 3>>;

    std::function<void()> onDecoded;

    void OnImageDecoded(int status, int id, int hasAlpha) override
    {
        m_notifications.push_back({status, id, hasAlpha});
        if (const auto action = std::exchange(onDecoded, nullptr)) {
            action();
        }
    }

    /// Returns what was recorded since the last call and starts over.
    Notifications Take() { return std::exchange(m_notifications, {}); }

private:
    Notifications m_notifications;
};
