#include "Frameworks/Xml/XmlIndex.h"

#include <algorithm>

namespace {

constexpr unsigned StartTagBits = 22;
constexpr std::uint32_t StartTagMask = (1U << StartTagBits) - 1;
constexpr std::uint32_t EndTagMask = (1U << (32 - StartTagBits)) - 1;

}  // namespace

void XmlIndex::Reset(std::size_t capacity) {
    Clear();
    m_capacity = std::max<std::size_t>(capacity, 2);
    MakeRoom();
    At(0) = XmlRecord{};
}

void XmlIndex::Clear() {
    m_segments.clear();
    m_longTags.clear();
    m_capacity = 0;
    m_allocated = 0;
    m_nextFree = 1;
    m_freed = 0;
}

// A segment takes its whole size only when its first part is full, since most of the last one would stay unused.
void XmlIndex::MakeRoom() {
    if (m_nextFree >= m_capacity) {
        m_capacity = std::max<std::size_t>(std::size_t{m_nextFree} + 1, std::size_t{m_nextFree} * 3 / 2);
    }
    const std::size_t used = m_allocated & SegmentMask;
    const std::size_t before = m_allocated - used;
    const std::size_t wanted = std::min<std::size_t>(SegmentRecords, m_capacity - before);
    const std::size_t size = used == 0 ? std::min<std::size_t>(FirstPart, wanted) : wanted;
    auto records = std::make_unique_for_overwrite<XmlRecord[]>(size);
    if (used == 0) {
        m_segments.push_back(std::move(records));
    } else {
        std::copy_n(m_segments.back().get(), used, records.get());
        m_segments.back() = std::move(records);
    }
    m_allocated = before + size;
}

std::uint32_t XmlIndex::Take(std::uint32_t start, std::uint32_t length) {
    std::uint32_t index = m_freed;
    if (index != 0) {
        m_freed = At(index).nextSibling;
    } else {
        if (m_nextFree == m_allocated) {
            MakeRoom();
        }
        index = m_nextFree++;
    }
    At(index) = XmlRecord{start, length, 0, 0, 0, 0, 0, 0};
    return index;
}

std::uint32_t XmlIndex::AddLast(std::uint32_t parent, std::uint32_t previous, std::uint32_t start,
                                std::uint32_t startTag) {
    if (m_nextFree == m_allocated) {
        MakeRoom();
    }
    const std::uint32_t index = m_nextFree++;
    XmlRecord& above = At(parent);
    XmlRecord& record = At(index);
    record = XmlRecord{start, startTag, startTag, DepthBelow(parent), parent, 0, 0, previous};
    if (startTag >= StartTagMask) {
        SetTagLengths(index, startTag, 0);
    }
    if (previous == 0) {
        record.flags |= FirstChildFlag;
        record.previousSibling = index;
        above.firstChild = index;
    } else {
        At(previous).nextSibling = index;
        At(above.firstChild).previousSibling = index;
    }
    return index;
}

void XmlIndex::Release(std::uint32_t index) {
    if (!m_longTags.empty()) {
        m_longTags.erase(index);
    }
    At(index) = XmlRecord{};
    At(index).nextSibling = m_freed;
    m_freed = index;
}

void XmlIndex::SetTagLengths(std::uint32_t index, std::uint32_t startTag, std::uint32_t endTag) {
    const bool isLong = startTag >= StartTagMask || endTag >= EndTagMask;
    if (isLong) {
        m_longTags[index] = {startTag, endTag};
    } else if (!m_longTags.empty()) {
        m_longTags.erase(index);
    }
    // All bits set: the lengths are in the table.
    At(index).tagLengths = isLong ? ~std::uint32_t{0} : startTag | endTag << StartTagBits;
}

std::uint32_t XmlIndex::StartTagLength(std::uint32_t index) const {
    const std::uint32_t length = At(index).tagLengths & StartTagMask;
    return length == StartTagMask ? m_longTags.at(index).start : length;
}

std::uint32_t XmlIndex::EndTagLength(std::uint32_t index) const {
    const std::uint32_t length = At(index).tagLengths >> StartTagBits;
    return length == EndTagMask ? m_longTags.at(index).end : length;
}

std::uint32_t XmlIndex::LastChild(std::uint32_t parent) const {
    const std::uint32_t first = At(parent).firstChild;
    return first == 0 ? 0 : At(first).previousSibling;
}

