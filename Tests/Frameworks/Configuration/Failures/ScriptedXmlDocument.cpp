#include "Tests/Frameworks/Configuration/Failures/ScriptedXmlDocument.h"

#include <algorithm>

#include "Frameworks/Xml/XmlDocument.h"

DocumentScript& DocumentScript::Get() {
    static DocumentScript script;
    return script;
}

namespace {

bool Call(const std::string& name, const std::string& argument = "") {
    DocumentScript& script = DocumentScript::Get();
    const std::string call = argument.empty() ? name : name + " " + argument;
    script.calls.push_back(call);
    const auto count = std::count(script.calls.begin(), script.calls.end(), call);
    return script.failing.count(call) == 0 && script.failing.count(call + "#" + std::to_string(count)) == 0;
}

}  // namespace

bool XmlDocument::Load(const char* path) { return Call("Load", path); }
bool XmlDocument::IsWellFormed() const { return Call("IsWellFormed"); }
void XmlDocument::ResetPosition() { Call("ResetPosition"); }
void XmlDocument::ResetMainPosition() { Call("ResetMainPosition"); }
bool XmlDocument::FindElement(const char* name) { return Call("FindElement", name == nullptr ? "" : name); }
bool XmlDocument::IntoElement() { return Call("IntoElement"); }
bool XmlDocument::OutOfElement() { return Call("OutOfElement"); }
std::string XmlDocument::GetTagName() const { return "MEASUREMENT_STEP_ORDER"; }
std::string_view XmlDocument::GetStartTag() const { return "<INFO_ITEM/>"; }
std::string XmlDocument::GetAttribute(const char* name) const { return name; }
bool XmlDocument::SetAttribute(const char* name, const char* value) {
    return Call("SetAttribute", std::string(name) + "=" + value);
}
bool XmlDocument::AddElement(const char* name, const char* data, std::uint32_t flags) {
    return Call("AddElement", std::string(name) + (data == nullptr ? "" : data) + " " + std::to_string(flags));
}
bool XmlDocument::RemoveElement() { return Call("RemoveElement"); }
