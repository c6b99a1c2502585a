// One INFO_ITEM of a settings file: five texts. One thread at a time; any number may read.
#pragma once

#include "Frameworks/Utilities/StdString.h"

class ItemInfoElement {
public:
    virtual ~ItemInfoElement() = default;

    StdString GetDescription() const { return m_description; }
    StdString GetName() const { return m_name; }
    StdString GetType() const { return m_type; }
    StdString GetUnitOfMeasure() const { return m_unitOfMeasure; }
    StdString GetValue() const { return m_value; }

    void SetDescription(const StdString& description) { m_description = description; }
    void SetName(const StdString& name) { m_name = name; }
    void SetType(const StdString& type) { m_type = type; }
    void SetUnitOfMeasure(const StdString& unitOfMeasure) { m_unitOfMeasure = unitOfMeasure; }
    void SetValue(const StdString& value) { m_value = value; }

private:
    StdString m_description;    // for people
    StdString m_name;           // the key
    StdString m_type;           // carried, never acted on
    StdString m_unitOfMeasure;  // carried, never acted on
    StdString m_value;
};
