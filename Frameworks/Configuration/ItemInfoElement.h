// One INFO_ITEM of a settings file: five texts. One thread at a time; any number may read.
#pragma once

#include <utility>

#include "Frameworks/Utilities/StdString.h"

class ItemInfoElement {
public:
    virtual ~ItemInfoElement() = default;

    StdString GetDescription() const { return m_description; }
    StdString GetName() const { return m_name; }
    StdString GetType() const { return m_type; }
    StdString GetUnitOfMeasure() const { return m_unitOfMeasure; }
    StdString GetValue() const { return m_value; }

    void SetDescription(StdString description) { m_description = std::move(description); }
    void SetName(StdString name) { m_name = std::move(name); }
    void SetType(StdString type) { m_type = std::move(type); }
    void SetUnitOfMeasure(StdString unitOfMeasure) { m_unitOfMeasure = std::move(unitOfMeasure); }
    void SetValue(StdString value) { m_value = std::move(value); }

private:
    StdString m_description;    // for people
    StdString m_name;           // the key
    StdString m_type;           // carried, never acted on
    StdString m_unitOfMeasure;  // carried, never acted on
    StdString m_value;
};
