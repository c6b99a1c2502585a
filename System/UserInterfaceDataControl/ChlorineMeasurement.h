// The chlorine value of a frame to the front end. One thread at a time.
#pragma once

#include "System/UserInterfaceDataControl/GuiElement.h"
#include "System/UserInterfaceDataControl/GuiMessage.h"

class ChlorineMeasurement : public GuiMessage {
public:
    void Init();  // before anything else; what was set is gone

    // mg/l.
    void SetValue(float chlorine);
    // "-.--" for 0 and below, "+.++" from 1 on: the display has two digits behind the point and one in front. The
    // limits hold for the value and not for its text, so that 0.999 reads 1.00.
    GuiPair Format();

    GuiElement* GetElement() { return m_element.get(); }

private:
    std::unique_ptr<GuiElement> m_element;
};
