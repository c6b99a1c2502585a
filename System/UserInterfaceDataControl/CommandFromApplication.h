// The number of a frame that reports the state which the instrument has entered. One thread at a time.
#pragma once

#include "System/UserInterfaceDataControl/GuiElement.h"
#include "System/UserInterfaceDataControl/GuiMessage.h"

class CommandFromApplication : public GuiMessage {
public:
    void Init();  // call it first; deletes the value

    // Sent in decimal, with its sign.
    void SetValue(std::int32_t command);
    GuiPair Format();

    GuiElement* GetElement() { return m_element.get(); }

private:
    std::unique_ptr<GuiElement> m_element;
};
