// An analyzer configuration as the bench reads and changes it. Independent of the analyzer's own reading, which is what
// the bench observes. Of a document that is not well formed, the items before the fault are known. One thread.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

// One INFO_ITEM with a name and a value.
struct SettingsItem {
    std::string step;  // the item "Step" of its MEASUREMENT_STEP; empty outside of one
    std::string name;
    std::string value;
};

class SettingsFile {
public:
    // The new value of an item; nothing keeps the old one.
    using Change = std::function<std::optional<std::string>(const SettingsItem& item)>;

    explicit SettingsFile(std::string text = "") : m_text(std::move(text)) {}
    // Returns false with the reason in `error` if the file can't be read.
    bool Read(const std::string& path, std::string& error);

    const std::string& Text() const { return m_text; }
    std::vector<SettingsItem> Items() const;  // in the order of the file

    // The value of the first item of that name.
    std::optional<std::string> Find(const std::string& name) const;

    // Each changes the values in the text and nothing else; `value` may not need escapes. Returns false if there is no
    // such item.
    bool Set(const std::string& name, const std::string& value);  // the first
    bool SetAll(const std::string& name, const std::string& value);
    bool ChangeEach(const Change& change);
    bool Remove(const std::string& name);  // the first, with its element

private:
    struct Place {
        SettingsItem item;
        std::size_t element = 0;
        std::size_t elementLength = 0;
        std::size_t value = 0;
        std::size_t valueLength = 0;  // as written
    };
    std::vector<Place> Places() const;

    std::string m_text;
};

}  // namespace Bench
