// Parses, walks, changes, saves and loads random documents. The input is a document up to the first zero byte, then
// operations of two bytes; the whole input is also loaded as a file.
#include <cstddef>
#include <cstdint>
#include <string>

#include "Frameworks/Xml/XmlDocument.h"
#include "Fuzzing/MemoryFile.h"
#include "Tests/Frameworks/Xml/XmlInvariants.h"

namespace {

constexpr std::size_t MaxOperations = 24;

const char* const Names[] = {"a", "b", "item", "r", "INFO_ITEM", "n:m", "\xC3\xA4", "html"};
const char* const Values[] = {"", "1", "a \"b\" 'c'", "<&>", "]]>x]]>", "\xC3\xA4/>", "&amp;", "\n \t=/"};
const std::uint32_t Flags[] = {0, 1, 2, 4, 0x10, 0x1000, 0x2000, 0x4000, 0x4001, 0x5000, 0x6002, 0x3004, 0x4012};

void RequireSound(const std::string& fault) { Require(fault.empty(), fault.c_str()); }

bool IsSound(const XmlDocument& document) {
    return document.GetIndex().Exists() && (document.GetIndex().At(0).flags & XmlIndex::IllFormedFlag) == 0;
}

void Check(const XmlDocument& document) {
    RequireSound(CheckIndex(document));
    const std::string& text = document.GetDocumentText();
    if (!IsSound(document) || text.find('\0') != std::string::npos) {
        return;
    }
    XmlDocument fresh;
    fresh.SetDocumentText(text.c_str());
    Require(IsSound(fresh), "a sound document stays sound");
    RequireSound(CompareIndex(document, fresh));
    Require(fresh.IsWellFormed() == document.IsWellFormed(), "well formed as before");
}

void SetAttribute(XmlDocument& document, const char* name, const char* value) {
    const bool isSet = document.SetAttribute(name, value);
    Require(isSet == !document.GetTagName().empty(), "an attribute is set if there is an element");
    Require(!isSet || document.GetAttribute(name) == value, "an attribute reads back");
}

void AddElement(XmlDocument& document, const char* name, const char* data, std::uint32_t flags) {
    const std::string before = document.GetDocumentText();
    if (!document.AddElement(name, data, flags)) {
        Require(document.GetDocumentText() == before, "a refusal leaves the text");
        return;
    }
    Require(document.GetTagName() == name, "the new element is current");
    Require(document.GetData() == data, "data reads back");
    Require(document.GetDocumentText().size() > before.size(), "the text grows");
}

void RemoveElement(XmlDocument& document) {
    const std::string before = document.GetDocumentText();
    const bool isRemoved = document.RemoveElement();
    Require(isRemoved == (document.GetDocumentText().size() < before.size()), "the text shrinks");
}

void Walk(XmlDocument& document) {
    document.ResetPosition();
    std::size_t steps = 0;
    for (bool goesOn = true; goesOn;) {
        while (document.FindElement()) {
            Require(!document.GetTagName().empty(), "an element has a name");
            Require(++steps < document.GetIndex().NextFree(), "the walk ends");
            document.GetAttribute("a");
            document.GetData();
            document.IntoElement();
        }
        goesOn = document.OutOfElement();
    }
}

void Operate(XmlDocument& document, std::uint8_t operation, std::uint8_t argument) {
    const char* name = Names[argument % std::size(Names)];
    const char* value = Values[argument / std::size(Names) % std::size(Values)];
    switch (operation % 10) {
        case 0:
            document.FindElement(name);
            break;
        case 1:
            document.FindElement();
            break;
        case 2:
            document.IntoElement();
            break;
        case 3:
            document.OutOfElement();
            break;
        case 4:
            document.ResetPosition();
            break;
        case 5:
            document.ResetMainPosition();
            break;
        case 6:
        case 7:
            SetAttribute(document, name, value);
            break;
        case 8:
            AddElement(document, name, value, Flags[operation / 10 % std::size(Flags)]);
            break;
        default:
            RemoveElement(document);
    }
    Check(document);
}

void Edit(const std::string& text, const std::uint8_t* operations, std::size_t count) {
    XmlDocument document;
    document.SetDocumentText(text.c_str());
    Require(document.GetDocumentText() == text, "the text is kept");
    Check(document);
    document.GetResultText();
    Walk(document);
    document.ResetPosition();
    for (std::size_t at = 0; at + 1 < count && at < 2 * MaxOperations; at += 2) {
        Operate(document, operations[at], operations[at + 1]);
    }
    Walk(document);
}

void LoadAndSave(const std::uint8_t* data, std::size_t size) {
    const MemoryFile file;
    file.Write(data, size);
    XmlDocument document;
    const bool isWellFormed = document.Load(file.Path());
    Require(isWellFormed == document.IsWellFormed(), "a load says whether the document is well formed");
    Check(document);
    document.GetResultText();
    Walk(document);
    Require(document.Save(file.Path()), "a document is saved");
    document.GetResultText();
    XmlDocument again;
    again.Load(file.Path());
    Check(again);
}

void SaveAndLoad(const std::string& text) {
    const MemoryFile file;
    // A declared encoding may lose characters; without one every byte is kept.
    const std::string content = "<f/>" + text;
    XmlDocument document;
    document.SetDocumentText(content.c_str());
    Require(document.Save(file.Path()), "a text is saved");
    XmlDocument again;
    again.Load(file.Path());
    Require(again.GetDocumentText() == content, "a saved text loads unchanged");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::string text = input.substr(0, input.find('\0'));
    const std::size_t used = std::min(size, text.size() + 1);
    Edit(text, data + used, size - used);
    LoadAndSave(data, size);
    SaveAndLoad(text);
    return 0;
}
