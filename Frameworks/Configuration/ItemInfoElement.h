// One INFO_ITEM of a settings file: five texts. One thread at a time; any number may read.
#pragma once

#include <memory_resource>
#include <string>
#include <string_view>

#include "Frameworks/Utilities/StdString.h"

// The texts of a new item.
struct ItemTexts {
    std::string_view name = {};
    std::string_view description = {};
    std::string_view type = {};
    std::string_view unitOfMeasure = {};
    std::string_view value = {};
};

class ItemInfoElement {
public:
    ItemInfoElement() = default;
    // The texts are in `memory`, which must outlive the item: that of the container that gets the item.
    ItemInfoElement(const ItemTexts& texts, std::pmr::memory_resource* memory)
        : m_description(texts.description, memory),
          m_name(texts.name, memory),
          m_type(texts.type, memory),
          m_unitOfMeasure(texts.unitOfMeasure, memory),
          m_value(texts.value, memory) {}
    ItemInfoElement(const ItemInfoElement&) = default;  // on the heap
    ItemInfoElement& operator=(const ItemInfoElement&) = default;
    virtual ~ItemInfoElement() = default;

    StdString GetDescription() const { return Copy(m_description); }
    StdString GetName() const { return Copy(m_name); }
    StdString GetType() const { return Copy(m_type); }
    StdString GetUnitOfMeasure() const { return Copy(m_unitOfMeasure); }
    StdString GetValue() const { return Copy(m_value); }

    void SetDescription(const StdString& description) { m_description = description.Text(); }
    void SetName(const StdString& name) { m_name = name.Text(); }
    void SetType(const StdString& type) { m_type = type.Text(); }
    void SetUnitOfMeasure(const StdString& unitOfMeasure) { m_unitOfMeasure = unitOfMeasure.Text(); }
    void SetValue(const StdString& value) { m_value = value.Text(); }

private:
    friend class ItemInfoContainer;  // reads name and value in place

    static StdString Copy(std::string_view text) { return std::string(text); }

    std::pmr::string m_description;    // for people
    std::pmr::string m_name;           // the key
    std::pmr::string m_type;           // never evaluated
    std::pmr::string m_unitOfMeasure;  // never evaluated
    std::pmr::string m_value;
};
