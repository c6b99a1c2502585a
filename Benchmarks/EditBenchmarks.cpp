#include "Benchmarks/EditBenchmarks.h"

#include <fstream>
#include <sstream>
#include <string>

#include "Benchmarks/Readers.h"
#include "Benchmarks/Stopwatch.h"

namespace {

constexpr const char* RootName = "ROOT_ANALYZER";
constexpr const char* SectionName = "SYSTEM_CONTROL_INFO";
constexpr const char* ItemName = "INFO_ITEM";
constexpr const char* AttributeName = "value";
constexpr const char* NewValue = "/var/another/place";

// Number of the section among those of that name, from 1.
int SectionOf(DocumentSize size) { return size == SMALL ? 1 : 250; }

bool OurEdit(const std::string& from, const std::string& to, int section) {
    XmlDocument document;
    if (!document.Load(from.c_str()) || !document.FindElement(RootName) || !document.IntoElement()) {
        return false;
    }
    for (int found = 0; found < section; ++found) {
        if (!document.FindElement(SectionName)) {
            return false;
        }
    }
    return document.IntoElement() && document.FindElement(ItemName) && document.SetAttribute(AttributeName, NewValue) &&
           document.Save(to.c_str());
}

// Everything is kept: white space, comments and declarations are read too, and nothing is decoded or put in order.
bool PugixmlEdit(const std::string& from, const std::string& to, int section) {
    constexpr unsigned Keep = pugi::parse_pi | pugi::parse_comments | pugi::parse_cdata | pugi::parse_declaration |
                              pugi::parse_doctype | pugi::parse_ws_pcdata | pugi::parse_fragment;
    pugi::xml_document document;
    if (!document.load_file(from.c_str(), Keep)) {
        return false;
    }
    pugi::xml_node node = document.child(RootName).child(SectionName);
    for (int found = 1; found < section; ++found) {
        node = node.next_sibling(SectionName);
    }
    return node.child(ItemName).attribute(AttributeName).set_value(NewValue) &&
           document.save_file(to.c_str(), "", pugi::format_raw | pugi::format_no_escapes);
}

using Edit = bool (*)(const std::string& from, const std::string& to, int section);

std::string Content(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// The two attributes may differ, nothing else.
void RequireSameResult(DocumentSize size) {
    const std::string& from = DocumentPath(size);
    const std::string ours = from + ".ours";
    const std::string peers = from + ".peers";
    if (!OurEdit(from, ours, SectionOf(size)) || !PugixmlEdit(from, peers, SectionOf(size)) ||
        Content(ours) != Content(peers) || Content(ours) == Content(from)) {
        EndForFailure("the changed documents are not the same: " + ours + ", " + peers);
    }
}

double EditTime(DocumentSize size, Edit edit) {
    const std::string& from = DocumentPath(size);
    const std::string to = from + ".changed";
    return SecondsEach(BatchOf(size), [&] {
        if (!edit(from, to, SectionOf(size))) {
            EndForFailure("a document is not changed");
        }
    });
}

template <DocumentSize size>
double Checked(Edit edit) {
    [[maybe_unused]] static const bool isChecked = (RequireSameResult(size), true);
    return EditTime(size, edit);
}

}  // namespace

template <>
double EditOurs<SMALL>() {
    return Checked<SMALL>(OurEdit);
}

template <>
double EditOurs<LARGE>() {
    return Checked<LARGE>(OurEdit);
}

template <>
double EditPugixml<SMALL>() {
    return Checked<SMALL>(PugixmlEdit);
}

template <>
double EditPugixml<LARGE>() {
    return Checked<LARGE>(PugixmlEdit);
}
