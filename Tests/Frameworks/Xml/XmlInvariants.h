// Checks the index of a document, after any change, and compares the indexes of two documents.
#pragma once

#include <algorithm>
#include <string>

#include "Frameworks/Xml/XmlDocument.h"

inline std::uint32_t NextInIndex(const XmlIndex& index, std::uint32_t at) {
    if (index.At(at).firstChild != 0) {
        return index.At(at).firstChild;
    }
    while (at != 0 && index.At(at).nextSibling == 0) {
        at = index.At(at).parent;
    }
    return at == 0 ? 0 : index.At(at).nextSibling;
}

// Empty if the links of the record and its place among its siblings are right.
inline std::string CheckLinks(const XmlIndex& index, std::uint32_t at) {
    const XmlRecord& record = index.At(at);
    const std::uint32_t first = index.At(record.parent).firstChild;
    if (at >= index.NextFree()) {
        return "never taken";
    }
    if (index.IsFirstChild(at) != (first == at)) {
        return "first child flag";
    }
    if (first != at && index.At(record.previousSibling).nextSibling != at) {
        return "previous sibling";
    }
    if (record.nextSibling == 0 && index.At(first).previousSibling != at) {
        return "last child";
    }
    if (record.nextSibling != 0 && index.At(record.nextSibling).parent != record.parent) {
        return "parent of the next sibling";
    }
    if ((record.flags & XmlIndex::DepthMask) !=
        std::min((index.At(record.parent).flags & XmlIndex::DepthMask) + 1, XmlIndex::DepthMask)) {
        return "depth";
    }
    return {};
}

// Empty if the offsets of the record point at tags of the text.
inline std::string CheckOffsets(const XmlIndex& index, const std::string& text, std::uint32_t at) {
    const XmlRecord& record = index.At(at);
    const std::size_t end = std::size_t{record.start} + record.length;
    const std::uint32_t startTag = index.StartTagLength(at);
    const std::uint32_t endTag = index.EndTagLength(at);
    const std::uint32_t parentEnd = record.parent == 0 ? static_cast<std::uint32_t>(text.size())
                                                       : index.End(record.parent) - index.EndTagLength(record.parent);
    if (end > parentEnd) {
        return "end";
    }
    if (record.parent != 0 && record.start < index.At(record.parent).start + index.StartTagLength(record.parent)) {
        return "start before the parent's content";
    }
    if (!index.IsFirstChild(at) && record.start < index.End(record.previousSibling)) {
        return "start before the sibling's end";
    }
    if (startTag < 3 || std::uint64_t{startTag} + endTag > record.length) {
        return "tag lengths";
    }
    if (text[record.start] != '<' || text[record.start + startTag - 1] != '>') {
        return "start tag";
    }
    if (endTag != 0 && (text.compare(end - endTag, 2, "</") != 0 || text[end - 1] != '>')) {
        return "end tag";
    }
    return {};
}

// Empty if all is right, otherwise the fault.
inline std::string CheckIndex(const XmlDocument& document) {
    const XmlIndex& index = document.GetIndex();
    const std::string& text = document.GetDocumentText();
    if (!index.Exists()) {
        return text.empty() ? "" : "no index";
    }
    if (index.At(0).length != text.size()) {
        return "length of the document";
    }
    std::uint32_t count = 0;
    for (std::uint32_t at = index.At(0).firstChild; at != 0; at = NextInIndex(index, at)) {
        std::string fault = CheckLinks(index, at);
        fault = fault.empty() ? CheckOffsets(index, text, at) : fault;
        if (!fault.empty() || ++count >= index.NextFree()) {
            return "record " + std::to_string(at) + ": " + (fault.empty() ? "more records than taken" : fault);
        }
    }
    return {};
}

// Empty if both have the same elements at the same offsets.
inline std::string CompareIndex(const XmlDocument& left, const XmlDocument& right) {
    const XmlIndex& leftIndex = left.GetIndex();
    const XmlIndex& rightIndex = right.GetIndex();
    constexpr std::uint32_t SameFlags = XmlIndex::DepthMask | XmlIndex::FirstChildFlag | XmlIndex::NoEndTagFlag;
    std::uint32_t leftAt = 0;
    std::uint32_t rightAt = 0;
    do {
        const XmlRecord& leftRecord = leftIndex.At(leftAt);
        const XmlRecord& rightRecord = rightIndex.At(rightAt);
        if (leftRecord.start != rightRecord.start || leftRecord.length != rightRecord.length ||
            (leftRecord.flags & SameFlags) != (rightRecord.flags & SameFlags) ||
            leftIndex.StartTagLength(leftAt) != rightIndex.StartTagLength(rightAt) ||
            leftIndex.EndTagLength(leftAt) != rightIndex.EndTagLength(rightAt)) {
            return "element at " + std::to_string(leftRecord.start) + " and " + std::to_string(rightRecord.start);
        }
        leftAt = NextInIndex(leftIndex, leftAt);
        rightAt = NextInIndex(rightIndex, rightAt);
    } while (leftAt != 0 && rightAt != 0);
    return leftAt == rightAt ? "" : "one has more elements";
}