std::uint32_t XmlIndex::DepthBelow(std::uint32_t parent) const {
    return std::min((At(parent).flags & DepthMask) + 1, DepthMask);
}

void XmlIndex::LinkAfter(std::uint32_t parent, std::uint32_t previous, std::uint32_t index) {
    XmlRecord& above = At(parent);
    XmlRecord& record = At(index);
    record.parent = parent;
    record.flags = (record.flags & ~(DepthMask | FirstChildFlag)) | DepthBelow(parent);
    if (previous != 0) {
        record.previousSibling = previous;
        record.nextSibling = At(previous).nextSibling;
        At(previous).nextSibling = index;
        At(record.nextSibling == 0 ? above.firstChild : record.nextSibling).previousSibling = index;
        return;
    }
    record.flags |= FirstChildFlag;
    record.nextSibling = above.firstChild;
    record.previousSibling = index;
    if (above.firstChild != 0) {
        XmlRecord& second = At(above.firstChild);
        record.previousSibling = second.previousSibling;
        second.previousSibling = index;
        second.flags &= ~FirstChildFlag;
    }
    above.firstChild = index;
}

void XmlIndex::Remove(std::uint32_t index) {
    const XmlRecord& record = At(index);
    XmlRecord& above = At(record.parent);
    if (!IsFirstChild(index)) {
        At(record.previousSibling).nextSibling = record.nextSibling;
        At(record.nextSibling == 0 ? above.firstChild : record.nextSibling).previousSibling = record.previousSibling;
    } else {
        above.firstChild = record.nextSibling;
        if (record.nextSibling != 0) {
            XmlRecord& next = At(record.nextSibling);
            next.previousSibling = record.previousSibling;
            next.flags |= FirstChildFlag;
        }
    }
    // Down to the leaves and back up: a record without children is released.
    for (std::uint32_t current = index;;) {
        XmlRecord& at = At(current);
        if (at.firstChild != 0) {
            const std::uint32_t child = at.firstChild;
            at.firstChild = 0;
            current = child;
            continue;
        }
        const std::uint32_t next = at.nextSibling != 0 ? at.nextSibling : at.parent;
        Release(current);
        if (current == index) {
            return;
        }
        current = next;
    }
}

void XmlIndex::LiftChildren(std::uint32_t from) {
    XmlRecord& record = At(from);
    const std::uint32_t first = record.firstChild;
    if (first == 0) {
        return;
    }
    const std::uint32_t last = At(first).previousSibling;
    At(first).flags &= ~FirstChildFlag;
    At(first).previousSibling = from;
    record.nextSibling = first;
    record.firstChild = 0;
    At(At(record.parent).firstChild).previousSibling = last;
}

void XmlIndex::Adopt(std::uint32_t parent, std::uint32_t first) {
    for (std::uint32_t index = first; index != 0; index = At(index).nextSibling) {
        At(index).parent = parent;
    }
}

std::uint32_t XmlIndex::NextInTree(std::uint32_t index) const {
    if (At(index).firstChild != 0) {
        return At(index).firstChild;
    }
    while (index != 0 && At(index).nextSibling == 0) {
        index = At(index).parent;
    }
    return index == 0 ? 0 : At(index).nextSibling;
}

void XmlIndex::RenumberDepths() {
    for (std::uint32_t index = At(0).firstChild; index != 0; index = NextInTree(index)) {
        XmlRecord& record = At(index);
        record.flags = (record.flags & ~DepthMask) | DepthBelow(record.parent);
    }
}

void XmlIndex::MarkIllFormed(std::uint32_t index) {
    At(index).flags |= IllFormedFlag;
    if (index != 0) {
        MarkIllFormedInside(At(index).parent);
    }
}

void XmlIndex::MarkIllFormedInside(std::uint32_t index) {
    while ((At(index).flags & IllFormedInsideFlag) == 0) {
        At(index).flags |= IllFormedInsideFlag;
        index = At(index).parent;
    }
}

void XmlIndex::Shift(std::uint32_t offset, std::int64_t change) {
    const auto step = static_cast<std::uint32_t>(change);
    for (std::uint32_t index = 1; index < m_nextFree; ++index) {
        XmlRecord& record = At(index);
        record.start += record.start >= offset ? step : 0;
    }
}

void XmlIndex::Lengthen(std::uint32_t index, std::int64_t change) {
    const auto step = static_cast<std::uint32_t>(change);
    for (; index != 0; index = At(index).parent) {
        At(index).length += step;
    }
    At(0).length += step;
}
