#include "System/UserInterfaceDataControl/GuiElement.h"

#include "Frameworks/Utilities/TryMake.h"

GuiPair GuiElement::Take(const StdString& text) {
    valueText = text;
    isSet = false;
    return {name, valueText};
}

std::unique_ptr<GuiElement> MakeGuiElement(const char* name) {
    auto element = TryMake<GuiElement>();
    if (element != nullptr) {
        element->name = name;
    }
    return element;
}
