// One INFO_ITEM of a settings file: five texts. One thread at a time; any number may read.
#pragma once

#include <memory_resource>
#include <string>
#include <string_view>

#include "Frameworks/Utilities/StdString.h"

// The texts of an item that is yet to be made.
struct ItemTexts {
    std::string_view name = {};
    std::string_view description = {};
    std::string_view type = {};
    std::string_view unitOfMeasure = {};
    std::string_view value = {};
};

class ItemInfoElement {
public:
    // Of the container that holds it.
    using allocator_type = std::pmr::polymorphic_allocator<>;

    ItemInfoElement() = default;
    // Its texts lie in memory of the allocator for as long as it stands.
    ItemInfoElement(const ItemTexts& texts, const allocator_type& allocator)
        : m_description(texts.description, allocator),
          m_name(texts.name, allocator),
          m_type(texts.type, allocator),
          m_unitOfMeasure(texts.unitOfMeasure, allocator),
          m_value(texts.value, allocator) {}
    ItemInfoElement(const ItemInfoElement&) = default;  // which lies on the heap
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
    static StdString Copy(std::string_view text) { return std::string(text); }

    std::pmr::string m_description;    // for people
    std::pmr::string m_name;           // the key
    std::pmr::string m_type;           // carried, never acted on
    std::pmr::string m_unitOfMeasure;  // carried, never acted on
    std::pmr::string m_value;
};
