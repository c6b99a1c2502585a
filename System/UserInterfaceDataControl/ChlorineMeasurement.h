// The chlorine value of a frame to the front end. One thread at a time.
#pragma once

#include "System/UserInterfaceDataControl/GuiElement.h"
#include "System/UserInterfaceDataControl/GuiMessage.h"

class ChlorineMeasurement : public GuiMessage {
public:
    void Init();  // call it first; deletes the value

    // mg/l.
    void SetValue(float chlorine);
    // "-.--" for 0 and below, "+.++" for 1 and above, since the display has one digit before the point and two after
    // it. The limits apply to the value, not to its text: 0.999 gives "1.00".
    GuiPair Format();

    GuiElement* GetElement() { return m_element.get(); }

private:
    std::unique_ptr<GuiElement> m_element;
};
